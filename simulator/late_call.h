// Calls on automation objects by name, as a host that knows only names makes them.
#pragma once

#include <string>
#include <vector>

#include "com/variant.h"

namespace vex::sim {

/// Creates an object by programmatic identifier. Raises `RuntimeError` naming it.
com::ComPtr<IDispatch> create_object(const std::u16string& programmatic_id);

/// Calls a method or reads a property; `flags` say where it is something else. Raises `RuntimeError` with the number
/// and the text that the object answers, or the result code of a call that did not come about.
com::Variant call_late(IDispatch& object, const std::u16string& name, const std::vector<com::Variant>& arguments = {},
                       WORD flags = DISPATCH_METHOD | DISPATCH_PROPERTYGET);

}  // namespace vex::sim
