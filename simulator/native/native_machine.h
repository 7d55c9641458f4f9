// The simulated machine of the native side, as the simulated host needs it.
#pragma once

#include "simulator/host.h"

namespace vex::sim {

/// Over the process's one simulated machine, which must be in its folder already.
class NativeMachine final : public Machine {
public:
    platform::Registry& registry() override;
    const platform::CodePage& code_page() override;
    std::filesystem::path real_path(const std::u16string& path) override;
    std::filesystem::path writable_path(const std::u16string& path) override;
    void hide(const std::u16string& path) override;
    void on_program_started(std::function<void(const std::u16string&)> listener) override;
};

}  // namespace vex::sim
