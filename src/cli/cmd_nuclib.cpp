// vexo-cli nuclib: builds a nuclide library (".nli") from evaluated decay data in LARA
// files, writing it through the program's own library writer.
#include <algorithm>
#include <cctype>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <set>

#include "CliCommand.h"
#include "CliHelpers.h"
#include "base/NumberText.h"
#include "base/Rounding.h"
#include "nuclide/LaraFile.h"
#include "nuclide/NuclideLibrary.h"

namespace vexo::cli {
namespace {

const char* kUsage =
    "usage: vexo-cli nuclib --lara DIR --out FILE.nli [--min-intensity PERCENT]\n"
    "                       [--max-lines N] [--with-xrays] [--note TEXT]... NUCLIDE...\n"
    "\n"
    "Writes a nuclide library with the gamma lines of each NUCLIDE (e.g. Cs-137), read\n"
    "from DIR/NUCLIDE.lara.txt (LNE-LNHB LARA format, DDEP recommended data).\n"
    "  --min-intensity PERCENT  keep lines of at least this intensity per decay (default 0)\n"
    "  --max-lines N            keep at most the N strongest lines per nuclide (default all)\n"
    "  --with-xrays             keep X-ray lines as well as gamma lines\n"
    "  --note TEXT              a comment line (\"; TEXT\") at the top of the file\n"
    "Annihilation radiation (511 keV, \"G ANH\") counts as a gamma line. Lines are written\n"
    "in order of energy, nuclides in the order given. FILE is replaced.";

struct Options {
    std::filesystem::path laraDir;
    std::filesystem::path out;
    double minIntensity = 0.0;
    std::size_t maxLines = 0; // 0: no limit
    bool withXrays = false;
    std::vector<std::string> notes;
    std::vector<std::string> nuclides;
};

bool IsNuclideName(const std::string& name) {
    return !name.empty() && std::all_of(name.begin(), name.end(), [](char c) {
        return std::isalnum(static_cast<unsigned char>(c)) || c == '-';
    });
}

// Takes one option with its value, or one NUCLIDE; false for any other option.
bool TakeArg(const std::string& a, ArgCursor& cursor, Options& o) {
    if (a == "--lara") {
        o.laraDir = cursor.value(a);
    } else if (a == "--out") {
        o.out = cursor.value(a);
    } else if (a == "--min-intensity") {
        auto v = StrictDouble(cursor.value(a));
        if (!v || *v < 0)
            throw UsageError{"--min-intensity needs a percentage >= 0"};
        o.minIntensity = *v;
    } else if (a == "--max-lines") {
        auto v = StrictDouble(cursor.value(a));
        if (!v || *v < 0 || *v != std::floor(*v) || *v > 1e6)
            throw UsageError{"--max-lines needs a whole number >= 0"};
        o.maxLines = static_cast<std::size_t>(*v);
    } else if (a == "--note") {
        o.notes.push_back(cursor.value(a));
    } else if (a == "--with-xrays") {
        o.withXrays = true;
    } else if (a.rfind("--", 0) == 0) {
        return false;
    } else if (IsNuclideName(a)) {
        o.nuclides.push_back(a);
    } else {
        throw UsageError{"not a nuclide name: " + a};
    }
    return true;
}

Options ParseOptions(const std::vector<std::string>& args) {
    Options o;
    ParseArgs(
        args, [&](const std::string& a, ArgCursor& cursor) { return TakeArg(a, cursor, o); },
        "unknown option");
    if (o.laraDir.empty() || o.out.empty())
        throw UsageError{"--lara and --out are required"};
    if (o.nuclides.empty())
        throw UsageError{"name at least one nuclide"};
    return o;
}

struct Candidate {
    const LaraEmission* emission;
    std::string radiationText;
};

// The lines of one nuclide that go into the library, strongest first cut to maxLines,
// then in order of energy.
std::vector<Candidate> SelectLines(const LaraNuclide& n, const Options& o) {
    std::vector<Candidate> kept;
    for (const LaraEmission& e : n.emissions) {
        if (!e.parent.empty() && e.parent != n.name)
            continue; // a decay product's line appended to the file, not this nuclide's
        auto text = LaraRadiationText(e.type);
        if (!text)
            continue;
        bool gamma = *text == "G" || *text == "G ANH";
        bool xray = text->front() == 'X';
        if ((gamma || (xray && o.withXrays)) && e.intensityPercent >= o.minIntensity)
            kept.push_back({&e, *text});
    }
    std::stable_sort(kept.begin(), kept.end(), [](const Candidate& a, const Candidate& b) {
        return a.emission->intensityPercent > b.emission->intensityPercent;
    });
    if (o.maxLines > 0 && kept.size() > o.maxLines)
        kept.resize(o.maxLines);
    std::stable_sort(kept.begin(), kept.end(), [](const Candidate& a, const Candidate& b) {
        return a.emission->energyKeV < b.emission->energyKeV;
    });
    return kept;
}

clsNuclide MakeLine(const LaraNuclide& n, const Candidate& c) {
    clsNuclide line;
    line.szElemName = n.name;
    line.nAtNum = static_cast<int16_t>(n.atomicNumber); // LARA Z is checked to 0..200
    if (n.halfLifeUnit != 0)
        line.bSetHL(CSng(n.halfLife), CSng(n.halfLifeUnc), UnitCode(n.halfLifeUnit));
    line.sEnergy = CSng(c.emission->energyKeV);
    line.sDEnergy = CSng(c.emission->energyUncKeV);
    line.sIntensity = CSng(c.emission->intensityPercent);
    line.sDIntensity = CSng(c.emission->intensityUncPercent);
    line.bSetRadType(RadiationCode(*RadiationRowOfText(c.radiationText)));
    return line;
}

int RunNuclib(const std::vector<std::string>& args) {
    Options o = ParseOptions(args);
    std::vector<clsNuclide> lines;
    std::set<std::string> sectionNames;
    for (const std::string& name : o.nuclides) {
        LaraRead read = ReadLaraFile(o.laraDir / (name + ".lara.txt"));
        if (!read.ok)
            throw Failure{read.error};
        std::vector<Candidate> kept = SelectLines(read.nuclide, o);
        for (const Candidate& c : kept) {
            lines.push_back(MakeLine(read.nuclide, c));
            if (!sectionNames.insert(LibrarySectionName(lines.back())).second)
                std::fprintf(stderr,
                             "nuclib: %s: two lines share section [%s]; the later is kept\n",
                             name.c_str(), LibrarySectionName(lines.back()).c_str());
        }
        std::printf("%-8s %zu line(s)\n", name.c_str(), kept.size());
    }
    NuclideLibraryWrite written = ReplaceNuclideLibrary(o.out, lines, o.notes);
    if (!written.ok)
        throw Failure{written.error};
    std::printf("%s: %zu line(s) of %zu nuclide(s)\n", o.out.string().c_str(), sectionNames.size(),
                o.nuclides.size());
    return kExitOk;
}

const RegisterCommand kRegister{
    "nuclib", {"build a nuclide library (.nli) from LARA decay data", kUsage, RunNuclib}};

} // namespace
} // namespace vexo::cli
