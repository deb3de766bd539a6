#include "spectrum/FieldReader.h"

#include <charconv>

#include "base/NumberText.h"
#include "base/Rounding.h"
#include "base/VexoError.h"

namespace vexo {
namespace {

bool IsLineEnd(char c) {
    return c == '\r' || c == '\n';
}
bool IsBlank(char c) {
    return c == ' ' || c == '\t';
}
bool EndsField(char c) {
    return IsBlank(c) || IsLineEnd(c) || c == ',';
}

} // namespace

std::optional<std::string_view> FieldReader::readLine() {
    if (atEnd())
        return std::nullopt;
    std::size_t start = m_pos;
    while (m_pos < m_bytes.size() && !IsLineEnd(m_bytes[m_pos]))
        ++m_pos;
    std::string_view line = m_bytes.substr(start, m_pos - start);
    if (m_pos < m_bytes.size()) {
        if (m_bytes[m_pos] == '\r' && m_pos + 1 < m_bytes.size() && m_bytes[m_pos + 1] == '\n')
            ++m_pos;
        ++m_pos;
    }
    return line;
}

std::optional<std::string_view> FieldReader::readField() {
    while (m_pos < m_bytes.size() && (IsBlank(m_bytes[m_pos]) || IsLineEnd(m_bytes[m_pos])))
        ++m_pos;
    if (atEnd())
        return std::nullopt;
    if (m_bytes[m_pos] == ',') {
        ++m_pos;
        return std::string_view{};
    }
    std::string_view field;
    if (m_bytes[m_pos] == '"') {
        std::size_t start = ++m_pos;
        while (m_pos < m_bytes.size() && m_bytes[m_pos] != '"')
            ++m_pos;
        field = m_bytes.substr(start, m_pos - start);
        if (m_pos < m_bytes.size())
            ++m_pos; // closing quote
        // Anything glued to the closing quote belongs to no field; skip it.
        while (m_pos < m_bytes.size() && !EndsField(m_bytes[m_pos]))
            ++m_pos;
    } else {
        std::size_t start = m_pos;
        while (m_pos < m_bytes.size() && !EndsField(m_bytes[m_pos]))
            ++m_pos;
        field = m_bytes.substr(start, m_pos - start);
    }
    consumeDelimiter();
    return field;
}

void FieldReader::consumeDelimiter() {
    while (m_pos < m_bytes.size() && IsBlank(m_bytes[m_pos]))
        ++m_pos;
    if (m_pos >= m_bytes.size())
        return;
    char c = m_bytes[m_pos];
    if (c == ',') {
        ++m_pos;
    } else if (c == '\r') {
        ++m_pos;
        if (m_pos < m_bytes.size() && m_bytes[m_pos] == '\n')
            ++m_pos;
    } else if (c == '\n') {
        ++m_pos;
    }
}

std::string_view FieldReader::nextFieldOrThrow() {
    auto field = readField();
    if (!field)
        throw NumberedError(62, "Input past end of file");
    return *field;
}

int32_t FieldReader::readLong() {
    return FieldLong(nextFieldOrThrow());
}

float FieldReader::readSingle() {
    return CSng(FieldNumber(nextFieldOrThrow()));
}

double FieldReader::readDouble() {
    return FieldNumber(nextFieldOrThrow());
}

double FieldNumber(std::string_view field) {
    return LeadingNumber(field);
}

int32_t FieldLong(std::string_view field) {
    // Plain counts are by far the most common field: take them without the general parse.
    int32_t value = 0;
    const char* end = field.data() + field.size();
    auto [ptr, ec] = std::from_chars(field.data(), end, value);
    if (ec == std::errc() && ptr == end && !field.empty())
        return value;
    return CLng(FieldNumber(field));
}

} // namespace vexo
