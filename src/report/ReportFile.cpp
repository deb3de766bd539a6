// Writing the report and the URLs the preview navigates to.
#include <algorithm>

#include "base/FileBytes.h"
#include "base/TextFile.h"
#include "base/VexoError.h"
#include "report/ReportBuilder.h"

namespace vexo {

ReportWriteResult WriteReportFile(const std::filesystem::path& file, std::string_view text) {
    ReportWriteResult result;
    // Pages are ASCII but for the user's own texts; only those need converting.
    const bool ascii = std::all_of(text.begin(), text.end(),
                                   [](char c) { return static_cast<unsigned char>(c) < 0x80; });
    const std::string converted = ascii ? std::string() : Utf8ToWin1252(text);
    result.ok = WriteFileBytes(file, ascii ? text : std::string_view(converted), &result.error);
    return result;
}

ReportWriteResult WriteReport(const ReportInput& input, const std::filesystem::path& file) {
    std::string text;
    try {
        text = BuildReport(input);
    } catch (const FloatingPointError& e) {
        // A NaN or infinite number has no text in the page: the build ends, as a failed
        // write does, and the caller reports why.
        return {false, std::string("a value of the report cannot be shown (") + e.what() + ")"};
    }
    return WriteReportFile(file, text);
}

std::string ReportUrl(std::string_view appDir) {
    std::string out;
    out.reserve(appDir.size() * 3);
    // One pass does the five replacements of the rule: none of them makes a character
    // that a later one would replace again.
    for (char c : appDir) {
        switch (c) {
        case ' ':
            out += "%20";
            break;
        case '|':
            out += "%7C";
            break;
        case '/':
            out += "%2F";
            break;
        case ':':
            out += '|';
            break;
        case '\\':
            out += '/';
            break;
        default:
            out += c;
        }
    }
    return "file:///" + out + "/print.html";
}

std::string FileUrl(const std::filesystem::path& file) {
    static constexpr char kHex[] = "0123456789ABCDEF";
    std::string out = "file://";
    for (unsigned char c : file.string()) {
        const bool plain = (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') ||
                           (c >= '0' && c <= '9') || c == '-' || c == '.' || c == '_' || c == '~' ||
                           c == '/';
        if (plain) {
            out += static_cast<char>(c);
        } else {
            out += '%';
            out += kHex[c >> 4];
            out += kHex[c & 0x0F];
        }
    }
    return out;
}

} // namespace vexo
