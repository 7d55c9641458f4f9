// A folder for one run alone.
#pragma once

#include <filesystem>

namespace vex::sim {

/// Makes a new folder, for its owner alone, among the system's temporary files; removes it in the end.
class PrivateFolder {
public:
    /// Raises `std::system_error`.
    PrivateFolder();
    PrivateFolder(const PrivateFolder&) = delete;
    PrivateFolder& operator=(const PrivateFolder&) = delete;
    ~PrivateFolder();

    const std::filesystem::path& path() const noexcept { return path_; }

private:
    std::filesystem::path path_;
};

}  // namespace vex::sim
