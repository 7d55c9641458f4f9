// Calls on automation objects by dispatch id, and the run-time errors that their failures are.
#pragma once

#include <initializer_list>
#include <string>

#include "com/variant.h"
#include "core/runtime_error.h"

namespace vex::com {

/// The run-time error that a result code carries or stands for, with its usual text where `description` is
/// empty. A result code without an automation error number is the number itself.
RuntimeError error_of(HRESULT result, std::u16string description = {});

/// Whether a call succeeded. Raises std::bad_alloc where memory has ended, whatever else a failure would mean.
bool succeeded(HRESULT result);

/// Calls a member with `flags` (a set of DISPATCH_...); the arguments stand as they are written. Raises the error
/// that the object raised, or that of the result code.
Variant invoke(IDispatch& object, DISPID member, WORD flags, std::initializer_list<Variant> arguments = {});

}  // namespace vex::com
