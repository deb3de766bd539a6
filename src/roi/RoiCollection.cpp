#include "roi/RoiCollection.h"

#include <algorithm>

#include "base/VexoError.h"

namespace vexo {

void RoiCollection::remove(int position) {
    if (position < 1 || position > static_cast<int>(m_items.size()))
        throw SubscriptError();
    m_items.erase(m_items.begin() + (position - 1));
}

clsROI& RoiCollection::item(int position) {
    if (position < 1 || position > static_cast<int>(m_items.size()))
        throw SubscriptError();
    return m_items[static_cast<std::size_t>(position - 1)];
}

const clsROI& RoiCollection::item(int position) const {
    if (position < 1 || position > static_cast<int>(m_items.size()))
        throw SubscriptError();
    return m_items[static_cast<std::size_t>(position - 1)];
}

int16_t RoiCollection::nFindROIinCol(int32_t channel, const std::string& id) const {
    for (std::size_t i = 0; i < m_items.size(); ++i) {
        const clsROI& roi = m_items[i];
        if (channel >= roi.lROILCh() && channel <= roi.lROIRCh() && roi.vntID() == id)
            return static_cast<int16_t>(i + 1);
    }
    return -1;
}

void RoiCollection::rebuildFromPlot(const std::vector<PlotRoi>& plotRois) {
    m_items.clear();
    // A plot number is 16 bits: a plot ROI past that (a file whose reading stopped on
    // the overflow) gets no record.
    const std::size_t count = std::min<std::size_t>(plotRois.size(), 32768);
    m_items.reserve(count);
    for (std::size_t i = 0; i < count; ++i) {
        const PlotRoi& roi = plotRois[i];
        clsROI record;
        record.set_lROILCh(roi.lFirst);
        record.set_lROIRCh(roi.lLast);
        record.set_lROIColor(roi.lColor);
        record.set_vntID(roi.szName);
        record.set_nROIinPlot(static_cast<int16_t>(i));
        m_items.push_back(std::move(record));
    }
}

OpenResult OpenSpectrumWithRois(SpectrumDocument& doc, RoiCollection& rois,
                                const std::filesystem::path& path) {
    OpenResult result = OpenSpectrum(doc, path);
    rois.rebuildFromPlot(doc.plot.rois);
    return result;
}

} // namespace vexo
