#pragma once
// Evaluated decay data in the LARA text format of LNE-LNHB (DDEP recommended values):
// semicolon-separated lines such as
//   Nuclide ; Cs-137
//   Z ; 55
//   Half-life (a) ; 30.018 ; 0.022
//   Half-life (s) ; 947.3E6 ; 0.7E6
//   Energy (keV) ; Ener. unc. (keV) ; Intensity (%) ; Int. unc. (%) ; Type ; Origin ; ...
//   661.6553 ; 0.0030 ; 85.01 ; 0.20 ; g ; Ba-137 ; 2 ; 0 ;
// Only what a nuclide library needs is taken: name, atomic number, half-life in its
// natural unit, and the emission lines.
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vexo {

struct LaraEmission {
    double energyKeV = 0.0;
    double energyUncKeV = 0.0;        // 0 when the file leaves it blank
    double intensityPercent = 0.0;    // per decay of the file's nuclide
    double intensityUncPercent = 0.0; // 0 when blank
    std::string type;                 // as in the file: "g", "g511", "XKa1", "XK'b1", "XL", "a"...
    std::string origin;               // emitting nuclide or element, e.g. "Ba-137"
    // The nuclide whose decay the line belongs to, in files that append a decay
    // product's lines in blocks with a "Parent" column; empty when the file has none.
    std::string parent;
};

struct LaraNuclide {
    std::string name;      // "Cs-137"
    int atomicNumber = 0;  // Z
    double halfLife = 0.0; // in halfLifeUnit; 0 when the file gives none
    double halfLifeUnc = 0.0;
    int halfLifeUnit = 0;                // our unit number 1..9 (see clsNuclide.h); 0 when none
    std::vector<LaraEmission> emissions; // in file order (increasing energy)
};

struct LaraRead {
    bool ok = false;
    LaraNuclide nuclide;
    std::string error; // why ok is false
};

// Our unit number for a LARA half-life unit ("a" -> years, "d", "h", "min", "s", "ms",
// "us"/"µs", "ns", "ps"); std::nullopt for any other.
std::optional<int> LaraHalfLifeUnit(std::string_view unit);

// Our radiation-table text for a LARA emission type: "g" -> "G", "g511" -> "G ANH",
// "XKa1" -> "X KA1", "XKa2" -> "X KA2", "XK'b1"/"XK'b2"/"XKb" -> "X KB", "XK" -> "X K",
// "XL" and its sub-shells -> "X L", "a" -> "A", "b-" -> "B-", "b+" -> "B+";
// std::nullopt for a type the table cannot express.
std::optional<std::string> LaraRadiationText(std::string_view type);

// Parses a whole file's text. Lines of "---" are rules (or banners of a parent's block)
// and are skipped. Fails (ok false, error set) without a "Nuclide" line or
// with an emission line whose energy or intensity is not a number. The half-life is
// taken from the first "Half-life (unit)" line other than seconds, else from the
// seconds line.
LaraRead ParseLara(std::string_view text);

// Reads and parses a file (at most 4 MB are read).
LaraRead ReadLaraFile(const std::filesystem::path& path);

} // namespace vexo
