// Modules that a program loads by hand: the dynamic loader's side.
#include "platform/library.h"

#include <dlfcn.h>

#include "core/runtime_error.h"
#include "core/unicode.h"

namespace vex::platform {
namespace {

// The error numbers that automation clients know.
constexpr std::int32_t kCannotLoad = 53;
constexpr std::int32_t kFunctionMissing = 453;

std::u16string loader_error() {
    const char* text = dlerror();
    return from_utf8(text == nullptr ? "unknown reason" : text);
}

}  // namespace

// A name without a folder would be looked for on the loader's search path.
Library::Library(const std::filesystem::path& path)
    : module_(dlopen(std::filesystem::absolute(path).c_str(), RTLD_NOW | RTLD_LOCAL)) {
    if (module_ == nullptr) throw RuntimeError(kCannotLoad, loader_error());
}

Library::~Library() { dlclose(module_); }

Library::Address Library::find(const char* name) const {
    const auto address = reinterpret_cast<Address>(dlsym(module_, name));
    if (address == nullptr) throw RuntimeError(kFunctionMissing, loader_error());
    return address;
}

}  // namespace vex::platform
