#include "SimClock.h"

namespace korvsim {

SimClock::SimClock() : m_start(std::chrono::steady_clock::now()) {}

void SimClock::configure(ClockMode mode, double stepSeconds, double speed) {
    m_mode = mode;
    m_step = stepSeconds > 0.0 ? stepSeconds : 0.5;
    m_speed = speed > 0.0 ? speed : 1.0;
    m_stepped = 0.0;
    m_start = std::chrono::steady_clock::now();
}

double SimClock::now() const {
    if (m_mode == ClockMode::Step)
        return m_stepped;
    const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - m_start;
    return elapsed.count() * m_speed;
}

void SimClock::onStatusPoll() {
    if (m_mode == ClockMode::Step)
        m_stepped += m_step;
}

} // namespace korvsim
