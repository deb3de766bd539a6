#pragma once
// The gamma and X-ray lines of the check sources the simulator knows.
#include <string>
#include <string_view>
#include <vector>

namespace korvsim {

struct EmissionLine {
    double energyKeV;
    double perDecay; // emission probability per decay (0.851 = 85.1 %)
};

struct SourceNuclide {
    std::string name; // canonical spelling, e.g. "Cs-137"
    std::vector<EmissionLine> lines;
};

// Looks a nuclide up by name, ignoring case and an optional '-' ("cs137" finds
// "Cs-137"). Returns nullptr for a name the library does not hold.
const SourceNuclide* FindSource(std::string_view name);
// All canonical names, for messages.
std::string KnownSourceNames();

} // namespace korvsim
