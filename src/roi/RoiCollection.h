#pragma once
// The ordered ROIs of the current spectrum, positions counted from 1.
#include <cstdint>
#include <string>
#include <vector>

#include "roi/clsROI.h"

namespace vexo {

class RoiCollection {
public:
    void add(clsROI roi) { m_items.push_back(std::move(roi)); }
    void clear() { m_items.clear(); }
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

} // namespace vexo
