// The Windows side: the type library embedded in the module.
#include "platform/type_information.h"

#include <string>

#include "core/runtime_error.h"
#include "platform/win32/windows_api.h"

namespace vex::platform {
namespace {

void check(HRESULT result) {
    if (FAILED(result)) throw RuntimeError(result, u"The type library cannot be read");
}

}  // namespace

UINT type_information_count() noexcept { return 1; }

com::ComPtr<ITypeInfo> load_type_information(REFIID iid) {
    com::ComPtr<ITypeLib> library;
    com::ComPtr<ITypeInfo> information;
    check(LoadTypeLibEx(win32::wide(win32::module_path()), REGKIND_NONE, library.put()));
    check(library->GetTypeInfoOfGuid(iid, information.put()));
    return information;
}

}  // namespace vex::platform
