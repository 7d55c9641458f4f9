// The native program's composition: a simulated machine, a screen, COM, and what is played on them.
#pragma once

#include "simulator/native/native_screen.h"
#include "simulator/session.h"

namespace vex::sim {

/// Over the process's one simulated machine, which must be in its folder already.
class NativeMachine final : public Machine {
public:
    std::filesystem::path real_path(const std::u16string& path) override;
    void hide(const std::u16string& path) override;
    void on_program_started(std::function<void(const std::u16string&)> listener) override;

private:
    const std::filesystem::path& drives() const override;
};

class NativeSession final : public Session {
public:
    /// Raises `RuntimeError` or `filesystem_error` when the data folder cannot be used.
    explicit NativeSession(const CommandLine& options);
    ~NativeSession();

    NativeScreen& screen() noexcept override { return screen_; }

private:
    Machine& machine() noexcept override { return machine_; }
    void prepare(std::ostream& out) override;

    NativeMachine machine_;
    NativeScreen screen_;
};

}  // namespace vex::sim
