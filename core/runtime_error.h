// Run-time errors with the numbers that automation clients know.
#pragma once

#include <cstdint>
#include <exception>
#include <string>

namespace vex {

/// The automation error numbers that this code raises itself.
enum ErrorNumber : std::int32_t {
    kInvalidProcedureCall = 5,
    kOverflow = 6,
    kOutOfMemory = 7,
    kSubscriptOutOfRange = 9,
    kTypeMismatch = 13,
    kObjectVariableNotSet = 91,
    kCannotCreateObject = 429,
    kMemberNotSupported = 438,
    kAutomationError = 440,
    kWrongArgumentCount = 450,
    kDuplicateKey = 457,
    kNoSuchEvents = 459,
    kResourceNotFound = 326,
    kListElementNotFound = 35601,
    kListKeyNotUnique = 35602,
};

/// A run-time error on its way to the caller. `number` is an automation error number (1 to 65535) or,
/// for a failure without one, the result code that the failing call answered (negative).
class RuntimeError : public std::exception {
public:
    RuntimeError(std::int32_t number, std::u16string description);
    /// With the usual text of a number that this code raises itself.
    explicit RuntimeError(ErrorNumber number);

    std::int32_t number() const noexcept { return number_; }
    const std::u16string& description() const noexcept { return description_; }
    const char* what() const noexcept override { return what_.c_str(); }

private:
    std::int32_t number_;
    std::u16string description_;
    std::string what_;
};

}  // namespace vex
