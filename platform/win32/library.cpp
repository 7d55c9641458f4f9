// Modules that a program loads by hand: the Windows loader's side.
#include "platform/library.h"

#include "core/runtime_error.h"
#include "core/unicode.h"
#include "platform/win32/windows_api.h"

namespace vex::platform {
namespace {

// The error numbers that automation clients know.
constexpr std::int32_t kCannotLoad = 53;
constexpr std::int32_t kFunctionMissing = 453;

}  // namespace

// A name without a folder would be looked for on the loader's search path; what the library needs itself is
// looked for beside it first, and not beside the program.
Library::Library(const std::filesystem::path& path)
    : module_(LoadLibraryExW(std::filesystem::absolute(path).make_preferred().c_str(), nullptr,
                             LOAD_WITH_ALTERED_SEARCH_PATH)) {
    if (module_ == nullptr) {
        throw RuntimeError(kCannotLoad,
                           path.u16string() + u": Windows error " + from_utf8(std::to_string(GetLastError())));
    }
}

Library::~Library() { FreeLibrary(static_cast<HMODULE>(module_)); }

Library::Address Library::find(const char* name) const {
    const auto address = reinterpret_cast<Address>(GetProcAddress(static_cast<HMODULE>(module_), name));
    if (address == nullptr) throw RuntimeError(kFunctionMissing, from_utf8(name) + u" is not exported");
    return address;
}

}  // namespace vex::platform
