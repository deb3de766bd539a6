#include "device/ScopeController.h"

namespace vexo {

bool ScopeController::DisplayWaveform() {
    if (m_doc.hDevice == 0)
        return false;
    m_lib.setParam(m_doc.hDevice, DeviceParamId::ScopeControl, ScopeControlValue(m_source));
    // A failing status call must not look like "ready": start from a non-zero word.
    int32_t status = -1;
    m_lib.getScopeStatus(m_doc.hDevice, status);
    if (status != 0)
        return false;
    // Read into a scratch trace so a failing read keeps the previous picture intact.
    ScopeTrace fresh = m_trace;
    const int32_t rc = m_lib.readScope(m_doc.hDevice, fresh.data());
    m_lib.armScope(m_doc.hDevice);
    if (rc != 0)
        return false;
    m_trace = fresh;
    ++m_traces;
    return true;
}

} // namespace vexo
