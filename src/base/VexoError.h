#pragma once
// Typed errors raised by the core. Routines whose result the program defines as a
// boolean keep their boolean; arithmetic faults and misuse are raised as these.
#include <stdexcept>
#include <string>

namespace vexo {

// A 16- or 32-bit integer conversion or sum left its range.
class OverflowError : public std::runtime_error {
public:
    explicit OverflowError(const std::string& what = "Overflow") : std::runtime_error(what) {}
};

// Division by zero, an infinite or an invalid (NaN) floating-point result.
class FloatingPointError : public std::runtime_error {
public:
    explicit FloatingPointError(const std::string& what = "Floating-point error")
        : std::runtime_error(what) {}
};

// An index outside the counts array or another fixed-size table.
class SubscriptError : public std::out_of_range {
public:
    explicit SubscriptError(const std::string& what = "Subscript out of range")
        : std::out_of_range(what) {}
};

// A numbered run-time error, as the settings store raises error 52 (bad file name).
class NumberedError : public std::runtime_error {
public:
    NumberedError(int number, const std::string& what)
        : std::runtime_error(what), m_number(number) {}
    int number() const { return m_number; }

private:
    int m_number;
};

} // namespace vexo
