// The machine of the Windows side, as the simulated host needs it.
#pragma once

#include "platform/win32/private_machine.h"
#include "simulator/host.h"

namespace vex::sim {

class Win32Machine final : public Machine {
public:
    /// `module`: the file name of the plug-in's library. Settings and drives lie in `folder`; `keep`: also
    /// afterwards. Raises `RuntimeError`.
    Win32Machine(std::u16string module, const std::filesystem::path& folder, bool keep)
        : module_(std::move(module)), machine_(folder, keep) {}

    platform::Registry& registry() override;
    const platform::CodePage& code_page() override;
    std::filesystem::path real_path(const std::u16string& path) override { return machine_.real_path(path); }
    std::filesystem::path writable_path(const std::u16string& path) override;
    void hide(const std::u16string& path) override { machine_.hide(path); }
    /// The plug-in must be loaded by then.
    void on_program_started(std::function<void(const std::u16string&)> listener) override;

    /// A file that is not on the run's own drives is the real one of that path.
    void show_real_disks() noexcept { machine_.show_real_disks(); }

private:
    std::u16string module_;
    platform::win32::PrivateMachine machine_;
};

}  // namespace vex::sim
