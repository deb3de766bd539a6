#pragma once
// Reads a text file the way the spectrum files are read: whole lines for tags and text,
// and numbers as fields separated by blanks, commas or line ends, across lines where
// need be. Works on the file's raw bytes; texts handed out are still in the file's code
// page (the caller converts them).
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

namespace vexo {

class FieldReader {
public:
    explicit FieldReader(std::string_view bytes) : m_bytes(bytes) {}

    bool atEnd() const { return m_pos >= m_bytes.size(); }
    std::size_t position() const { return m_pos; }
    // Goes back (or forward) to a position taken from position().
    void seek(std::size_t pos) { m_pos = pos < m_bytes.size() ? pos : m_bytes.size(); }

    // The rest of the current line without its line end (CR LF, LF or a lone CR), and
    // moves past the line end. std::nullopt at the end of the input.
    std::optional<std::string_view> readLine();

    // The next field. Blanks, tabs and line ends before it are skipped; a comma where a
    // field should start is an empty field. A field runs to the next blank, tab, comma or
    // line end; a field that starts with a double quote runs to the closing quote (the
    // quotes are not part of it). After the field, blanks are skipped and one comma or
    // one line end is consumed, so a following readLine() starts after it.
    // std::nullopt when only blanks and line ends remain.
    std::optional<std::string_view> readField();

    // The next field as a number, as a numeric variable is read from such a file: the
    // number the field begins with ("." decimal point, optional exponent), 0 when it does
    // not begin with one ("PHA" reads as 0). All throw NumberedError 62 ("Input past end
    // of file") when no field is left, and OverflowError when the value does not fit.
    int32_t readLong(); // rounded to nearest, ties to even
    float readSingle(); // narrowed to a 32-bit float
    double readDouble();

private:
    std::string_view nextFieldOrThrow();
    void consumeDelimiter();

    std::string_view m_bytes;
    std::size_t m_pos = 0;
};

// The number a field or text piece begins with, as described for readField(); 0 when
// there is none. Throws OverflowError beyond the range of a double.
double FieldNumber(std::string_view field);
// The same, rounded to a 32-bit integer (ties to even); OverflowError outside its range.
int32_t FieldLong(std::string_view field);

} // namespace vexo
