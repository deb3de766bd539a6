#pragma once
// Copying the device's identity and parameters between the open analyser and the
// program-wide record. Every routine works on doc.hDevice through `lib`.
#include <cstdint>
#include <memory>

#include "base/Messages.h"
#include "device/DeviceLibrary.h"
#include "spectrum/SpectrumDocument.h"

namespace vexo {

// Reads ids 0, 1, 4, 2, 3 (in that order, 64-byte buffers, text up to the first zero
// byte) into szDeviceName, szDeviceSerial, szProductionDate, szFirmwareVersion,
// szFirmwareDate; parses nFwMajor/nFwMinor and turns the two dates into long-date
// texts. Each failing read shows ErrorText(code) as a critical "Vexo" message and the
// routine goes on with the next id; the field then holds what the buffer held.
void ReadDeviceInfo(DeviceLibrary& lib, SpectrumDocument& doc, Messages& messages);

// Read-all: every MCA setting and device field, in the device's fixed order, with the
// optional ids recorded in lCapabilities. Failures are never shown: a missing optional
// parameter clears or leaves unset its capability bit; a failing plain read leaves the
// field as the library left it, except lChannels, which only takes a count from 1 to
// MAX_CHANNELS. Does nothing when hDevice is 0.
void ReadAllParams(DeviceLibrary& lib, SpectrumDocument& doc);

// The settings the open device holds, for a window that edits them: a copy of the record
// (handle, identity, capabilities) with everything read-all reads taken from the device.
// The record's own settings may be a spectrum file's snapshot (File > Open while
// connected); the copy's never are.
std::unique_ptr<SpectrumDocument> ReadDeviceSettings(DeviceLibrary& lib,
                                                     const SpectrumDocument& doc);

// After a settings window has written to the device: the record takes the device's
// settings again (read-all), unless it shows a spectrum opened from a file, whose snapshot
// stays with it until the next measurement starts.
void FollowDeviceSettings(DeviceLibrary& lib, SpectrumDocument& doc);

// Write-all: every MCA setting from the record to the device, return codes ignored,
// including the advanced settings (ApplyAdvancedSettings). Does nothing when hDevice
// is 0. The caller disables the settings window's Apply button afterwards.
void WriteAllParams(DeviceLibrary& lib, SpectrumDocument& doc);

// The advanced settings apply: ids 41, 36, 39, 40, 50, then the GPIO lines 48/49 with
// id 30 again (or the legacy switch 34), then 51 - each only when its capability bit
// is set. Return codes ignored; does nothing when hDevice is 0.
void ApplyAdvancedSettings(DeviceLibrary& lib, SpectrumDocument& doc);

// When a device is open, writes id 25 alone from dDeviceCal (narrowed to floats).
// Returns the library status, or 0 when no device is open.
int32_t WriteDeviceCalibration(DeviceLibrary& lib, SpectrumDocument& doc);

// The legacy preset word written to id 10 by devices without id 30: the preset time
// rounded (ties to even) to a whole number, AND 1. Odd, and kept for old firmware.
// A non-finite preset time gives 0.
int32_t LegacyPresetWord(float presetTimeSeconds);

} // namespace vexo
