// Outside programs on the simulated computer: they are told of, and never started for real.
#pragma once

#include <functional>
#include <mutex>
#include <string>
#include <utility>

#include "platform/native/files.h"
#include "platform/processes.h"

namespace vex::platform::native {

class SimulatedProcesses final : public Processes {
public:
    /// Told the path of each program that starts; null: nobody is told.
    using Listener = std::function<void(const std::u16string&)>;

    /// `files` outlives the object.
    explicit SimulatedProcesses(const DriveFiles& files) : files_(files) {}

    void set_listener(Listener listener);

    /// A program starts when its file exists.
    bool start(const std::u16string& path) override;

private:
    const DriveFiles& files_;
    std::mutex mutex_;
    Listener listener_;
};

}  // namespace vex::platform::native
