// The words in which the tests put down what a type library says; for both of its readers.
#pragma once

#include <array>
#include <cstdint>
#include <cstdio>
#include <string>

#include "com/com.h"

namespace vex::plugin_test {

inline std::string guid_text(REFGUID guid) {
    OLECHAR wide[39];
    StringFromGUID2(guid, wide, 39);
    std::string text;
    for (int i = 0; i < 38; ++i) text += static_cast<char>(wide[i]);
    return text;
}

inline std::string hex_text(std::uint32_t number) {
    std::array<char, 16> text{};
    std::snprintf(text.data(), text.size(), "0x%X", static_cast<unsigned>(number));
    return text.data();
}

inline std::string simple_type_text(VARTYPE type) {
    switch (type) {
        case VT_I2: return "int16";
        case VT_BSTR: return "string";
        case VT_BOOL: return "boolean";
        case VT_DISPATCH: return "object";
        case VT_HRESULT: return "result";
        default: return "type " + std::to_string(type);
    }
}

inline std::string parameter_flags_text(std::uint32_t flags) {
    constexpr std::array<std::pair<std::uint32_t, const char*>, 4> kNames = {
        {{1, "in"}, {2, "out"}, {8, "retval"}, {0x10, "optional"}}};
    std::string text;
    for (const auto& [flag, name] : kNames) {
        if ((flags & flag) != 0) text += (text.empty() ? "" : ", ") + std::string(name);
    }
    if ((flags & ~0x1BU) != 0) text += " and " + hex_text(flags & ~0x1BU);
    return "[" + text + "] ";
}

}  // namespace vex::plugin_test
