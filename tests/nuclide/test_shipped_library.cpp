// The nuclide library shipped with the program (data/Vexo.nli) reads back cleanly and
// holds the lines users calibrate with.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "base/Messages.h"
#include "nuclide/NuclideLibrary.h"
#include "spectrum/CalibrationSolver.h"

using namespace vexo;

namespace {

std::filesystem::path Shipped() {
    return std::filesystem::path(VEXO_SOURCE_DIR) / "data" / "Vexo.nli";
}

const clsNuclide* Find(const std::vector<clsNuclide>& lines, const std::string& name, float keV,
                       const std::string& radiation) {
    for (const auto& l : lines)
        if (l.szElemName == name && std::fabs(l.sEnergy - keV) < 0.01f &&
            l.szDecayRadEx() == radiation)
            return &l;
    return nullptr;
}

} // namespace

TEST(ShippedLibrary, IsIdentifiedAndReadsWithoutWarnings) {
    ASSERT_TRUE(IsNuclideLibrary(Shipped()));
    auto read = ReadNuclideLibrary(Shipped());
    ASSERT_TRUE(read.ok) << read.error;
    EXPECT_TRUE(read.warnings.empty());
    EXPECT_GE(read.lines.size(), 40u);
    for (const auto& l : read.lines) {
        EXPECT_FALSE(l.szElemName.empty());
        EXPECT_GT(l.nAtNum, 0);
        EXPECT_GT(l.sEnergy, 0.0f);
        EXPECT_GE(l.sIntensity, 1.0f) << l.szElemName << " " << l.sEnergy;
        EXPECT_GT(l.dGetHLSec(), 0.0) << l.szElemName;
        EXPECT_EQ(l.eDecayRad(), Gamma) << l.szElemName;
    }
}

TEST(ShippedLibrary, HoldsTheCalibrationLines) {
    auto read = ReadNuclideLibrary(Shipped());
    ASSERT_TRUE(read.ok);
    struct Want {
        const char* name;
        float keV;
        const char* radiation;
    } wants[] = {{"Am-241", 59.54f, "G"},   {"Ba-133", 356.01f, "G"},  {"Cs-137", 661.66f, "G"},
                 {"Co-57", 122.06f, "G"},   {"Co-60", 1173.23f, "G"},  {"Co-60", 1332.49f, "G"},
                 {"Eu-152", 121.78f, "G"},  {"Eu-152", 1408.01f, "G"}, {"Na-22", 511.0f, "G ANH"},
                 {"Na-22", 1274.54f, "G"},  {"Mn-54", 834.85f, "G"},   {"K-40", 1460.82f, "G"},
                 {"Ac-228", 911.2f, "G"},   {"Pb-212", 238.63f, "G"},  {"Bi-212", 727.33f, "G"},
                 {"Tl-208", 2614.51f, "G"}, {"Ra-226", 186.21f, "G"},  {"Pb-214", 351.93f, "G"},
                 {"Bi-214", 609.31f, "G"}};
    for (const auto& w : wants)
        EXPECT_TRUE(Find(read.lines, w.name, w.keV, w.radiation)) << w.name << " " << w.keV;
    const clsNuclide* cs = Find(read.lines, "Cs-137", 661.66f, "G");
    ASSERT_TRUE(cs);
    EXPECT_EQ(cs->nAtNum, 55);
    EXPECT_EQ(cs->eUnits(), Years);
    EXPECT_FLOAT_EQ(cs->sHL(), 30.018f);
    EXPECT_FLOAT_EQ(cs->sIntensity, 85.01f);
}

TEST(ShippedLibrary, FillsTheCalibrationEnergyLists) {
    ScriptedMessages msgs;
    auto items = EnergyListEntries(Shipped(), msgs);
    EXPECT_TRUE(msgs.shown().empty());
    auto read = ReadNuclideLibrary(Shipped());
    EXPECT_EQ(items.size(), read.lines.size());
    ASSERT_FALSE(items.empty());
    EXPECT_NE(std::find(items.begin(), items.end(), "661.6553 (Cs-13755:661.66:G)"), items.end());
}
