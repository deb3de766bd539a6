#pragma once
// The library's return codes.
#include <cstdint>

namespace korvsim {

constexpr int32_t kOk = 0;
constexpr int32_t kNotConnected = -1;
constexpr int32_t kInvalidParameter = -5;
constexpr int32_t kInvalidArgument = -6;
constexpr int32_t kNotSupported = -7;
constexpr int32_t kConnectionFailed = -8;
constexpr int32_t kConnectionClosed = -9;
constexpr int32_t kReceiveFailed = -12;
constexpr int32_t kMcaFailure = -13;
constexpr int32_t kInvalidDevice = -14;
constexpr int32_t kInvalidHandle = -15;
constexpr int32_t kOutOfRange = -16;

} // namespace korvsim
