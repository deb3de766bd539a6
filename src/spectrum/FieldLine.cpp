#include "spectrum/FieldLine.h"

#include <charconv>

#include "base/NumberText.h"

namespace vexo {

FieldLine& FieldLine::text(std::string_view item) {
    if (m_items > 0) {
        std::size_t length = m_out->size() - m_start;
        std::size_t next = (length / kFieldWidth + 1) * kFieldWidth;
        m_out->append(next - length, ' ');
    }
    m_out->append(item);
    ++m_items;
    return *this;
}

FieldLine& FieldLine::integer(long long value) {
    // The same item as IntegerItem, formatted in place without a temporary string:
    // counts lines are the bulk of every spectrum file.
    char buf[24];
    char* p = buf;
    *p++ = value < 0 ? '-' : ' ';
    unsigned long long magnitude = value < 0 ? 0ULL - static_cast<unsigned long long>(value)
                                             : static_cast<unsigned long long>(value);
    p = std::to_chars(p, buf + sizeof buf - 1, magnitude).ptr;
    *p++ = ' ';
    return text(std::string_view(buf, static_cast<std::size_t>(p - buf)));
}

FieldLine& FieldLine::single(float value) {
    return text(SingleText(value));
}

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
