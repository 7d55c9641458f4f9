// The class factories that DllGetClassObject hands out.
#pragma once

#include "com/com.h"

namespace vex::plugin {

/// A factory for the class `clsid` under the interface `iid`: a reference that the caller owns. Any other
/// class is refused with CLASS_E_CLASSNOTAVAILABLE.
HRESULT get_class_object(REFCLSID clsid, REFIID iid, void** object) noexcept;

}  // namespace vex::plugin
