// The simulated computer: its parts, and where it keeps what lasts.
#include "platform/native/machine.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

#include "core/runtime_error.h"
#include "core/unicode.h"
#include "platform/native/code_page_1252.h"
#include "platform/native/files.h"
#include "platform/native/processes.h"
#include "platform/native/registry_service.h"
#include "platform/private_files.h"

namespace vex::platform::native {
namespace {

namespace fs = std::filesystem;

struct Machine {
    fs::path folder;
    CodePage1252 code_page;
    DriveFiles files;
    SimulatedProcesses processes{files};
    RegistryService registry{code_page};
};

Machine& machine() {
    // Never destroyed: servers may close their keys while the process ends.
    static auto& instance = *new Machine;
    return instance;
}

[[noreturn]] void fail(const fs::path& path, const std::string& reason) {
    throw RuntimeError(kAutomationError, from_utf8(path.native() + ": " + reason));
}

/// Makes a folder for its owner alone, and the missing ones above it. One that is there is taken only where
/// nobody else can put files: the registry names libraries that are loaded.
void use_private_folder(const fs::path& folder) {
    std::error_code error;
    fs::create_directories(folder.parent_path(), error);
    try {
        if (make_private_folder(folder)) return;
    } catch (const std::system_error& failure) {
        fail(folder, failure.code().message());
    }
    struct stat status = {};
    if (::stat(folder.c_str(), &status) != 0 || !S_ISDIR(status.st_mode)) fail(folder, "is no folder");
    if ((status.st_mode & S_IWOTH) != 0) fail(folder, "everybody may write to this folder");
    const uid_t user = ::geteuid();
    if (status.st_uid != user && status.st_uid != 0 && user != 0) fail(folder, "this folder is somebody else's");
}

}  // namespace

void use_machine_folder(const fs::path& folder) {
    const fs::path whole = (fs::absolute(folder) / "").lexically_normal().parent_path();
    use_private_folder(whole);
    use_private_folder(whole / "drive_c");
    try {
        machine().registry.use_folder(whole);
    } catch (const RegistryDamage& damage) {
        fail(whole / "registry", "line " + std::to_string(damage.line()) + ": " + damage.what());
    } catch (const std::system_error& error) {
        fail(whole / "registry", error.code().message());
    }
    machine().files.set_folder(whole);
    machine().folder = whole;
}

const fs::path& machine_folder() { return machine().folder; }

Registry& registry() { return machine().registry; }
Files& files() { return machine().files; }
Processes& processes() { return machine().processes; }
const CodePage& code_page() { return machine().code_page; }

fs::path real_path(const std::u16string& path) { return machine().files.real_path(path); }
std::u16string drive_path(const fs::path& path) { return machine().files.drive_path(path); }
void set_hidden(const std::u16string& path, bool hidden) { machine().files.set_hidden(path, hidden); }

void on_program_started(std::function<void(const std::u16string&)> listener) {
    machine().processes.set_listener(std::move(listener));
}

}  // namespace vex::platform::native
