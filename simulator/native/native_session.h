// The native program's composition: a simulated machine, a screen, COM, and what is played on them.
#pragma once

#include "platform/native/machine.h"
#include "simulator/native/native_screen.h"
#include "simulator/session.h"

namespace vex::sim {

/// Over the process's one simulated machine, which must be in its folder already.
class NativeMachine final : public Machine {
public:
    std::filesystem::path real_path(const std::u16string& path) override { return platform::native::real_path(path); }
    void hide(const std::u16string& path) override { platform::native::hide(path); }
    void on_program_started(std::function<void(const std::u16string&)> listener) override {
        platform::native::on_program_started(std::move(listener));
    }

private:
    const std::filesystem::path& drives() const override { return platform::native::machine_folder(); }
};

class NativeSession final : public Session {
public:
    /// Raises `RuntimeError` or `filesystem_error` when the data folder cannot be used.
    explicit NativeSession(const CommandLine& options);
    ~NativeSession() override;

    /// On the terminal; where there is none, the demonstration is played and drawn.
    int play_without_scenario() override;
    int print_controls() override;

private:
    NativeScreen& screen() override { return screen_; }
    Machine& machine() override { return machine_; }
    void prepare(std::ostream& out) override;
    /// Opens the plug-in's wizard on the terminal, which must be usable.
    int run_trial();

    NativeMachine machine_;
    NativeScreen screen_;
};

}  // namespace vex::sim
