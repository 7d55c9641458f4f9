// The native program's composition: a simulated machine, a screen, COM, and what is played on them.
#pragma once

#include <optional>

#include "simulator/native/native_machine.h"
#include "simulator/native/native_screen.h"
#include "simulator/native/pictured_screen.h"
#include "simulator/session.h"

namespace vex::sim {

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
    std::optional<Pictures> pictures_;
};

}  // namespace vex::sim
