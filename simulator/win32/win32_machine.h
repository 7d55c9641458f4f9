// The machine of the Windows side: a machine of the run's own inside the real one. What the plug-in finds on drives
// and in the registry, and the programs that it starts.
#pragma once

#include <list>

#include "platform/win32/windows_api.h"
#include "simulator/host.h"
#include "simulator/win32/import_hook.h"

namespace vex::sim {

using OwnedKey = platform::win32::Owned<HKEY, RegCloseKey>;

/// Only this module and the plug-in see the run's drives and branches: the rest of the process, the system's own
/// libraries first of all, must find what it needs.
class Win32Machine final : public Machine {
public:
    /// `module`: the file name of the plug-in's library. Drive C: is `folder`\drive_c and so on. The machine and user
    /// branches of the registry, as far as the narrow-character functions go, are those of a private key, which is
    /// removed in the end unless `keep`; then it belongs to `folder`, and is there again for the next machine of that
    /// folder. Raises `RuntimeError`.
    Win32Machine(std::u16string module, std::filesystem::path folder, bool keep);
    ~Win32Machine() override;

    std::filesystem::path real_path(const std::u16string& path) override;
    void hide(const std::u16string& path) override;
    /// The plug-in must be loaded by then, and until nobody listens. Meanwhile it looks for files on the run's drives,
    /// and the programs that it starts are only told of.
    void on_program_started(std::function<void(const std::u16string&)> listener) override;

    /// A file that is not on the run's own drives is the real one of that path.
    void show_real_disks() noexcept { real_disks_ = true; }

private:
    const std::filesystem::path& drives() const override { return folder_; }

    /// What this module and the plug-in call in place of the system.
    struct Hooks;

    static Win32Machine* current_;

    std::u16string module_;
    std::filesystem::path folder_;
    std::u16string key_;
    bool keep_;
    bool real_disks_ = false;
    std::function<void(const std::u16string&)> program_started_;
    OwnedKey machine_branch_;
    OwnedKey user_branch_;
    std::list<ImportHook> redirected_;
    std::list<ImportHook> watched_;
};

}  // namespace vex::sim
