// Acquisitions on the simulated analyser in step-clock mode (0.5 s per status poll):
// presets ending with status 0, dead time, gain, HV and polarity conditions, MCS scans,
// the clears, the wall clock and reproducibility.
#include "KorvhwTest.h"

#include <chrono>
#include <cmath>
#include <thread>

namespace vexo::test {
namespace {

// Centroid of the counts within +-half channels of the largest count in [first, last].
double Centroid(const Readout& r, int32_t first, int32_t last, int32_t half) {
    const int32_t top = r.peakChannel(first, last);
    double weighted = 0.0, sum = 0.0;
    for (int32_t ch = std::max(0, top - half); ch <= std::min(r.channels - 1, top + half); ++ch) {
        weighted += ch * static_cast<double>(r.counts[ch]);
        sum += r.counts[ch];
    }
    return sum > 0 ? weighted / sum : -1.0;
}

class KorvhwAcquisition : public KorvhwTest {
protected:
    // One model-10 NaI detector with Cs-137 at the given rate; HV on and settled.
    int32_t OpenCs(double rateCps, const std::string& extra = "") {
        UseConfig(SimDevice(1, "10000001", "A",
                            kHvOn + "NoiseRate=0\nSources=Cs-137:" + std::to_string(rateCps) +
                                "\n" + extra));
        return Open("A");
    }
};

TEST_F(KorvhwAcquisition, PresetsStopWithStatusZero) {
    struct Case {
        int32_t mode; // id 30
        float seconds;
        int32_t counts, first, last; // id 28, window 31..32
        double rate;
    } cases[] = {
        {2, 5.0f, 0, 0, 0, 20000}, {3, 4.0f, 0, 0, 0, 150000}, {4, 0, 20000, 240, 290, 20000}};
    for (const Case& c : cases) {
        SCOPED_TRACE(c.mode);
        const int32_t h = OpenCs(c.rate);
        ASSERT_EQ(SetInt(h, 30, c.mode), 0);
        ASSERT_EQ(SetFloat(h, 9, c.seconds), 0);
        ASSERT_EQ(SetInt(h, 28, c.counts), 0);
        ASSERT_EQ(SetInt(h, 31, c.first), 0);
        ASSERT_EQ(SetInt(h, 32, c.last), 0);
        ASSERT_EQ(fn().StartAcquisition(h), 0);
        const int32_t polls = PollUntilStopped(h, 100);
        const Readout r = Read(h);
        ASSERT_EQ(r.status, 0);
        if (c.mode == 2) {
            EXPECT_EQ(polls, 10);
            EXPECT_FLOAT_EQ(r.realTime, 5.0f);
            EXPECT_LT(r.liveTime, r.realTime);
        } else if (c.mode == 3) {
            EXPECT_GT(polls, 8);
            EXPECT_FLOAT_EQ(r.liveTime, 4.0f);
            EXPECT_GT(r.realTime, 4.5f); // the live time runs slower at this rate
        } else {
            EXPECT_EQ(r.sum(240, 290), 20000);
            EXPECT_GT(r.total(), 20000) << "counts outside the window do not count";
        }
        Status(h); // more polls change nothing once stopped
        EXPECT_EQ(Read(h).total(), r.total());
        Close(h);
    }
}

TEST_F(KorvhwAcquisition, WithoutWindowRegistersTheCountsPresetUsesTheDiscriminators) {
    const int32_t h = OpenCs(20000, "MissingIds=32");
    int32_t value = 0;
    EXPECT_EQ(Get(h, 32, value), -7);
    EXPECT_EQ(Get(h, 31, value), 0);
    for (auto [id, v] : {std::pair{30, 4}, {28, 10000}, {7, 240}, {8, 290}})
        ASSERT_EQ(SetInt(h, id, v), 0);
    ASSERT_EQ(fn().StartAcquisition(h), 0);
    EXPECT_GT(PollUntilStopped(h, 100), 1);
    EXPECT_EQ(Read(h).sum(240, 290), 10000);
}

TEST_F(KorvhwAcquisition, WithoutPresetItAcquiresUntilStopped) {
    const int32_t h = OpenCs(1000);
    ASSERT_EQ(SetInt(h, 30, 0), 0);
    ASSERT_EQ(SetFloat(h, 9, 1.0f), 0); // a time without the time bit is no preset
    ASSERT_EQ(fn().StartAcquisition(h), 0);
    EXPECT_EQ(PollUntilStopped(h, 60), -1);
    EXPECT_EQ(Status(h), 1);
    ASSERT_EQ(fn().StopAcquisition(h), 0);
    EXPECT_EQ(Status(h), 0);
    EXPECT_NEAR(Read(h).realTime, 30.5f, 0.01f);
}

TEST_F(KorvhwAcquisition, DeadTimeRisesWithRateAsNonParalysable) {
    // Rise 80 + flat top 40 ticks at 80 MHz: 2.5 us of processing per pulse.
    const double tau = 2.5e-6;
    double lastDead = -1.0;
    for (double rate : {2000.0, 40000.0, 150000.0}) {
        const int32_t h = OpenCs(rate);
        const Readout r = Acquire(h, 8);
        const double dead = 1.0 - r.liveTime / r.realTime;
        const double expected = rate * tau / (1.0 + rate * tau);
        EXPECT_NEAR(dead, expected, 0.01 + 0.05 * expected) << rate;
        EXPECT_GT(dead, lastDead) << rate;
        lastDead = dead;
        // Input counts include the pulses lost in dead time.
        int32_t input = 0;
        ASSERT_EQ(Get(h, 35, input), 0);
        EXPECT_GE(input, r.total());
        EXPECT_NEAR(input / r.realTime, rate, 0.03 * rate);
        Close(h);
    }
}

TEST_F(KorvhwAcquisition, PeakFollowsGainsChannelsAndHighVoltage) {
    const int32_t h = OpenCs(20000);
    const double base = Centroid(Acquire(h, 4), 150, 1023, 12);
    EXPECT_NEAR(base, 661.657 / 2.5, 3.0) << "power-up gain: 2.5 keV per channel";
    ASSERT_EQ(SetInt(h, 13, 3), 0);
    EXPECT_NEAR(Centroid(Acquire(h, 4), 150, 1023, 24) / base, 2.0, 0.02);
    ASSERT_EQ(SetInt(h, 13, 2), 0);
    ASSERT_EQ(SetInt(h, 6, 4096), 0);
    EXPECT_NEAR(Centroid(Acquire(h, 4), 600, 4095, 48) / base, 4.0, 0.04);
    ASSERT_EQ(SetInt(h, 6, 1024), 0);
    // The fine gain spans half to one and a half.
    int32_t fine = 0;
    ASSERT_EQ(Get(h, 14, fine), 0);
    for (auto [steps, factor] : {std::pair{0, 0.5}, {16383, 1.5}}) {
        ASSERT_EQ(SetInt(h, 14, steps), 0);
        EXPECT_NEAR(Centroid(Acquire(h, 4), 100, 1023, 24) / base, factor, 0.02) << steps;
    }
    ASSERT_EQ(SetInt(h, 14, fine), 0);
    ASSERT_EQ(SetFloat(h, 21, 880.0f), 0); // photomultiplier gain grows as HV^7
    for (int i = 0; i < 8; ++i)
        Status(h); // wait out the ramp
    EXPECT_NEAR(Centroid(Acquire(h, 4), 150, 1023, 24) / base, std::pow(1.1, 7), 0.05);
}

TEST_F(KorvhwAcquisition, DiscriminatorsCutTheSpectrum) {
    const int32_t h = OpenCs(20000);
    ASSERT_EQ(SetInt(h, 7, 200), 0);
    ASSERT_EQ(SetInt(h, 8, 300), 0);
    const Readout r = Acquire(h, 4);
    EXPECT_EQ(r.sum(0, 199) + r.sum(301, 1023), 0);
    EXPECT_GT(r.sum(200, 300), 10000);
}

TEST_F(KorvhwAcquisition, NoCountsWithoutHighVoltageOrWithWrongPolarity) {
    const int32_t h = OpenCs(20000);
    ASSERT_EQ(SetInt(h, 22, 0), 0);
    Readout r = Acquire(h, 6);
    EXPECT_EQ(r.total(), 0);
    EXPECT_FLOAT_EQ(r.realTime, 3.0f) << "time runs all the same";
    ASSERT_EQ(SetInt(h, 22, 1), 0);
    ASSERT_EQ(SetInt(h, 11, 1), 0); // the NaI detector gives positive pulses
    EXPECT_EQ(Acquire(h, 6).total(), 0);
    int32_t input = -1;
    EXPECT_EQ(Get(h, 35, input), 0);
    EXPECT_EQ(input, 0);
    ASSERT_EQ(SetInt(h, 11, 0), 0);
    EXPECT_GT(Acquire(h, 2).total(), 0);
}

TEST_F(KorvhwAcquisition, RampAndInhibitShowInTheHighVoltageWord) {
    UseConfig(SimDevice(1, "10000001", "A", "HVRampSeconds=2\nSources=Cs-137:20000") +
              SimDevice(2, "08000002", "B", "HVRampSeconds=2") +
              SimDevice(3, "10000003", "C", "HVInhibit=1\nHVOnAtPowerUp=1"));
    const int32_t a = Open("A"), b = Open("B"), c = Open("C");
    int32_t word = 0;
    ASSERT_EQ(SetInt(a, 22, 1), 0);
    ASSERT_EQ(SetInt(b, 22, 1), 0);
    EXPECT_EQ(Get(a, 22, word), 0);
    EXPECT_EQ(word, 3) << "model 10 reports the ramp";
    EXPECT_EQ(Get(b, 22, word), 0);
    EXPECT_EQ(word, 1) << "model 08 has no ramp bit";
    ASSERT_EQ(fn().StartAcquisition(a), 0);
    Status(a);
    Status(a);
    EXPECT_EQ(Read(a).total(), 0) << "no counts while ramping";
    Status(a);
    Status(a);
    EXPECT_EQ(Get(a, 22, word), 0);
    EXPECT_EQ(word, 1);
    Status(a);
    EXPECT_GT(Read(a).total(), 0);

    EXPECT_EQ(Get(c, 22, word), 0);
    EXPECT_EQ(word, 5) << "on, but inhibited";
    ASSERT_EQ(fn().StartAcquisition(c), 0);
    EXPECT_EQ(Status(c), 5) << "acquiring, suspended";
    EXPECT_EQ(Read(c).realTime, 0.0f);
    ASSERT_EQ(SetInt(c, 51, 0), 0); // inhibit input disabled
    EXPECT_EQ(Get(c, 22, word), 0);
    EXPECT_EQ(word, 1);
    EXPECT_EQ(Status(c), 1);
}

TEST_F(KorvhwAcquisition, ExternalStartWaitsForTheGate) {
    const int32_t h = OpenCs(1000, "ExternalGateSeconds=1");
    ASSERT_EQ(SetInt(h, 30, 8), 0);
    ASSERT_EQ(fn().StartAcquisition(h), 0);
    EXPECT_EQ(Status(h), 3);
    EXPECT_EQ(Read(h).realTime, 0.0f);
    Status(h);
    EXPECT_EQ(Status(h), 1);
    EXPECT_FLOAT_EQ(Read(h).realTime, 0.5f);
}

TEST_F(KorvhwAcquisition, PileUpSumsOnlyWithoutTheRejector) {
    double sumShare[2] = {};
    const int32_t h = OpenCs(150000);
    for (int32_t pur : {0, 1}) {
        ASSERT_EQ(SetInt(h, 20, pur), 0);
        const Readout r = Acquire(h, 4);
        // Sum peak of two 662 keV pulses near channel 529.
        sumShare[pur] = static_cast<double>(r.sum(500, 560)) / r.total();
    }
    EXPECT_GT(sumShare[0], 5.0 * sumShare[1]);
    EXPECT_GT(sumShare[0], 0.002);
}

TEST_F(KorvhwAcquisition, McsFillsOneChannelPerDwellAndStops) {
    const int32_t h = OpenCs(20000);
    // 256 channels of 0.5 s; the SCA window on the photopeak in pulse-height channels.
    for (auto [id, v] : {std::pair{5, 1}, {6, 256}, {7, 60}, {8, 72}})
        ASSERT_EQ(SetInt(h, id, v), 0);
    ASSERT_EQ(SetFloat(h, 9, 0.5f), 0);
    ASSERT_EQ(fn().StartAcquisition(h), 0);
    for (int i = 0; i < 10; ++i)
        Status(h);
    int32_t channel = -1;
    ASSERT_EQ(Get(h, 27, channel), 0);
    EXPECT_EQ(channel, 10);
    Readout r = Read(h);
    EXPECT_EQ(r.channels, 256);
    for (int32_t ch = 0; ch < 10; ++ch)
        EXPECT_GT(r.counts[ch], 1000) << ch;
    EXPECT_EQ(r.sum(10, 255), 0);
    EXPECT_EQ(PollUntilStopped(h, 400), 246);
    r = Read(h);
    EXPECT_GT(r.counts[255], 1000);
    EXPECT_FLOAT_EQ(r.realTime, 128.0f);
}

TEST_F(KorvhwAcquisition, ShorterDwellMidScanMovesOn) {
    const int32_t h = OpenCs(5000);
    ASSERT_EQ(SetInt(h, 5, 1), 0);
    ASSERT_EQ(SetInt(h, 6, 256), 0);
    ASSERT_EQ(SetFloat(h, 9, 2.0f), 0);
    ASSERT_EQ(fn().StartAcquisition(h), 0);
    Status(h);
    Status(h); // 1 s into a 2 s dwell
    ASSERT_EQ(SetFloat(h, 9, 0.25f), 0);
    Status(h);
    int32_t channel = 0;
    ASSERT_EQ(Get(h, 27, channel), 0);
    EXPECT_EQ(channel, 3) << "the overdue channel closes, then two of 0.25 s";
    EXPECT_FLOAT_EQ(Read(h).realTime, 1.5f);
}

TEST_F(KorvhwAcquisition, ClearAllMemoryAndTimeEachClearTheirPart) {
    const int32_t h = OpenCs(5000);
    Acquire(h, 4);
    ASSERT_EQ(fn().ClearMemory(h), 0);
    Readout r = Read(h);
    EXPECT_EQ(r.total(), 0);
    EXPECT_FLOAT_EQ(r.realTime, 2.0f);
    Acquire(h, 2);
    ASSERT_EQ(fn().ClearTime(h), 0);
    r = Read(h);
    EXPECT_GT(r.total(), 0);
    EXPECT_EQ(r.realTime, 0.0f);
    ASSERT_EQ(fn().ClearAll(h), 0);
    r = Read(h);
    EXPECT_EQ(r.total() + r.realTime + r.liveTime, 0);
}

TEST_F(KorvhwAcquisition, WallClockRunsAtTheSpeedFactorOverLongGaps) {
    // At a million times speed 50 ms are about 14 hours of acquisition at 10^5 counts/s.
    UseConfig(SimDevice(1, "10000001", "A", "Sources=Cs-137:100000\n" + kHvOn) +
                  SimDevice(2, "10000002", "B", "Sources=Cs-137:100000\n" + kHvOn),
              "Clock=wall\nSpeed=1000000\n");
    const int32_t a = Open("A"), b = Open("B");
    ASSERT_EQ(SetInt(a, 20, 0), 0); // pile-up summing on: the costly case
    for (auto [id, v] : {std::pair{30, 4}, {28, 1000000}, {31, 240}, {32, 290}})
        ASSERT_EQ(SetInt(b, id, v), 0);
    ASSERT_EQ(fn().StartAcquisition(a), 0);
    ASSERT_EQ(fn().StartAcquisition(b), 0);
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    EXPECT_EQ(Status(a), 1);
    EXPECT_EQ(Status(b), 0);
    const Readout ra = Read(a), rb = Read(b);
    EXPECT_GT(ra.realTime, 40000.0f);
    EXPECT_GT(ra.sum(500, 560), 0) << "pile-up summing kept up";
    EXPECT_EQ(rb.sum(240, 290), 1000000) << "the counts preset still stops exactly";
}

TEST_F(KorvhwAcquisition, SameSeedSameSpectrum) {
    const int32_t h = OpenCs(30000);
    const Readout first = Acquire(h, 6);
    Close(h);
    const int32_t again = Open("A"); // reopening restarts the device's random stream
    const Readout second = Acquire(again, 6);
    Close(again);
    UseConfig(SimDevice(1, "10000001", "A", "Sources=Cs-137:30000\nNoiseRate=0\n" + kHvOn),
              "Seed=8\n");
    const Readout other = Acquire(Open("A"), 6);
    EXPECT_EQ(first.counts, second.counts);
    EXPECT_EQ(first.liveTime, second.liveTime);
    EXPECT_NE(first.counts, other.counts);
}

} // namespace
} // namespace vexo::test
