// A folder for one test.
#pragma once

#include <filesystem>
#include <fstream>
#include <random>
#include <string>

namespace vex::sim {

class ScratchFolder {
public:
    ScratchFolder()
        : path_(std::filesystem::temp_directory_path() /
                ("vex-simulator-test-" + std::to_string(std::random_device()()))) {
        std::filesystem::create_directories(path_);
    }
    ScratchFolder(const ScratchFolder&) = delete;
    ScratchFolder& operator=(const ScratchFolder&) = delete;
    ~ScratchFolder() { std::filesystem::remove_all(path_); }

    const std::filesystem::path& path() const noexcept { return path_; }

    std::filesystem::path write(const std::string& name, const std::string& bytes) const {
        std::filesystem::create_directories((path_ / name).parent_path());
        std::ofstream(path_ / name, std::ios::binary) << bytes;
        return path_ / name;
    }

private:
    std::filesystem::path path_;
};

}  // namespace vex::sim
