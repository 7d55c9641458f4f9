// The computer that the simulated host runs on, as the host needs it: a seam with one side per system.
#pragma once

#include <filesystem>
#include <functional>
#include <string>

#include "platform/code_page.h"
#include "platform/registry.h"

namespace vex::sim {

/// One per process; used on the host's thread.
class Computer {
public:
    virtual ~Computer() = default;

    virtual platform::Registry& registry() = 0;
    virtual const platform::CodePage& code_page() = 0;
    /// The real file behind a drive-letter path; its drive and folder need not exist. Empty for a path
    /// without a drive letter.
    virtual std::filesystem::path real_path(const std::u16string& path) = 0;
    /// Makes the drive of a path where it is missing and answers the real file behind the path. Raises
    /// `std::invalid_argument` for a path without a drive letter or on a drive that is not the run's own.
    virtual std::filesystem::path writable_path(const std::u16string& path) = 0;
    virtual void hide(const std::u16string& path) = 0;
    /// Told the path of each program that is started in place of it.
    virtual void on_program_started(std::function<void(const std::u16string&)> listener) = 0;
};

}  // namespace vex::sim
