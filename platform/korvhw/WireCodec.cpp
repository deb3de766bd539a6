#include "WireCodec.h"

#include <algorithm>
#include <cstring>

#include "StatusCodes.h"

namespace korvsim {

int32_t CopyText(const std::string& text, char* buffer, int32_t capacity) {
    if (!buffer || capacity <= 0)
        return kInvalidArgument;
    const size_t n = std::min(text.size(), static_cast<size_t>(capacity - 1));
    std::memcpy(buffer, text.data(), n);
    buffer[n] = '\0';
    return kOk;
}

int32_t EncodeParam(int32_t id, const ParamValue& value, void* buffer, int32_t size) {
    if (!buffer || size < WireSize(id))
        return kInvalidArgument;
    switch (KindOf(id)) {
    case ParamKind::Text:
        return CopyText(value.text, static_cast<char*>(buffer), size);
    case ParamKind::Real:
        std::memcpy(buffer, &value.real, 4);
        return kOk;
    case ParamKind::Triple:
        std::memcpy(buffer, value.triple.data(), 12);
        return kOk;
    case ParamKind::Integer:
        std::memcpy(buffer, &value.integer, 4);
        return kOk;
    }
    return kInvalidArgument;
}

int32_t DecodeParam(int32_t id, const void* buffer, int32_t size, ParamValue& value) {
    if (!buffer || size < WireSize(id))
        return kInvalidArgument;
    switch (KindOf(id)) {
    case ParamKind::Text: {
        const char* text = static_cast<const char*>(buffer);
        value.text.assign(text, strnlen(text, static_cast<size_t>(size)));
        return kOk;
    }
    case ParamKind::Real:
        std::memcpy(&value.real, buffer, 4);
        return kOk;
    case ParamKind::Triple:
        std::memcpy(value.triple.data(), buffer, 12);
        return kOk;
    case ParamKind::Integer:
        std::memcpy(&value.integer, buffer, 4);
        return kOk;
    }
    return kInvalidArgument;
}

} // namespace korvsim
