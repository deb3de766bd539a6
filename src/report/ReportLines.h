#pragma once
// The line writer of the report: every line ends in CR LF, and table lines are indented
// by their first tag, so the page reads as a table in any text editor.
#include <charconv>
#include <cstdint>
#include <string>
#include <string_view>

namespace vexo {

class ReportLines {
public:
    explicit ReportLines(std::string& out) : m_out(out) {}

    // Writes one line. A line that starts with "<tr", "</tr>" or "</b></tr>" is indented by
    // 6 blanks, one that starts with "<td" or "<th" by the cell indent (8, or 10 inside the
    // spectral data table); any other line as it stands.
    void put(std::string_view line) {
        m_out.append(static_cast<std::size_t>(Indent(line)), ' ');
        m_out.append(line);
        m_out.append("\r\n");
    }
    // Several lines in order. (Not an overload of put: a braced pair of texts would also
    // make a string_view from two pointers.)
    template <std::size_t N> void putAll(const std::string_view (&lines)[N]) {
        for (std::string_view line : lines)
            put(line);
    }
    // "<td>" + value + "</td>" as one cell line.
    void cell(std::string_view value) {
        m_scratch.assign("<td>").append(value).append("</td>");
        put(m_scratch);
    }
    void cell(int64_t value) { cell(Integer(value)); }
    // A settings row: "<tr>", the label cell as given, the value cell, "</tr>".
    void row(std::string_view labelCell, std::string_view value) {
        put("<tr>");
        put(labelCell);
        cell(value);
        put("</tr>");
    }
    void setDataTable(bool on) { m_cellIndent = on ? 10 : 8; }

    // Decimal text of an integer without a locale.
    static std::string_view IntegerView(int64_t value, char (&buf)[24]) {
        auto res = std::to_chars(buf, buf + sizeof buf, value);
        return {buf, static_cast<std::size_t>(res.ptr - buf)};
    }
    static std::string Integer(int64_t value) {
        char buf[24];
        return std::string(IntegerView(value, buf));
    }

private:
    int Indent(std::string_view line) const {
        if (line.starts_with("<tr") || line.starts_with("</tr>") || line.starts_with("</b></tr>"))
            return 6;
        if (line.starts_with("<td") || line.starts_with("<th"))
            return m_cellIndent;
        return 0;
    }

    std::string& m_out;
    std::string m_scratch;
    int m_cellIndent = 8;
};

} // namespace vexo
