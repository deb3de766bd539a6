#pragma once
// Text files as the program exchanges them: Windows-1252 bytes with CR LF line ends on
// disk, UTF-8 in memory. Readers accept LF-only and CR LF files alike.
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vexo {

// Windows-1252 bytes to UTF-8. The five bytes the code page leaves undefined map to the
// C1 control characters of the same value, so any byte string survives a round trip.
std::string Win1252ToUtf8(std::string_view bytes);

// UTF-8 to Windows-1252; characters the code page lacks become '?', and invalid UTF-8
// bytes are taken as Windows-1252 bytes as they stand.
std::string Utf8ToWin1252(std::string_view text);

// Splits text into lines at CR LF, LF or a lone CR; line ends are not kept. A final line
// end does not start another line.
std::vector<std::string> SplitLines(std::string_view text);

// Whole file as UTF-8 text; std::nullopt when it cannot be opened or read.
// `maxBytes` caps what is read, so a huge or endless file cannot exhaust memory.
std::optional<std::string> ReadTextFile(const std::filesystem::path& path,
                                        std::size_t maxBytes = 256u << 20);

// Collects lines and writes them in one go as Windows-1252 with CR LF after every line.
class TextFileWriter {
public:
    void line(std::string_view text) {
        m_text.append(text);
        m_text.append("\r\n");
    }
    // Writes (creating or replacing) the file through WriteFileBytes, so a failed write
    // leaves the old file as it was. On failure returns false and sets `error` to a
    // description such as "No space left on device".
    bool save(const std::filesystem::path& path, std::string* error = nullptr) const;
    const std::string& text() const { return m_text; }

private:
    std::string m_text;
};

} // namespace vexo
