// A folder for one run alone.
#pragma once

#include <filesystem>
#include <random>
#include <string>

#include "platform/private_files.h"

namespace vex::sim {

/// Makes a new folder, for its owner alone, among the system's temporary files; removes it in the end.
class PrivateFolder {
public:
    /// Raises `std::system_error`.
    PrivateFolder() {
        std::random_device random;
        do {
            path_ = std::filesystem::temp_directory_path() / ("brivola-sim-" + std::to_string(random()));
        } while (!platform::make_private_folder(path_));
    }
    PrivateFolder(const PrivateFolder&) = delete;
    PrivateFolder& operator=(const PrivateFolder&) = delete;
    ~PrivateFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }

    const std::filesystem::path& path() const noexcept { return path_; }

private:
    std::filesystem::path path_;
};

}  // namespace vex::sim
