#pragma once
// The high voltage as the operator watches it: the status-bar text of the HV word
// (id 22) with the set voltage, the question before acquiring with the voltage off, and
// the offer to switch it off when the program lets go of the device. Switching off is
// never done unasked: a detector is usually left biased between measurements.
#include <cstdint>
#include <string>

#include "base/Messages.h"
#include "device/DeviceLibrary.h"
#include "spectrum/SpectrumDocument.h"

namespace vexo {

inline constexpr const char* kStartWithHVOffQuestion = "High voltage is off: start anyway?";

// "HV 800 V on", "HV 800 V ramping", "HV 800 V off" or "HV 800 V inhibited" for the HV
// word `hvState` and the set voltage (volts, shown whole). Inhibited wins over ramping,
// ramping over on, as the settings window tells them.
std::string HVPanelText(int32_t hvState, float volts);
// HVPanelText for the open device: its set voltage read from it (id 21), since the
// record's may be that of a spectrum file opened meanwhile; the record's when the device
// does not answer.
std::string DeviceHVPanelText(DeviceLibrary& lib, const SpectrumDocument& doc, int32_t hvState);

// Before Start: reads id 22 of the open device; when it answers with the voltage off,
// asks kStartWithHVOffQuestion (Yes/No, "Vexo"). True when the acquisition may start:
// the voltage is on, the word could not be read (Start reports what is wrong), or the
// user said Yes.
bool ConfirmStartWithHV(DeviceLibrary& lib, const SpectrumDocument& doc, Messages& messages);

// What the program is about to do with the device.
enum class HVLeaving { Disconnect, Exit };

// Before Disconnect or Exit: when id 22 reads on, asks "High voltage is on: switch it off
// before disconnecting?" (or "... before exiting?"), Yes/No with No preselected. Yes writes
// id 22 = 0 and lHVOn = 0; a refusal shows "Failed to turn High Voltage OFF: " + its error
// text. No (the default) leaves the voltage on. Nothing is asked without a device.
void OfferHVOff(DeviceLibrary& lib, SpectrumDocument& doc, Messages& messages, HVLeaving leaving);

} // namespace vexo
