// The checkpoint of a running measurement on a stepped clock: written every 10 s of a
// run and at its end, gone once saved, not written again for a spectrum already saved.
#include <gtest/gtest.h>

#include "TestSupport.h"
#include "shell/MeasurementCheckpoint.h"
#include "spectrum/SpectrumFile.h"

namespace vexo {
namespace {

TEST(MeasurementCheckpoint, EveryTenSecondsAndAtTheStopUntilSaved) {
    test::TempDir dir;
    ScriptedMessages messages;
    double now = 0.0;
    MeasurementCheckpoint checkpoint(dir.path(), messages, [&] { return now; });
    auto doc = std::make_unique<SpectrumDocument>();
    doc->lChannels = 8;
    const struct {
        double seconds;
        bool acquiring;
        int32_t count; // channel 0 at this pass
        int32_t kept;  // channel 0 of the checkpoint afterwards; -1: none
    } passes[] = {{0, true, 1, -1}, {9.5, true, 2, -1}, {10, true, 3, 3},  {19, true, 4, 3},
                  {20, true, 5, 5}, {21, false, 6, 6},  {40, false, 7, 6}, {41, true, 7, 6},
                  {51, true, 7, 7}, {52, false, 8, 8}};
    for (const auto& p : passes) {
        now = p.seconds;
        doc->lCounts[0] = p.count;
        EXPECT_TRUE(checkpoint.tick(*doc, p.acquiring));
        auto kept = std::make_unique<SpectrumDocument>();
        EXPECT_EQ(bReadFullSpectrum(*kept, checkpoint.file()) ? kept->lCounts[0] : -1, p.kept)
            << p.seconds;
    }
    checkpoint.saved(*doc);
    EXPECT_FALSE(std::filesystem::exists(checkpoint.file()));
    checkpoint.tick(*doc, true);
    now = 70.0;
    checkpoint.tick(*doc, false); // the saved spectrum is not written again
    EXPECT_FALSE(std::filesystem::exists(checkpoint.file()));
    EXPECT_TRUE(messages.shown().empty());
}

} // namespace
} // namespace vexo
