// The contract tests on the native side: a store in a folder of its own.
#include <cstdlib>
#include <filesystem>

#include "platform/native/machine.h"
#include "tests/registry/side.h"
#include "tests/shared/temporary_folder.h"

namespace vex::test {
namespace {

/// Puts the computer in place on first use and takes it away at the end.
struct Computer {
    Computer() { platform::native::use_machine_folder(folder.path()); }
    TemporaryFolder folder;
};

}  // namespace

platform::Registry& side_registry() {
    static const Computer computer;
    return platform::registry();
}

void set_environment(const char* name, const char* value) { ::setenv(name, value, 1); }

bool runs_on_wine() { return false; }

}  // namespace vex::test
