#pragma once
// The simulated analyser's exports called directly, as any user of a device library
// calls them. Each test writes its own configuration (the built-in three devices until
// it does) and every handle it opens is closed after it.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <numeric>
#include <string>
#include <vector>

#include "SimAnalyser.h"

namespace vexo::test {

// Device keys for the high voltage on and settled from power-up.
inline const std::string kHvOn = "HVOnAtPowerUp=1\nHVRampSeconds=0\n";

// One spectrum read-out.
struct Readout {
    int32_t status = 0;
    std::vector<int32_t> counts = std::vector<int32_t>(KORVHW_SPECTRUM_SLOTS + 1, 0);
    int32_t channels = 0;
    float realTime = 0.0f;
    float liveTime = 0.0f;

    long long sum(int32_t first, int32_t last) const {
        last = std::min(last, channels - 1);
        return std::accumulate(counts.begin() + first, counts.begin() + last + 1, 0LL);
    }
    long long total() const { return sum(0, channels - 1); }
    // Channel of the largest count in [first, last].
    int32_t peakChannel(int32_t first, int32_t last) const {
        last = std::min(last, channels - 1);
        return static_cast<int32_t>(
            std::max_element(counts.begin() + first, counts.begin() + last + 1) - counts.begin());
    }
};

class KorvhwTest : public ::testing::Test {
protected:
    void TearDown() override {
        for (int32_t h : m_open)
            fn().CloseDevice(h);
    }
    const KorvhwFunctions& fn() const { return m_sim.lib->functions(); }
    void UseConfig(const std::string& devices, const std::string& simulatorKeys = "") {
        m_sim.write(devices, simulatorKeys);
    }
    // Restarts discovery and opens `path`; TearDown closes it.
    int32_t Open(const std::string& path) {
        fn().FindDevicesEx(0, 50, 1);
        int32_t handle = 0;
        EXPECT_EQ(fn().OpenDevice(path.c_str(), &handle), 0) << path;
        if (handle != 0)
            m_open.push_back(handle);
        return handle;
    }
    void Close(int32_t handle) {
        fn().CloseDevice(handle);
        m_open.erase(std::remove(m_open.begin(), m_open.end(), handle), m_open.end());
    }
    template <class T> int32_t Get(int32_t h, int32_t id, T& value) {
        return fn().GetParam(h, id, &value, 4);
    }
    int32_t SetInt(int32_t h, int32_t id, int32_t value) { return fn().SetParam(h, id, &value, 4); }
    int32_t SetFloat(int32_t h, int32_t id, float value) { return fn().SetParam(h, id, &value, 4); }
    std::string GetText(int32_t h, int32_t id) {
        char buffer[64] = {};
        EXPECT_EQ(fn().GetParam(h, id, buffer, sizeof buffer), 0) << id;
        return std::string(buffer, strnlen(buffer, sizeof buffer));
    }
    // The status word; every poll moves the step clock on by half a second.
    int32_t Status(int32_t h) {
        int32_t word = -1;
        EXPECT_EQ(fn().GetAcquisitionStatus(h, &word), 0);
        return word;
    }
    // Polls until the status reads 0: the number of polls, or -1 after maxPolls.
    int32_t PollUntilStopped(int32_t h, int32_t maxPolls) {
        for (int32_t poll = 1; poll <= maxPolls; ++poll)
            if (Status(h) == 0)
                return poll;
        return -1;
    }
    Readout Read(int32_t h) {
        Readout r;
        r.status = fn().ReadSpectrum(h, r.counts.data(), &r.channels, &r.realTime, &r.liveTime);
        return r;
    }
    // Clears, runs for `polls` status polls, stops and reads.
    Readout Acquire(int32_t h, int32_t polls) {
        EXPECT_EQ(fn().ClearAll(h), 0);
        EXPECT_EQ(fn().StartAcquisition(h), 0);
        for (int32_t i = 0; i < polls; ++i)
            Status(h);
        EXPECT_EQ(fn().StopAcquisition(h), 0);
        return Read(h);
    }

    SimAnalyser m_sim{""};
    std::vector<int32_t> m_open;
};

} // namespace vexo::test
