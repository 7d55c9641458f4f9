// What the registry answers for a value, and its conversions to automation values.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

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

/// Whether an empty expandable string reads as a text of one null character.
enum class EmptyExpandable { empty_text, one_null };

/// The value of a single read; `initial` where the type or the size yields nothing. Raises
/// kSubscriptOutOfRange for binary data of no bytes and kInvalidProcedureCall for a multiple string shorter
/// than its terminators. `registry` expands texts.
AutomationValue decode_value(RegistryData data, AutomationValue initial, EmptyExpandable empty_expandable,
                             platform::Registry& registry);

/// The values of one enumeration, which carry over from one to the next.
class EnumeratedValues {
public:
    explicit EnumeratedValues(platform::Registry& registry) : registry_(registry) {}

    /// The next value. Raises what `decode_value` raises.
    const AutomationValue& next(RegistryData data);

private:
    platform::Registry& registry_;
    std::u16string scratch_;
    AutomationValue value_;
};

/// Cuts `item` at its first null character.
std::u16string trimmed_at_null(std::u16string item);

}  // namespace vex
