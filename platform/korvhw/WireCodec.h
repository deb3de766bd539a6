#pragma once
// Parameter values between the caller's buffer and ParamValue, by the id's kind:
// one int32 or float (4 bytes), three floats (12 bytes), or a zero-terminated text.
#include <cstdint>

#include "DeviceSettings.h"

namespace korvsim {

// Returns kOk, or kInvalidArgument for a null buffer or one too small for the id.
// Texts are cut to fit and always zero-terminated.
int32_t EncodeParam(int32_t id, const ParamValue& value, void* buffer, int32_t size);
int32_t DecodeParam(int32_t id, const void* buffer, int32_t size, ParamValue& value);
// Copies text into a caller's buffer of the given capacity (cut, zero-terminated).
int32_t CopyText(const std::string& text, char* buffer, int32_t capacity);

} // namespace korvsim
