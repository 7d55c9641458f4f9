// The values that registry operations take and yield.
#include "support/automation_value.h"

#include "core/digits.h"
#include "core/runtime_error.h"
#include "support/text.h"

namespace vex {

std::u16string AutomationValue::to_text() const {
    if (const auto* text = std::get_if<std::u16string>(&value_)) return *text;
    if (const auto* number = std::get_if<std::int32_t>(&value_)) return decimal_text(*number);
    if (is_empty()) return {};
    throw RuntimeError(kTypeMismatch);
}

std::u16string AutomationValue::text_or(const std::u16string& otherwise) const {
    return is_bytes() ? otherwise : to_text();
}

std::int32_t AutomationValue::to_int32() const {
    if (const auto* text = std::get_if<std::u16string>(&value_)) return vex::to_int32(*text);
    if (const auto* number = std::get_if<std::int32_t>(&value_)) return *number;
    if (is_empty()) return 0;
    throw RuntimeError(kTypeMismatch);
}

const AutomationValue::Bytes& AutomationValue::bytes() const {
    const auto* bytes = std::get_if<Bytes>(&value_);
    if (bytes == nullptr) throw RuntimeError(kTypeMismatch);
    return *bytes;
}

}  // namespace vex
