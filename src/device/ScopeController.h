#pragma once
// The digital scope's poll-and-draw cycle (DisplayWaveform), run from the refresh tick
// while the scope window is open: select the source, ask whether a trace is ready, read
// it, re-arm. The trace stays in the controller between cycles, so the window can redraw
// it (DrawGrid, PlotData in ScopePlot.h) without asking the device.
#include <cstdint>

#include "device/DeviceLibrary.h"
#include "device/ScopePlot.h"
#include "spectrum/SpectrumDocument.h"

namespace vexo {

enum class ScopeSource { Filtered, Input };

// The ScopeControl (id 24) value of a source: 0 filtered, 7 raw input.
constexpr int32_t ScopeControlValue(ScopeSource source) {
    return source == ScopeSource::Filtered ? 0 : 7;
}

class ScopeController {
public:
    ScopeController(DeviceLibrary& lib, SpectrumDocument& doc) : m_lib(lib), m_doc(doc) {}

    // optFiltered / optInput; takes effect at the next cycle.
    void setSource(ScopeSource source) { m_source = source; }
    ScopeSource source() const { return m_source; }

    // One cycle: id 24 written with the source value, GetScopeStatus; when the status
    // word is 0, ReadScope into the trace and ArmScope for the next capture. The return
    // codes are not examined: only the status word decides whether to read. Returns true
    // when a new trace was read (the window then clears and redraws). Does nothing and
    // returns false without a device. Never shows a message.
    bool DisplayWaveform();

    // The last trace read (all zeros before the first).
    const ScopeTrace& trace() const { return m_trace; }
    // 65536 or 4096 for the open device's model (ScopeFullScale).
    int32_t fullScale() const { return ScopeFullScale(m_doc.szConnectedSerial); }
    // Number of traces read so far.
    int traceCount() const { return m_traces; }

private:
    DeviceLibrary& m_lib;
    SpectrumDocument& m_doc;
    ScopeSource m_source = ScopeSource::Filtered;
    ScopeTrace m_trace{};
    int m_traces = 0;
};

} // namespace vexo
