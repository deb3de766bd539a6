#include "spectrum/PlainCountsFile.h"

#include <algorithm>

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

namespace {

bool IsBinaryByte(char c) {
    const auto b = static_cast<unsigned char>(c);
    return (b < 0x20 && b != '\t' && b != '\r' && b != '\n' && b != '\f') || b == 0x7F;
}

} // namespace

PlainReadResult ParsePlainCounts(SpectrumDocument& doc, std::string_view bytes) {
    PlainReadResult result;
    result.fileRead = true;
    result.binaryBytes = std::any_of(bytes.begin(), bytes.end(), IsBinaryByte);
    FieldReader in(bytes);
    int32_t n = 0;
    try {
        while (n < MAX_CHANNELS) {
            auto field = in.readField();
            if (!field)
                break;
            doc.lCounts[static_cast<std::size_t>(n)] = FieldLong(*field);
            if (!field->empty() && !StrictDouble(*field))
                ++result.textFields;
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

std::string PlainCountsNotice(const PlainReadResult& result) {
    if (!result.binaryBytes && result.textFields == 0)
        return {};
    return "Read as plain counts: " + std::to_string(result.channels) + " values; the file holds " +
           (result.binaryBytes ? "binary data" : "text") + " that is not counts";
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
