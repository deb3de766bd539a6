#include "base/FieldSearch.h"

#include <fstream>
#include <string>

#include "base/FileBytes.h"

namespace vexo {
namespace {

char LowerAscii(char c) {
    return (c >= 'A' && c <= 'Z') ? static_cast<char>(c - 'A' + 'a') : c;
}

// Collects one field at a time (lower-cased) and tells whether any field held the needle.
// A very long field is cut from the front, keeping enough of its tail that a match across
// the cut is still seen.
class FieldMatcher {
public:
    explicit FieldMatcher(std::string_view needle) {
        for (char c : needle)
            m_needle.push_back(LowerAscii(c));
    }
    void feed(const char* data, std::size_t size) {
        for (std::size_t i = 0; i < size && !m_found; ++i) {
            char c = data[i];
            if (c == ',' || c == '\r' || c == '\n') {
                endField();
                continue;
            }
            m_field.push_back(LowerAscii(c));
            if (m_field.size() >= kMaxField + m_needle.size()) {
                m_found = m_field.find(m_needle) != std::string::npos;
                m_field.erase(0, m_field.size() - (m_needle.size() - 1));
            }
        }
    }
    bool finish() {
        endField();
        return m_found;
    }

private:
    static constexpr std::size_t kMaxField = 1 << 16;
    void endField() {
        if (!m_found && m_field.find(m_needle) != std::string::npos)
            m_found = true;
        m_field.clear();
    }
    std::string m_needle;
    std::string m_field;
    bool m_found = false;
};

} // namespace

bool FileHasFieldContaining(const std::filesystem::path& path, std::string_view needle) {
    std::ifstream in = OpenForReading(path);
    if (!in)
        return false;
    FieldMatcher matcher(needle);
    char buffer[8192];
    while (in) {
        in.read(buffer, sizeof buffer);
        matcher.feed(buffer, static_cast<std::size_t>(in.gcount()));
    }
    return matcher.finish();
}

} // namespace vexo
