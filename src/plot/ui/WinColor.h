#pragma once
// Colours as the settings file keeps them: red + 256 * green + 65536 * blue.
#include <QColor>
#include <cstdint>

namespace vexo {

inline QColor FromWinColor(int32_t value) {
    return QColor(value & 0xFF, (value >> 8) & 0xFF, (value >> 16) & 0xFF);
}

inline int32_t ToWinColor(const QColor& c) {
    return c.red() + 256 * c.green() + 65536 * c.blue();
}

} // namespace vexo
