#pragma once
// Page count of a PDF file, as poppler's pdfinfo reads it.
#include <cstdio>
#include <string>

namespace vexo::test {

// -1 when pdfinfo cannot read the file (or is not installed).
inline int PdfPages(const std::string& file) {
    FILE* pipe = popen(("pdfinfo '" + file + "' 2>/dev/null").c_str(), "r");
    if (!pipe)
        return -1;
    int pages = -1;
    char line[512];
    while (fgets(line, sizeof line, pipe))
        if (std::sscanf(line, "Pages: %d", &pages) == 1)
            break;
    while (fgets(line, sizeof line, pipe)) {
    }
    pclose(pipe);
    return pages;
}

} // namespace vexo::test
