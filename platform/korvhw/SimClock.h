#pragma once
// Simulated time of the analyser, in seconds since the clock was (re)started.
// Wall mode follows the steady clock, optionally sped up; step mode stands still
// and moves by a fixed step on every status poll, so tests and benchmarks get the
// same timeline on every run.
#include <chrono>

namespace korvsim {

enum class ClockMode { Wall, Step };

class SimClock {
public:
    SimClock();
    // stepSeconds is used in step mode, speed (> 0) in wall mode. Restarts at 0.
    void configure(ClockMode mode, double stepSeconds, double speed);
    // Simulated seconds since the last configure.
    double now() const;
    // Called on every status poll; advances the step clock by one step.
    void onStatusPoll();
    ClockMode mode() const { return m_mode; }

private:
    ClockMode m_mode = ClockMode::Wall;
    double m_step = 0.5;
    double m_speed = 1.0;
    double m_stepped = 0.0;
    std::chrono::steady_clock::time_point m_start;
};

} // namespace korvsim
