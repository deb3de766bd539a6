#include "AliasTable.h"

namespace korvsim {

AliasTable::AliasTable(const std::vector<double>& weights) {
    double total = 0.0;
    for (double w : weights)
        total += w > 0.0 ? w : 0.0;
    if (!(total > 0.0))
        return;
    const size_t n = weights.size();
    m_probability.assign(n, 0.0);
    m_alias.assign(n, 0);
    std::vector<double> scaled(n);
    std::vector<int32_t> small, large;
    small.reserve(n);
    large.reserve(n);
    for (size_t i = 0; i < n; ++i) {
        scaled[i] = (weights[i] > 0.0 ? weights[i] : 0.0) * static_cast<double>(n) / total;
        (scaled[i] < 1.0 ? small : large).push_back(static_cast<int32_t>(i));
    }
    while (!small.empty() && !large.empty()) {
        const int32_t s = small.back();
        small.pop_back();
        const int32_t l = large.back();
        m_probability[s] = scaled[s];
        m_alias[s] = l;
        scaled[l] -= 1.0 - scaled[s];
        if (scaled[l] < 1.0) {
            large.pop_back();
            small.push_back(l);
        }
    }
    // What is left is 1 up to rounding: those bins keep themselves.
    for (int32_t i : large) {
        m_probability[i] = 1.0;
        m_alias[i] = i;
    }
    for (int32_t i : small) {
        m_probability[i] = 1.0;
        m_alias[i] = i;
    }
}

} // namespace korvsim
