#include "SourceLibrary.h"

#include <cctype>

namespace korvsim {

namespace {

// Energies in keV, emission probabilities per decay. X-ray groups are lumped into one
// line per shell group, which is all a scintillator or the low end of a germanium
// spectrum can show.
const std::vector<SourceNuclide>& Library() {
    static const std::vector<SourceNuclide> library = {
        {"Cs-137", {{661.657, 0.851}, {32.06, 0.0563}, {36.40, 0.0134}}},
        {"Co-60", {{1173.228, 0.9985}, {1332.492, 0.9998}}},
        {"K-40", {{1460.820, 0.1066}}},
        {"Am-241", {{59.541, 0.359}, {26.345, 0.024}, {17.75, 0.19}, {13.90, 0.13}}},
        {"Ba-133",
         {{356.013, 0.6205},
          {80.998, 0.329},
          {302.851, 0.1834},
          {383.849, 0.0894},
          {276.399, 0.0716},
          {53.162, 0.0214},
          {30.90, 0.961},
          {35.0, 0.227}}},
        {"Na-22", {{511.0, 1.807}, {1274.537, 0.9994}}},
    };
    return library;
}

std::string Folded(std::string_view name) {
    std::string out;
    for (char c : name)
        if (c != '-' && c != ' ')
            out += static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return out;
}

} // namespace

const SourceNuclide* FindSource(std::string_view name) {
    const std::string key = Folded(name);
    for (const SourceNuclide& nuclide : Library())
        if (Folded(nuclide.name) == key)
            return &nuclide;
    return nullptr;
}

std::string KnownSourceNames() {
    std::string names;
    for (const SourceNuclide& nuclide : Library())
        names += (names.empty() ? "" : ", ") + nuclide.name;
    return names;
}

} // namespace korvsim
