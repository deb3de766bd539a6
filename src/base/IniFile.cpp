#include "base/IniFile.h"

#include "base/FileBytes.h"
#include "base/TextFile.h"
#include "base/TextTrim.h"

#include <algorithm>
#include <system_error>

namespace vexo {
namespace {

// Names and values lose every white-space character around them.
std::string_view Trim(std::string_view s) {
    return TrimBlanks(s, " \t\r\n\v\f");
}

// Lower case of a Windows-1252 character: ASCII, the Latin-1 letters and the few
// letters of 0x80..0x9F that have a case partner.
unsigned char FoldCase(unsigned char c) {
    if (c >= 'A' && c <= 'Z')
        return static_cast<unsigned char>(c + 32);
    if (c >= 0xC0 && c <= 0xDE && c != 0xD7)
        return static_cast<unsigned char>(c + 32);
    switch (c) {
    case 0x8A: // S caron
    case 0x8C: // OE
    case 0x8E: // Z caron
        return static_cast<unsigned char>(c + 16);
    case 0x9F: // Y diaeresis
        return 0xFF;
    default:
        return c;
    }
}

bool NamesEqual(std::string_view a, std::string_view b) {
    if (a.size() != b.size())
        return false;
    for (std::size_t i = 0; i < a.size(); ++i)
        if (FoldCase(static_cast<unsigned char>(a[i])) !=
            FoldCase(static_cast<unsigned char>(b[i])))
            return false;
    return true;
}

enum class LineKind { Blank, Comment, Section, Entry };

struct LineInfo {
    LineKind kind = LineKind::Blank;
    std::string_view name;                 // section or key name, trimmed
    std::optional<std::string_view> value; // entry value, trimmed; none without '='
};

LineInfo Classify(std::string_view line) {
    std::string_view s = Trim(line);
    if (s.empty())
        return {};
    if (s.front() == ';')
        return {LineKind::Comment, {}, {}};
    if (s.front() == '[') {
        std::size_t close = s.rfind(']');
        if (close != std::string_view::npos && close > 0)
            return {LineKind::Section, Trim(s.substr(1, close - 1)), {}};
    }
    std::size_t eq = s.find('=');
    if (eq == std::string_view::npos)
        return {LineKind::Entry, s, std::nullopt};
    return {LineKind::Entry, Trim(s.substr(0, eq)), Trim(s.substr(eq + 1))};
}

// One pair of enclosing quotes (double or single) comes off a value read by key.
std::string_view StripQuotes(std::string_view v) {
    if (v.size() >= 2 && (v.front() == '"' || v.front() == '\'') && v.back() == v.front())
        return v.substr(1, v.size() - 2);
    return v;
}

// The reader drops trailing blanks of the default, but never its first character.
std::string_view TrimDefault(std::string_view d) {
    while (d.size() > 1 && d.back() == ' ')
        d.remove_suffix(1);
    return d;
}

// A single value in a buffer of `size` characters: at most size - 1 of them fit.
std::string FitValue(std::string_view value, std::size_t size) {
    if (size == 0)
        return {};
    return std::string(value.substr(0, size - 1));
}

// A NUL-terminated list with its extra final NUL in a buffer of `size` characters. When
// it does not fit, the list is cut and the count is size - 2, the reader's "too small".
std::string FitList(const std::vector<std::string>& items, std::size_t size) {
    std::string list;
    for (const auto& item : items) {
        list.append(item);
        list.push_back('\0');
    }
    if (list.size() + 1 <= size)
        return list;
    list.resize(size >= 2 ? size - 2 : 0);
    return list;
}

} // namespace

IniFile IniFile::FromText(std::string_view ansiText) {
    return IniFile(SplitLines(ansiText));
}

std::optional<IniFile> IniFile::Load(const std::filesystem::path& path) {
    FileBytes file = ReadFileBytes(path, std::size_t{256} << 20);
    if (!file.ok) {
        std::error_code ec;
        if (!std::filesystem::exists(path, ec))
            return IniFile{};
        return std::nullopt;
    }
    if (file.truncated)
        return std::nullopt;
    return FromText(file.bytes);
}

bool IniFile::save(const std::filesystem::path& path, std::string* error) const {
    std::string bytes; // the lines are Windows-1252 already
    for (const auto& line : m_lines) {
        bytes.append(line);
        bytes.append("\r\n");
    }
    return WriteFileBytes(path, bytes, error);
}

std::optional<IniFile::SectionSpan> IniFile::findSection(std::string_view name) const {
    name = Trim(name);
    for (std::size_t i = 0; i < m_lines.size(); ++i) {
        LineInfo info = Classify(m_lines[i]);
        if (info.kind != LineKind::Section || !NamesEqual(info.name, name))
            continue;
        SectionSpan span{i, i, m_lines.size()};
        for (std::size_t j = i + 1; j < m_lines.size(); ++j) {
            LineKind kind = Classify(m_lines[j]).kind;
            if (kind == LineKind::Section) {
                span.end = j;
                break;
            }
            if (kind == LineKind::Entry)
                span.lastEntry = j;
        }
        return span;
    }
    return std::nullopt;
}

std::optional<std::size_t> IniFile::findKey(const SectionSpan& span, std::string_view key) const {
    key = Trim(key);
    for (std::size_t i = span.header + 1; i <= span.lastEntry && i < span.end; ++i) {
        LineInfo info = Classify(m_lines[i]);
        if (info.kind == LineKind::Entry && NamesEqual(info.name, key))
            return i;
    }
    return std::nullopt;
}

std::string IniFile::KeyValue(std::optional<std::string_view> found, std::string_view defaultValue,
                              std::size_t bufferSize) {
    return FitValue(found ? StripQuotes(*found) : StripQuotes(TrimDefault(defaultValue)),
                    bufferSize);
}

std::string IniFile::readString(std::optional<std::string_view> section,
                                std::optional<std::string_view> key, std::string_view defaultValue,
                                std::size_t bufferSize) const {
    if (!section) {
        std::vector<std::string> names;
        for (const auto& line : m_lines) {
            LineInfo info = Classify(line);
            // A section without a name is not listed, as the original leaves it out.
            if (info.kind == LineKind::Section && !info.name.empty())
                names.emplace_back(info.name);
        }
        return FitList(names, bufferSize);
    }
    auto span = findSection(*section);
    if (!key) {
        std::vector<std::string> keys;
        if (span)
            for (std::size_t i = span->header + 1; i <= span->lastEntry; ++i) {
                LineInfo info = Classify(m_lines[i]);
                if (info.kind == LineKind::Entry && info.value)
                    keys.emplace_back(info.name);
            }
        if (keys.empty())
            return KeyValue(std::nullopt, defaultValue, bufferSize);
        return FitList(keys, bufferSize);
    }
    std::optional<std::string_view> found;
    std::optional<std::size_t> at;
    if (span && (at = findKey(*span, *key)))
        found = Classify(m_lines[*at]).value;
    return KeyValue(found, defaultValue, bufferSize);
}

std::string IniFile::readSection(std::string_view section, std::size_t bufferSize) const {
    std::vector<std::string> entries;
    if (auto span = findSection(section))
        for (std::size_t i = span->header + 1; i <= span->lastEntry; ++i) {
            LineInfo info = Classify(m_lines[i]);
            if (info.kind != LineKind::Entry)
                continue;
            std::string entry(info.name);
            if (info.value) {
                entry.push_back('=');
                entry.append(*info.value);
            }
            entries.push_back(std::move(entry));
        }
    return FitList(entries, bufferSize);
}

bool IniFile::writeString(std::string_view section, std::optional<std::string_view> key,
                          std::optional<std::string_view> value) {
    if (!key)
        return removeSections(section);
    if (!value)
        return removeKey(section, *key);
    return setValue(section, *key, *value);
}

bool IniFile::removeSections(std::string_view section) {
    section = Trim(section);
    // One pass, so that a file of thousands of sections of that name costs no more than
    // reading it.
    std::vector<std::string> kept;
    kept.reserve(m_lines.size());
    bool changed = false;
    for (std::size_t i = 0; i < m_lines.size();) {
        LineInfo info = Classify(m_lines[i]);
        if (info.kind != LineKind::Section || !NamesEqual(info.name, section)) {
            kept.push_back(std::move(m_lines[i++]));
            continue;
        }
        // The header, every line up to the last entry and the blank lines after it go;
        // comments after them (introducing the next section) stay.
        std::size_t end = i + 1, cut = i + 1;
        for (; end < m_lines.size(); ++end) {
            LineKind kind = Classify(m_lines[end]).kind;
            if (kind == LineKind::Section)
                break;
            if (kind == LineKind::Entry)
                cut = end + 1;
        }
        while (cut < end && Classify(m_lines[cut]).kind == LineKind::Blank)
            ++cut;
        for (std::size_t k = cut; k < end; ++k)
            kept.push_back(std::move(m_lines[k]));
        i = end;
        changed = true;
    }
    m_lines = std::move(kept);
    return changed;
}

bool IniFile::removeKey(std::string_view section, std::string_view key) {
    auto span = findSection(section);
    if (!span)
        return false;
    key = Trim(key);
    auto first = m_lines.begin() + static_cast<std::ptrdiff_t>(span->header + 1);
    auto last = m_lines.begin() + static_cast<std::ptrdiff_t>(span->lastEntry + 1);
    auto kept = std::remove_if(first, last, [key](const std::string& line) {
        LineInfo info = Classify(line);
        return info.kind == LineKind::Entry && NamesEqual(info.name, key);
    });
    if (kept == last)
        return false;
    m_lines.erase(kept, last);
    return true;
}

bool IniFile::setValue(std::string_view section, std::string_view key, std::string_view value) {
    auto span = findSection(section);
    std::string newLine = std::string(Trim(key)) + "=" + std::string(value);
    if (!span) {
        m_lines.push_back("[" + std::string(Trim(section)) + "]");
        m_lines.push_back(std::move(newLine));
        return true;
    }
    auto at = findKey(*span, key);
    if (!at) {
        m_lines.insert(m_lines.begin() + static_cast<std::ptrdiff_t>(span->lastEntry + 1),
                       std::move(newLine));
        return true;
    }
    // The line keeps its own spelling of the key and everything up to its '='.
    std::string& line = m_lines[*at];
    std::size_t eq = line.find('=');
    std::string updated = eq == std::string::npos
                              ? std::string(Trim(line)) + "=" + std::string(value)
                              : line.substr(0, eq + 1) + std::string(value);
    if (updated == line)
        return false;
    line = std::move(updated);
    return true;
}

bool IniFile::writeSection(std::string_view section, std::string_view entries) {
    std::vector<std::string> newLines;
    for (std::size_t start = 0; start < entries.size();) {
        std::size_t nul = entries.find('\0', start);
        std::string_view entry = entries.substr(
            start, nul == std::string_view::npos ? std::string_view::npos : nul - start);
        if (entry.empty())
            break;
        newLines.emplace_back(entry);
        if (nul == std::string_view::npos)
            break;
        start = nul + 1;
    }
    auto span = findSection(section);
    if (!span) {
        m_lines.push_back("[" + std::string(Trim(section)) + "]");
        m_lines.insert(m_lines.end(), newLines.begin(), newLines.end());
        return true;
    }
    auto first = m_lines.begin() + static_cast<std::ptrdiff_t>(span->header + 1);
    auto last = m_lines.begin() + static_cast<std::ptrdiff_t>(span->lastEntry + 1);
    if (std::vector<std::string>(first, last) == newLines)
        return false;
    first = m_lines.erase(first, last);
    m_lines.insert(first, newLines.begin(), newLines.end());
    return true;
}

int32_t IniFile::ParseProfileInt(std::string_view text) {
    std::size_t i = 0;
    while (i < text.size() && static_cast<unsigned char>(text[i]) <= ' ')
        ++i;
    bool negative = false;
    if (i < text.size() && (text[i] == '+' || text[i] == '-'))
        negative = text[i++] == '-';
    unsigned base = 10;
    if (i + 1 < text.size() && text[i] == '0') {
        char p = text[i + 1];
        base = (p == 'x' || p == 'X') ? 16 : p == 'o' ? 8 : p == 'b' ? 2 : 10;
        if (base != 10)
            i += 2;
    }
    uint32_t result = 0;
    for (; i < text.size(); ++i) {
        char c = text[i];
        unsigned digit = (c >= '0' && c <= '9')   ? static_cast<unsigned>(c - '0')
                         : (c >= 'a' && c <= 'z') ? static_cast<unsigned>(c - 'a' + 10)
                         : (c >= 'A' && c <= 'Z') ? static_cast<unsigned>(c - 'A' + 10)
                                                  : 99u;
        if (digit >= base)
            break;
        result = result * base + digit; // wraps like the 32-bit original
    }
    if (negative)
        result = 0u - result;
    return static_cast<int32_t>(result);
}

} // namespace vexo

namespace vexo {

IniLineView ClassifyIniLine(std::string_view line) {
    LineInfo info = Classify(line);
    switch (info.kind) {
    case LineKind::Comment:
        return {IniLineKind::Comment, {}, {}};
    case LineKind::Section:
        return {IniLineKind::Section, info.name, {}};
    case LineKind::Entry:
        return {IniLineKind::Entry, info.name, info.value};
    case LineKind::Blank:
        break;
    }
    return {IniLineKind::Blank, {}, {}};
}

std::string IniNameKey(std::string_view name) {
    std::string key(Trim(name));
    for (char& c : key)
        c = static_cast<char>(FoldCase(static_cast<unsigned char>(c)));
    return key;
}

} // namespace vexo
