#include "shell/FieldLine.h"

#include "shell/NumberFormat.h"

namespace vexo {

FieldLine& FieldLine::text(std::string_view item) {
    if (m_items > 0) {
        std::size_t next = (m_line.size() / kFieldWidth + 1) * kFieldWidth;
        m_line.append(next - m_line.size(), ' ');
    }
    m_line.append(item);
    ++m_items;
    return *this;
}

FieldLine& FieldLine::integer(long long value) { return text(IntegerItem(value)); }

FieldLine& FieldLine::single(float value) { return text(SingleText(value)); }

FieldLine& FieldLine::singleNumber(float value) {
    std::string digits = SingleText(value);
    if (digits.front() != '-')
        digits.insert(digits.begin(), ' ');
    digits.push_back(' ');
    return text(digits);
}

std::string SingleText(float value) {
    // Negative zero would print as "-0"; the number form has no signed zero.
    return SingleToText(value == 0.0f ? 0.0f : value);
}

} // namespace vexo
