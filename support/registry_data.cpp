// What the registry answers for a value, and its conversions to automation values.
#include "support/registry_data.h"

#include <algorithm>

#include "core/digits.h"
#include "core/narrow.h"
#include "core/runtime_error.h"
#include "platform/system.h"

namespace vex {
namespace {

/// The first four bytes, little end first. A shorter value has zeros behind it in its buffer.
std::int32_t dword(const RegistryData& data) {
    std::uint32_t number = 0;
    for (std::size_t i = std::min<std::size_t>(4, data.buffer.size()); i > 0; --i)
        number = number << 8 | data.buffer[i - 1];
    return static_cast<std::int32_t>(number);
}

/// The bytes that count. An array cannot shrink to no elements.
AutomationValue::Bytes binary(RegistryData&& data) {
    if (data.size == 0) throw RuntimeError(kSubscriptOutOfRange);
    data.buffer.resize(std::min<std::size_t>(data.size, data.buffer.size()));
    return std::move(data.buffer);
}

/// The first `count` bytes of the buffer as text; fewer when it has fewer.
std::u16string text_of(const RegistryData& data, std::size_t count) {
    const char* bytes = reinterpret_cast<const char*>(data.buffer.data());
    return platform::from_ansi({bytes, std::min(count, data.buffer.size())});
}

struct Expanded {
    std::u16string text;
    /// The length that the system answers, the null included.
    std::size_t reported;
};

/// `text` expanded into a buffer of just its own length, which holds the text itself before: a text that grows does
/// not fit and stays; one that shrinks leaves its terminating null and what was behind it.
Expanded expanded(platform::Registry& registry, const std::u16string& text) {
    const std::string source = platform::to_ansi(text);
    std::string buffer = source;
    const std::size_t reported =
        registry.expand_environment(source.c_str(), buffer.data(), narrowed<std::uint32_t>(buffer.size()));
    // What does not fit comes back unexpanded, whatever the system has left in the buffer.
    return {platform::from_ansi(reported <= buffer.size() ? buffer : source), reported};
}

/// The strings and the nulls between them. A text cannot have a negative length.
std::u16string multiple_string(const RegistryData& data) {
    if (data.size < 2) throw RuntimeError(kInvalidProcedureCall);
    return text_of(data, data.size - 2);
}

/// Two digits below ten ("07"), but single letters for ten to fifteen ("C"): the digits pass through a
/// number format that leaves letters alone. Readers of the texts know them so; kept.
std::u16string hexadecimal(std::uint8_t byte) { return digits_of(byte, 16, byte >= 10 ? 1 : 2); }

}  // namespace

std::u16string trimmed_at_null(std::u16string item) {
    item.resize(std::min(item.size(), item.find(u'\0')));
    return item;
}

AutomationValue decode_value(RegistryData data, AutomationValue initial, EmptyExpandable empty_expandable,
                             platform::Registry& registry) {
    switch (data.type) {
        case platform::kRegSz:
            if (data.size == 0) return initial;
            return text_of(data, data.size - 1);
        case platform::kRegExpandSz: {
            // Kept: with this rule the terminating null of an empty text counts as its content.
            if (data.size == 1 && empty_expandable == EmptyExpandable::one_null) data.size = 2;
            if (data.size == 0) return initial;
            // Kept: the buffer is as long as the text, and the reported length counts the null. What grows
            // comes back unexpanded, what shrinks ends in a null, and callers live with both.
            Expanded item = expanded(registry, text_of(data, data.size - 1));
            item.text.resize(std::min(item.text.size(), item.reported));
            return item.text;
        }
        case platform::kRegBinary: return binary(std::move(data));
        case platform::kRegDword: return dword(data);
        case platform::kRegMultiSz: {
            std::u16string text = multiple_string(data);
            // Kept: a list whose first string is empty counts as no list.
            if (text.empty() || text.front() == u'\0') return initial;
            return text;
        }
        default: return initial;
    }
}

const AutomationValue& EnumeratedValues::next(RegistryData data) {
    switch (data.type) {
        case platform::kRegSz:
            scratch_ = data.size == 0 ? std::u16string() : text_of(data, data.size - 1);
            return value_ = scratch_;
        case platform::kRegExpandSz:
            scratch_ = data.size == 0 ? std::u16string()
                                      : trimmed_at_null(expanded(registry_, text_of(data, data.size - 1)).text);
            return value_ = scratch_;
        case platform::kRegBinary:
            // Kept: the bytes are appended to whatever text the value before left, which is not cleared.
            // cppcheck-suppress accessMoved ; moved once, before the loop
            for (const std::uint8_t byte : binary(std::move(data))) scratch_ += u' ' + hexadecimal(byte);
            return value_ = scratch_.substr(std::min(scratch_.size(), scratch_.find_first_not_of(u' ')));
        case platform::kRegDword: return value_ = dword(data);
        case platform::kRegMultiSz:
            scratch_ = multiple_string(data);
            std::replace(scratch_.begin(), scratch_.end(), u'\0', u',');
            return value_ = scratch_;
        default:
            // Kept: the pair is used again for each value, so a type without a conversion shows the data of
            // the value before.
            return value_;
    }
}

}  // namespace vex
