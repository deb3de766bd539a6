#include "device/HighVoltage.h"

#include "base/NumberText.h"
#include "device/DeviceParams.h"

namespace vexo {

namespace {

// The HV word of the open device; false when there is none or it does not answer.
bool ReadHVWord(DeviceLibrary& lib, const SpectrumDocument& doc, int32_t& word) {
    return doc.hDevice != 0 && lib.getParam(doc.hDevice, DeviceParamId::HVState, word) == 0;
}

} // namespace

std::string HVPanelText(int32_t hvState, float volts) {
    const char* state = (hvState & kHVInhibited) ? "inhibited"
                        : (hvState & kHVRamping) ? "ramping"
                        : (hvState & kHVOn)      ? "on"
                                                 : "off";
    return "HV " + FormatSingle(volts, "0") + " V " + state;
}

std::string DeviceHVPanelText(DeviceLibrary& lib, const SpectrumDocument& doc, int32_t hvState) {
    float volts = 0.0f;
    if (doc.hDevice == 0 || lib.getParam(doc.hDevice, DeviceParamId::HighVoltage, volts) != 0)
        volts = doc.sngHighVoltage;
    return HVPanelText(hvState, volts);
}

bool ConfirmStartWithHV(DeviceLibrary& lib, const SpectrumDocument& doc, Messages& messages) {
    int32_t word = 0;
    if (!ReadHVWord(lib, doc, word) || (word & kHVOn) != 0)
        return true;
    return messages.askYesNo(kStartWithHVOffQuestion);
}

void OfferHVOff(DeviceLibrary& lib, SpectrumDocument& doc, Messages& messages, HVLeaving leaving) {
    int32_t word = 0;
    if (!ReadHVWord(lib, doc, word) || (word & kHVOn) == 0)
        return;
    const std::string question = std::string("High voltage is on: switch it off before ") +
                                 (leaving == HVLeaving::Exit ? "exiting?" : "disconnecting?");
    if (messages.show({"Vexo", question, MsgIcon::Question, MsgButtons::YesNoDefaultNo}) !=
        MsgAnswer::Yes)
        return;
    const int32_t status = lib.setParam(doc.hDevice, DeviceParamId::HVState, 0);
    if (status != 0) {
        messages.critical("Failed to turn High Voltage OFF: " + ErrorText(status));
        return;
    }
    doc.lHVOn = 0;
}

} // namespace vexo
