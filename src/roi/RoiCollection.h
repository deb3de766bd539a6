#pragma once
// The ordered ROIs of the current spectrum, positions counted from 1.
#include <cstdint>
#include <string>
#include <vector>

#include "roi/clsROI.h"
#include "spectrum/SpectrumCommands.h"
#include "spectrum/SpectrumDocument.h"

namespace vexo {

class RoiCollection {
public:
    void add(clsROI roi) { m_items.push_back(std::move(roi)); }
    void clear() { m_items.clear(); }
    // Made anew from the plot's ROI list, as reading a spectrum file does: one record per
    // plot ROI with its first and last channel, colour and name (as identifier), and its
    // index in the plot as plot number.
    void rebuildFromPlot(const std::vector<PlotRoi>& plotRois);
    // Removes the ROI at 1-based `position`; throws SubscriptError when there is none.
    void remove(int position);
    // 1-based access; throws SubscriptError outside 1..count.
    clsROI& item(int position);
    const clsROI& item(int position) const;
    int16_t nGetROINo() const { return static_cast<int16_t>(m_items.size()); }
    bool empty() const { return m_items.empty(); }

    // 1-based position of the first ROI holding `channel` (ends inclusive) whose
    // identifier equals `id`; -1 when there is none.
    int16_t nFindROIinCol(int32_t channel, const std::string& id) const;

    std::vector<clsROI>::iterator begin() { return m_items.begin(); }
    std::vector<clsROI>::iterator end() { return m_items.end(); }
    std::vector<clsROI>::const_iterator begin() const { return m_items.begin(); }
    std::vector<clsROI>::const_iterator end() const { return m_items.end(); }

private:
    std::vector<clsROI> m_items;
};

// Open (File > Open, and the command-line tool) with the ROIs: OpenSpectrum, then the
// collection made anew from the ROIs the file brought (none for a plain file or one
// that could not be read).
OpenResult OpenSpectrumWithRois(SpectrumDocument& doc, RoiCollection& rois,
                                const std::filesystem::path& path);

} // namespace vexo
