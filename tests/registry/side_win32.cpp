// The contract tests on Windows: the real registry.
#include "platform/win32/windows_api.h"
#include "tests/registry/side.h"

namespace vex::test {

platform::Registry& side_registry() { return platform::registry(); }

void set_environment(const char* name, const char* value) { SetEnvironmentVariableA(name, value); }

bool runs_on_wine() { return GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "wine_get_version") != nullptr; }

}  // namespace vex::test
