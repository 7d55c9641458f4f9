// Type descriptions of our own interfaces, for IDispatch: a seam, since only Windows has them.
#pragma once

#include "com/com_ptr.h"

namespace vex::platform {

/// How many type descriptions an automation object offers: 1, or 0 where the system has none.
UINT type_information_count() noexcept;

/// The description of an interface from the type library among this module's resources. Raises the
/// system's result code on failure; E_NOTIMPL where the system has none.
com::ComPtr<ITypeInfo> load_type_information(REFIID iid);

}  // namespace vex::platform
