#include "spectrum/PlainCountsFile.h"

#include "base/FileBytes.h"
#include "base/NumberText.h"
#include "base/TextFile.h"
#include "base/VexoError.h"
#include "spectrum/FieldReader.h"

namespace vexo {

bool SavePlainCounts(const SpectrumDocument& doc, const std::filesystem::path& path,
                     std::string* error) {
    if (doc.lChannels > static_cast<int32_t>(COUNTS_SLOTS)) {
        if (error)
            *error = SubscriptError().what();
        return false;
    }
    TextFileWriter out;
    for (int32_t i = 0; i < doc.lChannels; ++i)
        out.line(IntegerItem(doc.lCounts[static_cast<std::size_t>(i)]));
    return out.save(path, error);
}

PlainReadResult ParsePlainCounts(SpectrumDocument& doc, std::string_view bytes) {
    PlainReadResult result;
    result.fileRead = true;
    FieldReader in(bytes);
    int32_t n = 0;
    try {
        while (n < MAX_CHANNELS) {
            auto field = in.readField();
            if (!field)
                break;
            doc.lCounts[static_cast<std::size_t>(n)] = FieldLong(*field);
            ++n;
        }
        result.ok = true;
    } catch (const OverflowError& e) {
        // A count that does not fit ends the reading; the caller learns why.
        result.error = std::string(e.what()) + " in value " + std::to_string(n + 1);
    }
    doc.lChannels = n;
    result.channels = n;
    return result;
}

PlainReadResult ReadPlainCounts(SpectrumDocument& doc, const std::filesystem::path& path) {
    FileBytes file = ReadFileBytes(path, kMaxPlainFileBytes);
    if (!file.ok) {
        PlainReadResult result;
        result.error = file.error;
        return result;
    }
    return ParsePlainCounts(doc, file.bytes);
}

} // namespace vexo
