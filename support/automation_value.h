// The values that registry operations take and yield.
#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <variant>
#include <vector>

namespace vex {

/// An automation value of the kinds that the registry knows: empty, a text, a signed 32-bit integer or an
/// array of bytes. The conversions raise kTypeMismatch for what cannot be converted and kOverflow for what
/// does not fit.
class AutomationValue {
public:
    using Bytes = std::vector<std::uint8_t>;

    AutomationValue() = default;
    AutomationValue(std::u16string text) : value_(std::move(text)) {}
    AutomationValue(const char16_t* text) : value_(std::u16string(text)) {}
    AutomationValue(std::int32_t number) : value_(number) {}
    AutomationValue(Bytes bytes) : value_(std::move(bytes)) {}

    bool is_empty() const noexcept { return std::holds_alternative<std::monostate>(value_); }
    bool is_text() const noexcept { return std::holds_alternative<std::u16string>(value_); }
    bool is_number() const noexcept { return std::holds_alternative<std::int32_t>(value_); }
    bool is_bytes() const noexcept { return std::holds_alternative<Bytes>(value_); }

    /// Empty becomes the empty text, a number its decimal digits. Bytes are no text.
    std::u16string to_text() const;
    /// The same, but for bytes `otherwise`.
    std::u16string text_or(const std::u16string& otherwise) const;
    /// Empty becomes 0; a text as `vex::to_int32` reads it.
    std::int32_t to_int32() const;
    /// The bytes; anything else is a type mismatch.
    const Bytes& bytes() const;

    friend bool operator==(const AutomationValue&, const AutomationValue&) = default;

private:
    std::variant<std::monostate, std::u16string, std::int32_t, Bytes> value_;
};

}  // namespace vex
