// Reader of the full spectrum file.
#include <algorithm>
#include <vector>

#include "base/DateTime.h"
#include "base/FileBytes.h"
#include "base/Rounding.h"
#include "base/TextFile.h"
#include "base/VexoError.h"
#include "spectrum/FieldReader.h"
#include "spectrum/SpectrumFile.h"

namespace vexo {
namespace {

// A line with runs of blanks reduced to one, both ends trimmed, split at the blanks:
// the first `limit` parts, and in `rest` whatever follows them (still with its inner
// runs of blanks). Only the blank separates parts. Splitting no further than needed
// keeps a hostile line of millions of parts from costing memory.
std::vector<std::string_view> SplitParts(std::string_view line, std::size_t limit,
                                         std::string_view* rest = nullptr) {
    std::vector<std::string_view> parts;
    std::size_t i = 0;
    auto skipBlanks = [&] {
        while (i < line.size() && line[i] == ' ')
            ++i;
    };
    skipBlanks();
    while (i < line.size() && parts.size() < limit) {
        std::size_t start = i;
        while (i < line.size() && line[i] != ' ')
            ++i;
        parts.push_back(line.substr(start, i - start));
        skipBlanks();
    }
    if (rest)
        *rest = line.substr(i);
    return parts;
}

// Parts of `text` joined with single blanks (runs reduced, ends trimmed).
std::string CollapseBlanks(std::string_view text) {
    std::string out;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != ' ')
            out.push_back(text[i]);
        else if (!out.empty() && out.back() != ' ')
            out.push_back(' ');
    }
    if (!out.empty() && out.back() == ' ')
        out.pop_back();
    return out;
}

std::string_view RequireLine(FieldReader& in) {
    auto line = in.readLine();
    if (!line)
        throw NumberedError(62, "Input past end of file");
    return *line;
}

// Characters `first` (1-based) to first + count - 1 of a piece, as far as it reaches.
std::string_view Mid(std::string_view piece, std::size_t first, std::size_t count) {
    if (first - 1 >= piece.size())
        return {};
    return piece.substr(first - 1, count);
}

int16_t PieceValue(std::string_view piece, std::size_t first, std::size_t count) {
    return CInt(FieldNumber(Mid(piece, first, count)));
}

// Two-digit years as a calendar date function takes them: 0-29 are 2000-2029, 30-99
// are 1930-1999.
int WindowYear(int year) {
    if (year >= 0 && year <= 29)
        return 2000 + year;
    if (year >= 30 && year <= 99)
        return 1900 + year;
    return year;
}

// The date line is taken by character position: mm?dd?yyyy hh?nn?ss, separators unchecked.
void ReadDate(FieldReader& in, SpectrumDocument& doc) {
    std::vector<std::string_view> parts = SplitParts(RequireLine(in), 2);
    if (parts.size() < 2)
        return;
    DateTimeParts date;
    date.month = PieceValue(parts[0], 1, 2);
    date.day = PieceValue(parts[0], 4, 2);
    date.year = WindowYear(PieceValue(parts[0], 7, 4));
    double day = SerialFromParts(date);
    int year = PartsFromSerial(day).year;
    if (year < 100 || year > 9999)
        throw NumberedError(5, "Invalid procedure call or argument");
    int hour = PieceValue(parts[1], 1, 2);
    int minute = PieceValue(parts[1], 4, 2);
    int second = PieceValue(parts[1], 7, 2);
    doc.dtMeasured = day + (hour * 3600.0 + minute * 60.0 + second) / 86400.0;
}

void ReadTimes(FieldReader& in, SpectrumDocument& doc) {
    doc.sngLiveTime = in.readSingle();
    doc.sngRealTime = in.readSingle();
}

void ReadDeviceId(FieldReader& in, SpectrumDocument& doc) {
    std::vector<std::string_view> parts = SplitParts(RequireLine(in), 2);
    if (parts.size() < 2)
        return;
    doc.szDeviceName = Win1252ToUtf8(parts[0]);
    doc.szDeviceSerial = Win1252ToUtf8(parts[1]);
}

void ReadPresets(FieldReader& in, SpectrumDocument& doc) {
    doc.lPresetMode = in.readLong();
    doc.sngPresetTime = in.readSingle();
    doc.lPresetCounts = in.readLong();
    doc.lPresetFirstCh = in.readLong();
    doc.lPresetLastCh = in.readLong();
}

void ReadHardware(FieldReader& in, SpectrumDocument& doc) {
    doc.lMCSMode = in.readLong(); // the writer's "PHA"/"MCS" reads as 0
    doc.sngHighVoltage = in.readSingle();
    for (int32_t* field :
         {&doc.lCoarseGain, &doc.lFineGain, &doc.lDigitalGain, &doc.lThreshold, &doc.lLLD,
          &doc.lULD, &doc.lRiseTime, &doc.lFlatTop, &doc.lPoleZero, &doc.lBLR, &doc.lPUR})
        *field = in.readLong();
}

void ReadCalibration(FieldReader& in, SpectrumDocument& doc) {
    float offset = in.readSingle();
    float slope = in.readSingle();
    float quad = in.readSingle();
    doc.setCalibration({true, offset, slope, quad});
}

// One ROI line of at least two parts: first, last, [colour, [flag, [name...]]].
void AddRoi(const std::vector<std::string_view>& parts, std::string_view nameText,
            SpectrumDocument& doc) {
    PlotRoi roi;
    roi.lFirst = FieldLong(parts[0]);
    roi.lLast = FieldLong(parts[1]);
    roi.lColor = parts.size() > 2 ? FieldLong(parts[2]) : 255;
    roi.bFlag = parts.size() > 3 && FieldNumber(parts[3]) != 0.0;
    roi.szName = Win1252ToUtf8(CollapseBlanks(nameText));
    doc.plot.rois.push_back(roi);
    // Each ROI's record carries its plot number in 16 bits; more ROIs than that is an
    // overflow, which also caps what a hostile file can make us hold.
    CInt(static_cast<double>(doc.plot.rois.size()) - 1.0);
}

// ROI lines up to the next line starting with "$", which is left for the main loop.
void ReadRois(FieldReader& in, SpectrumDocument& doc) {
    doc.plot.rois.clear();
    for (;;) {
        std::size_t mark = in.position();
        auto line = in.readLine();
        if (!line)
            return;
        if (!line->empty() && line->front() == '$') {
            in.seek(mark);
            return;
        }
        std::string_view nameText;
        std::vector<std::string_view> parts = SplitParts(*line, 4, &nameText);
        if (parts.size() >= 2)
            AddRoi(parts, nameText, doc);
    }
}

int32_t ClampChannel(int32_t ch) {
    return std::clamp<int32_t>(ch, 0, MAX_CHANNELS - 1);
}

void ReadData(FieldReader& in, SpectrumDocument& doc) {
    int32_t first = ClampChannel(in.readLong());
    int32_t last = ClampChannel(in.readLong());
    doc.lChannels = last - first + 1;
    for (int32_t i = first; i <= last; ++i)
        doc.lCounts[static_cast<std::size_t>(i)] = in.readLong();
}

// Handles the section of a tag line; other lines (and "$MCA_CAL:") are skipped.
void ReadSection(std::string_view line, FieldReader& in, SpectrumDocument& doc) {
    if (line == "$DATE_MEA:")
        ReadDate(in, doc);
    else if (line == "$MEAS_TIM:")
        ReadTimes(in, doc);
    else if (line == "$HRDW_PARAMS:")
        ReadHardware(in, doc);
    else if (line == "$ACQ_SETTINGS:")
        ReadPresets(in, doc);
    else if (line == "$DEVICE_ID:")
        ReadDeviceId(in, doc);
    else if (line == "$SPEC_CAL:")
        ReadCalibration(in, doc);
    else if (line == "$ROI:")
        ReadRois(in, doc);
    else if (line == "$DATA:")
        ReadData(in, doc);
}

void ResetPresets(SpectrumDocument& doc) {
    doc.lPresetMode = 3;
    doc.sngPresetTime = 0.0f;
    doc.lPresetCounts = 0;
    doc.lPresetFirstCh = 0;
    doc.lPresetLastCh = 0;
}

bool Fail(std::string* error, const std::string& reason) {
    if (error)
        *error = reason;
    return false;
}

} // namespace

bool StartsAsFullSpectrum(std::string_view bytes) {
    // Nine characters without a line end among them are the start of the first line.
    return bytes.substr(0, 9) == "$SPEC_ID:";
}

bool ParseFullSpectrum(SpectrumDocument& doc, std::string_view bytes, std::string* error) {
    if (!StartsAsFullSpectrum(bytes))
        return Fail(error, "not a full spectrum file (no \"$SPEC_ID:\" line)");
    FieldReader in(bytes);
    in.readLine(); // the "$SPEC_ID:" line
    std::string_view section = "$SPEC_ID:";
    try {
        doc.szSpectrumID = Win1252ToUtf8(RequireLine(in));
        ResetPresets(doc);
        while (auto line = in.readLine()) {
            section = *line; // only a tag line's section can fail
            ReadSection(*line, in, doc);
        }
    } catch (const std::runtime_error& e) {
        // Input past the end, overflow, an impossible date: the file is broken. The
        // result says so and where; what was read so far stays, as the format defines.
        return Fail(error, std::string(e.what()) + " in " + std::string(section));
    }
    return true;
}

bool bReadFullSpectrum(SpectrumDocument& doc, const std::filesystem::path& path,
                       std::string* error) {
    FileBytes file = ReadFileBytes(path, kMaxSpectrumFileBytes);
    if (!file.ok)
        return Fail(error, file.error);
    if (file.truncated && StartsAsFullSpectrum(file.bytes))
        return Fail(error, "a spectrum file larger than " +
                               std::to_string(kMaxSpectrumFileBytes >> 20) + " MiB");
    return ParseFullSpectrum(doc, file.bytes, error);
}

} // namespace vexo
