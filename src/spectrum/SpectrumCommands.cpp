#include "spectrum/SpectrumCommands.h"

#include "base/FileBytes.h"
#include "spectrum/PlainCountsFile.h"
#include "spectrum/SpectrumFile.h"

namespace vexo {

std::string FileNamePart(std::string_view path) {
    std::size_t cut = path.find_last_of("\\/");
    return std::string(cut == std::string_view::npos ? path : path.substr(cut + 1));
}

OpenResult OpenSpectrum(SpectrumDocument& doc, const std::filesystem::path& path) {
    OpenResult result;
    doc.plot.rois.clear();
    doc.resetCalibration();
    result.full = bReadFullSpectrum(doc, path, &result.fullError);
    result.fullHeader = result.full || StartsAsFullSpectrum(ReadFileBytes(path, 9).bytes);
    if (result.full) {
        result.opened = true;
    } else {
        PlainReadResult plain = ReadPlainCounts(doc, path);
        // A plain file that stopped at a bad value still shows what was read before it;
        // the error tells the caller why it is short.
        result.opened = plain.fileRead;
        result.error = plain.error;
        result.notice = PlainCountsNotice(plain);
    }
    if (!result.opened)
        return result;
    doc.bFromFile = true;
    doc.szFileName = FileNamePart(path.string());
    return result;
}

SaveResult SaveSpectrum(const SpectrumDocument& doc, const std::filesystem::path& path) {
    SaveResult result;
    result.ok = SavePlainCounts(doc, path, &result.error);
    return result;
}

bool SaveAllSpectrum(const SpectrumDocument& doc, const std::filesystem::path& path,
                     Messages& messages) {
    std::string error;
    if (bSaveFullSpectrum(doc, path, &error))
        return true;
    messages.exclamation("Error saving file: " + error);
    return false;
}

} // namespace vexo
