// What the registry answers for a value, and its conversions to automation values.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "platform/code_page.h"
#include "platform/registry.h"
#include "support/automation_value.h"

namespace vex {

/// A value's data as a query or an enumeration left it: the whole buffer, zero where nothing was written,
/// and the size that was reported.
struct RegistryData {
    std::uint32_t type = platform::kRegNone;
    std::uint32_t size = 0;
    std::vector<std::uint8_t> buffer;
};

/// How the bytes of a value become texts on this system.
class RegistryTexts {
public:
    RegistryTexts(platform::Registry& registry, const platform::CodePage& code_page)
        : registry_(registry), code_page_(code_page) {}

    /// The first `count` bytes of the buffer as text; fewer when it has fewer.
    std::u16string text(const RegistryData& data, std::size_t count) const;
    /// `text` expanded into a buffer of just its own length, which holds the text itself before: a text that
    /// grows does not fit and stays; one that shrinks leaves its terminating null and what was behind it.
    /// `reported` receives the length that the system answers, the null included.
    std::u16string expanded(const std::u16string& text, std::size_t& reported) const;

private:
    platform::Registry& registry_;
    const platform::CodePage& code_page_;
};

/// Whether an empty expandable string reads as a text of one null character.
enum class EmptyExpandable { empty_text, one_null };

/// The value of a single read; `initial` where the type or the size yields nothing. Raises
/// kSubscriptOutOfRange for binary data of no bytes and kInvalidProcedureCall for a multiple string shorter
/// than its terminators.
AutomationValue decode_value(RegistryData data, AutomationValue initial, EmptyExpandable empty_expandable,
                             const RegistryTexts& texts);

/// The values of one enumeration, which carry over from one to the next.
class EnumeratedValues {
public:
    explicit EnumeratedValues(const RegistryTexts& texts) : texts_(texts) {}

    /// The next value. Raises what `decode_value` raises.
    const AutomationValue& next(RegistryData data);

private:
    const RegistryTexts& texts_;
    std::u16string scratch_;
    AutomationValue value_;
};

/// Cuts `item` at its first null character.
std::u16string trimmed_at_null(std::u16string item);

}  // namespace vex
