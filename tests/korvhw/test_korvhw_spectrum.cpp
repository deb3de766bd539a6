// The shape of the simulated spectra: peak widths of both detector types, the
// features of a Cs-137 spectrum in NaI, and the threshold and fine-gain response.
#include "KorvhwTest.h"

namespace vexo::test {
namespace {

// Full width at half maximum of the peak with its top in [first, last], by linear
// interpolation between the channels around the two half-height crossings.
double Fwhm(const Readout& r, int32_t first, int32_t last) {
    const int32_t top = r.peakChannel(first, last);
    const double half = r.counts[top] / 2.0;
    int32_t left = top, right = top;
    while (left > 0 && r.counts[left] > half)
        --left;
    while (right < r.channels - 1 && r.counts[right] > half)
        ++right;
    const double leftEdge = left + (half - r.counts[left]) / (r.counts[left + 1] - r.counts[left]);
    const double rightEdge =
        right - 1 + (r.counts[right - 1] - half) / (r.counts[right - 1] - r.counts[right]);
    return rightEdge - leftEdge;
}

double Mean(const Readout& r, int32_t first, int32_t last) {
    return static_cast<double>(r.sum(first, last)) / (last - first + 1);
}

class KorvhwSpectrum : public KorvhwTest {
protected:
    void SetUp() override {
        UseConfig(SimDevice(1, "10000001", "NAI", kHvOn + "Sources=Cs-137:20000\nNoiseRate=0") +
                  SimDevice(2, "08000002", "GE", kHvOn + "Detector=HPGe\nSources=Co-60:5000"));
    }
};

TEST_F(KorvhwSpectrum, NaIResolutionIsSevenPercentAt662keV) {
    const int32_t h = Open("NAI");
    const Readout r = Acquire(h, 20);
    // 2.5 keV per channel: 7 % of 661.7 keV is 18.5 channels.
    EXPECT_NEAR(Fwhm(r, 150, 1000), 0.07 * 661.657 / 2.5, 1.2);
}

TEST_F(KorvhwSpectrum, GermaniumNeedsItsBiasAndResolves1point8keVAt1332keV) {
    const int32_t h = Open("GE");
    ASSERT_EQ(SetFloat(h, 21, 1500.0f), 0); // half the nominal 3000 V
    EXPECT_EQ(Acquire(h, 4).total(), 0);
    ASSERT_EQ(SetFloat(h, 21, 3000.0f), 0);
    ASSERT_EQ(SetInt(h, 6, 16384), 0);
    // 2.5/16 keV per channel.
    const Readout r = Acquire(h, 20);
    EXPECT_NEAR(Fwhm(r, 8000, 9000), 1.8 / (2.5 / 16), 1.0);
    EXPECT_NEAR(r.peakChannel(8000, 9000), 1332.492 / (2.5 / 16), 8);
    EXPECT_NEAR(r.peakChannel(7000, 7900), 1173.228 / (2.5 / 16), 4);
}

TEST_F(KorvhwSpectrum, CaesiumInNaIShowsXRaysBackscatterAndComptonEdge) {
    const int32_t h = Open("NAI");
    const Readout r = Acquire(h, 20);
    // Ba K X-rays at 32 keV (channel 13) stand well above 62-75 keV.
    EXPECT_GT(Mean(r, 9, 17), 5.0 * Mean(r, 25, 30));
    // Backscatter peak near 184 keV above the continuum at 275-325 keV.
    EXPECT_GT(Mean(r, 66, 82), 1.4 * Mean(r, 110, 130));
    // Compton edge at 477 keV: the continuum below it, the valley above it.
    EXPECT_GT(Mean(r, 160, 180), 1.6 * Mean(r, 215, 235));
    // Nothing above the full-energy peak of a single line at this rate.
    EXPECT_LT(r.sum(320, 1023), r.total() / 100);
}

TEST_F(KorvhwSpectrum, ThresholdRemovesLowPulsesBeforeTheyCostDeadTime) {
    const int32_t h = Open("NAI");
    Readout r = Acquire(h, 4);
    int32_t lowInput = 0, highInput = 0;
    ASSERT_EQ(Get(h, 35, lowInput), 0);
    EXPECT_GT(r.sum(0, 20), 0);
    ASSERT_EQ(SetInt(h, 18, 400), 0); // 400/16384 of full scale: channel 25 of 1024
    r = Acquire(h, 4);
    ASSERT_EQ(Get(h, 35, highInput), 0);
    EXPECT_EQ(r.sum(0, 24), 0);
    EXPECT_LT(highInput, lowInput * 0.95) << "X-rays no longer trigger";
}

} // namespace
} // namespace vexo::test
