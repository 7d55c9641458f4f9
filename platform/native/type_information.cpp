// The native side: there are no type descriptions.
#include "platform/type_information.h"

#include "core/runtime_error.h"

namespace vex::platform {

UINT type_information_count() noexcept { return 0; }

com::ComPtr<ITypeInfo> load_type_information(REFIID /*iid*/) {
    throw RuntimeError(E_NOTIMPL, u"There are no type descriptions on this system");
}

}  // namespace vex::platform
