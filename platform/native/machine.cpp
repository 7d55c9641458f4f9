// The simulated computer: its parts, and where it keeps what lasts.
#include "platform/native/machine.h"

#include <sys/stat.h>
#include <unistd.h>

#include <memory>
#include <system_error>

#include "core/runtime_error.h"
#include "core/unicode.h"
#include "platform/native/registry_service.h"
#include "platform/native/registry_text.h"
#include "platform/private_files.h"
#include "platform/system.h"

namespace vex::platform {
namespace native {
namespace {

namespace fs = std::filesystem;

struct Machine {
    fs::path folder;
    std::unique_ptr<NativeRegistry> registry = make_registry();
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

/// What a thread knows as its windowing system: always the one that was set last, so that dialogs which
/// outlive one (between two showings) find the next.
class Desktop final : public forms::Toolkit {
public:
    void set(forms::Toolkit* toolkit) noexcept { current_ = toolkit; }

    forms::Toolkit& current() const {
        if (current_ == nullptr) {
            throw RuntimeError(kCannotCreateObject, u"There is no desktop to show a dialog on");
        }
        return *current_;
    }

    void run_modal(forms::Form& form, forms::Form* owner) override { current().run_modal(form, owner); }
    void pump_messages() override { current().pump_messages(); }
    forms::MessageAnswer message_box(const forms::MessageBox& box) override { return current().message_box(box); }
    std::optional<std::u16string> open_file(const forms::OpenFileRequest& request) override {
        return current().open_file(request);
    }
    void pop_up_menu(forms::Form& form, forms::Menu& menu) override { current().pop_up_menu(form, menu); }
    void beep() override { current().beep(); }

private:
    forms::Toolkit* current_ = nullptr;
};

thread_local Desktop thread_desktop;

}  // namespace

void use_machine_folder(const fs::path& folder) {
    const fs::path whole = (fs::absolute(folder) / "").lexically_normal().parent_path();
    use_private_folder(whole);
    use_private_folder(whole / "drive_c");
    try {
        machine().registry->use_folder(whole);
    } catch (const RegistryDamage& damage) {
        fail(whole / "registry", "line " + std::to_string(damage.line()) + ": " + damage.what());
    } catch (const std::system_error& error) {
        fail(whole / "registry", error.code().message());
    }
    machine().folder = whole;
}

const fs::path& machine_folder() { return machine().folder; }

void set_desktop(forms::Toolkit* toolkit) { thread_desktop.set(toolkit); }

}  // namespace native

Registry& registry() { return *native::machine().registry; }

forms::Toolkit& desktop() {
    native::thread_desktop.current();
    return native::thread_desktop;
}

}  // namespace vex::platform
