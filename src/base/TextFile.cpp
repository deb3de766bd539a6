#include "base/TextFile.h"

#include "base/FileBytes.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fstream>

namespace vexo {
namespace {

// Unicode code points of bytes 0x80..0x9F in Windows-1252 (undefined ones map to themselves).
constexpr char32_t kHighTable[32] = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

void AppendUtf8(std::string& out, char32_t cp) {
    if (cp < 0x80) {
        out.push_back(static_cast<char>(cp));
    } else if (cp < 0x800) {
        out.push_back(static_cast<char>(0xC0 | (cp >> 6)));
        out.push_back(static_cast<char>(0x80 | (cp & 0x3F)));
    } else {
        out.push_back(static_cast<char>(0xE0 | (cp >> 12)));
        out.push_back(static_cast<char>(0x80 | ((cp >> 6) & 0x3F)));
        out.push_back(static_cast<char>(0x80 | (cp & 0x3F)));
    }
}

char ByteForCodePoint(char32_t cp) {
    if (cp < 0x80 || (cp >= 0xA0 && cp <= 0xFF))
        return static_cast<char>(cp);
    for (int i = 0; i < 32; ++i)
        if (kHighTable[i] == cp)
            return static_cast<char>(0x80 + i);
    return '?';
}

// Decodes one UTF-8 sequence at text[i]; returns its length, or 0 when it is not valid.
// Overlong forms (C0 8A is not a line feed), surrogates and code points past U+10FFFF
// are not valid: their bytes are then taken as Windows-1252 bytes as they stand.
std::size_t DecodeUtf8(std::string_view text, std::size_t i, char32_t& cp) {
    auto b = static_cast<unsigned char>(text[i]);
    std::size_t len = b >= 0xF8 ? 0 : b >= 0xF0 ? 4 : b >= 0xE0 ? 3 : b >= 0xC0 ? 2 : 0;
    if (len == 0 || i + len > text.size())
        return 0;
    cp = b & (0x7F >> len);
    for (std::size_t k = 1; k < len; ++k) {
        auto c = static_cast<unsigned char>(text[i + k]);
        if ((c & 0xC0) != 0x80)
            return 0;
        cp = (cp << 6) | (c & 0x3F);
    }
    constexpr char32_t kLeast[5] = {0, 0, 0x80, 0x800, 0x10000};
    if (cp < kLeast[len] || cp > 0x10FFFF || (cp >= 0xD800 && cp <= 0xDFFF))
        return 0;
    return len;
}

} // namespace

std::string Win1252ToUtf8(std::string_view bytes) {
    std::string out;
    out.reserve(bytes.size());
    for (char ch : bytes) {
        auto b = static_cast<unsigned char>(ch);
        if (b < 0x80)
            out.push_back(ch);
        else if (b < 0xA0)
            AppendUtf8(out, kHighTable[b - 0x80]);
        else
            AppendUtf8(out, b);
    }
    return out;
}

std::string Utf8ToWin1252(std::string_view text) {
    std::string out;
    out.reserve(text.size());
    for (std::size_t i = 0; i < text.size();) {
        auto b = static_cast<unsigned char>(text[i]);
        if (b < 0x80) {
            out.push_back(text[i++]);
            continue;
        }
        char32_t cp = 0;
        std::size_t len = DecodeUtf8(text, i, cp);
        if (len == 0) {
            out.push_back(text[i++]);
            continue;
        }
        out.push_back(ByteForCodePoint(cp));
        i += len;
    }
    return out;
}

std::vector<std::string> SplitLines(std::string_view text) {
    std::vector<std::string> lines;
    std::size_t start = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '\n' || text[i] == '\r') {
            lines.emplace_back(text.substr(start, i - start));
            if (text[i] == '\r' && i + 1 < text.size() && text[i + 1] == '\n')
                ++i;
            start = i + 1;
        }
    }
    if (start < text.size())
        lines.emplace_back(text.substr(start));
    return lines;
}

std::optional<std::string> ReadTextFile(const std::filesystem::path& path, std::size_t maxBytes) {
    FileBytes file = ReadFileBytes(path, maxBytes);
    if (!file.ok)
        return std::nullopt;
    return Win1252ToUtf8(file.bytes);
}

bool TextFileWriter::save(const std::filesystem::path& path, std::string* error) const {
    return WriteFileBytes(path, Utf8ToWin1252(m_text), error);
}

} // namespace vexo
