#pragma once
// The one program-wide record: the current spectrum with its calibration, identity,
// settings snapshot and the plot's ROI list, and the state of the connected device. The
// ROIs' analysis records live beside it, in the ROI collection. The main window
// (or the command-line tool) owns exactly one and hands it by reference to every part.
#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "spectrum/EnergyCalibration.h"

namespace vexo {

constexpr int32_t MAX_CHANNELS = 16384;
// The counts array keeps a spare slot past the last channel; no writer fills it.
constexpr std::size_t COUNTS_SLOTS = 16385;

// One ROI as the plot holds it: what the spectrum file writes and reads in "$ROI:".
struct PlotRoi {
    int32_t lFirst = 0;
    int32_t lLast = 0;
    int32_t lColor = 255;
    bool bFlag = false;
    std::string szName;
};

// What the two plot controls hold beside the counts: their 32-bit copy of the
// calibration (drawn on the energy axis and written to spectrum files), whether the
// energy axis uses it, and their ROI list. The widgets draw from this; the core keeps it.
struct PlotState {
    float sngOffset = 0.0f;
    float sngSlope = 2.5f;
    float sngQuad = 0.0f;
    bool bUseCalibration = false;
    std::vector<PlotRoi> rois;
};

struct SpectrumDocument {
    // Spectrum.
    std::array<int32_t, COUNTS_SLOTS> lCounts{};
    int32_t lChannels = 1024;
    float sngLiveTime = 0.0f; // seconds
    float sngRealTime = 0.0f; // seconds
    double dtMeasured = 0.0;  // serial date-time, see shell/DateTime.h
    std::string szSpectrumID;
    std::string szDeviceName;
    std::string szDeviceSerial;
    int32_t lMCSMode = 0;        // non-zero: channels are MCS time bins
    float sngDwellTime = 0.0f;   // MCS seconds per bin
    float sngHighVoltage = 0.0f; // volts

    // Hardware snapshot, device units.
    int32_t lCoarseGain = 0, lFineGain = 0, lDigitalGain = 0;
    int32_t lThreshold = 0, lLLD = 0, lULD = 0;
    int32_t lRiseTime = 0, lFlatTop = 0, lPoleZero = 0;
    int32_t lBLR = 0, lPUR = 0;
    int32_t lPolarity = 0; // 0 positive input, non-zero negative

    // Acquisition (preset) snapshot.
    int32_t lPresetMode = 3;
    float sngPresetTime = 0.0f; // seconds
    int32_t lPresetCounts = 0;
    int32_t lPresetFirstCh = 0;
    int32_t lPresetLastCh = 0;

    EnergyCalibration calibration;
    PlotState plot;

    bool bFromFile = false;
    std::string szFileName; // without folder

    // Device state of the open analyser.
    int32_t hDevice = 0;
    bool bConnected = false;
    std::string szDevicePath; // with its "HID:"/"USB:"/"ETH:" prefix
    // Serial number of the open device (id 1). szDeviceSerial is the spectrum's and a file
    // opened while connected replaces it; this one gates the device's model features.
    std::string szConnectedSerial;
    std::string szFirmwareVersion;
    int16_t nFwMajor = 0, nFwMinor = 0;
    std::string szFirmwareDate;
    std::string szProductionDate;
    int32_t lCapabilities = 0;
    int32_t lClockHz = 25000000;
    float sngMaxHV = 1500.0f;
    int32_t lFineGainMax = 4095;
    int32_t lSCALow = 0, lSCAHigh = 0;
    int32_t lHVOn = 0;
    int32_t lBLRRate = 0, lPURGuard = 0, lTRPGuard = 0, lAnalogPZ = 0, lLTTrim = 0;
    int32_t lGPIO1Func = 0, bGPIO1Neg = 0, lGPIO2Func = 0, bGPIO2Neg = 0;
    int32_t lHVInhibitEnable = 0, bHVInhibitNeg = 0;
    std::array<double, 3> dDeviceCal{0.0, 0.0, 0.0};

    // Sets the calibration: the record (64-bit), the plot's 32-bit copy, and switches
    // the plot's energy axis to use it.
    void setCalibration(const EnergyCalibration& cal) {
        calibration = cal;
        calibration.bCalibrated = true;
        plot.sngOffset = static_cast<float>(cal.dOffset);
        plot.sngSlope = static_cast<float>(cal.dSlope);
        plot.sngQuad = static_cast<float>(cal.dQuad);
        plot.bUseCalibration = true;
    }
    // Back to the uncalibrated default in the record and the plot's copy.
    void resetCalibration() {
        calibration = EnergyCalibration::Default();
        plot.sngOffset = 0.0f;
        plot.sngSlope = 2.5f;
        plot.sngQuad = 0.0f;
        plot.bUseCalibration = false;
    }
};

} // namespace vexo
