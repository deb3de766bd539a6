#include "roi/RoiCollection.h"

#include "shell/VexoError.h"

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

} // namespace vexo
