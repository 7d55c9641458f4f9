// Run-time errors with the numbers that automation clients know.
#include "core/runtime_error.h"

#include <utility>

#include "core/unicode.h"

namespace vex {
namespace {

struct UsualText {
    ErrorNumber number;
    const char16_t* text;
};

constexpr UsualText kUsualTexts[] = {
    {kInvalidProcedureCall, u"Invalid procedure call or argument"},
    {kOverflow, u"Overflow"},
    {kOutOfMemory, u"Out of memory"},
    {kSubscriptOutOfRange, u"Subscript out of range"},
    {kTypeMismatch, u"Type mismatch"},
    {kObjectVariableNotSet, u"Object variable not set"},
    {kCannotCreateObject, u"ActiveX component can't create object"},
    {kMemberNotSupported, u"Object doesn't support this property or method"},
    {kAutomationError, u"Automation error"},
    {kWrongArgumentCount, u"Wrong number of arguments or invalid property assignment"},
    {kDuplicateKey, u"This key is already associated with an element of this collection"},
    {kResourceNotFound, u"Resource not found"},
    {kNoSuchEvents, u"Object or class does not support the set of events"},
    {kListElementNotFound, u"Element not found"},
    {kListKeyNotUnique, u"Key is not unique in collection"},
};

const char16_t* usual_text(ErrorNumber number) noexcept {
    for (const UsualText& entry : kUsualTexts) {
        if (entry.number == number) return entry.text;
    }
    return u"Automation error";
}

}  // namespace

RuntimeError::RuntimeError(std::int32_t number, std::u16string description)
    : number_(number),
      description_(std::move(description)),
      what_("run-time error " + std::to_string(number_) + ": " + to_utf8(description_)) {}

RuntimeError::RuntimeError(ErrorNumber number) : RuntimeError(number, usual_text(number)) {}

}  // namespace vex
