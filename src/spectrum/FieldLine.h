#pragma once
// One line of a spectrum file that carries several items: every item starts in its own
// 14-column zone (columns 0, 14, 28, ...), the gap before it filled with blanks.
#include <cstddef>
#include <string>
#include <string_view>

namespace vexo {

constexpr std::size_t kFieldWidth = 14;

class FieldLine {
public:
    // A line of its own, read back with str().
    FieldLine() : m_out(&m_own) {}
    // A line appended to the end of `out` (columns count from where it starts), so a
    // whole file can be built in one buffer. `out` must outlive the FieldLine and must
    // not be appended to by anyone else until the line is complete.
    explicit FieldLine(std::string& out) : m_out(&out), m_start(out.size()) {}
    FieldLine(const FieldLine&) = delete;
    FieldLine& operator=(const FieldLine&) = delete;

    // Appends an item as it stands. Before every item but the first the line is padded
    // with blanks up to the next multiple of 14, so an item of up to 13 characters
    // starts exactly at column 14 x its position. A longer item pushes the next one to
    // the following zone. Columns are bytes: pass file text (Windows-1252) for exact
    // columns when the item holds non-ASCII characters.
    FieldLine& text(std::string_view item);
    // A 32-bit integer in the integer item form of IntegerItem: " 57 ", "-3 ".
    FieldLine& integer(long long value);
    // A 32-bit float converted to text, no added blanks: "0.5", "1.234568E-05".
    FieldLine& single(float value);
    // A 32-bit float written as a number item, with the sign blank and one trailing
    // blank like an integer: " 60 ", "-1.5 ".
    FieldLine& singleNumber(float value);

    // The line so far (without any line end).
    std::string_view str() const { return std::string_view(*m_out).substr(m_start); }

private:
    std::string m_own;
    std::string* m_out;
    std::size_t m_start = 0;
    std::size_t m_items = 0;
};

// A 32-bit float as text with "-0" shown as "0", as the number form shows zero.
std::string SingleText(float value);

} // namespace vexo
