// A folder that is there for one test.
#pragma once

#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <string_view>

namespace vex::test {

class TemporaryFolder {
public:
    TemporaryFolder() { std::filesystem::create_directories(path_); }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;
    ~TemporaryFolder() {
        std::error_code error;
        std::filesystem::remove_all(path_, error);
    }

    const std::filesystem::path& path() const noexcept { return path_; }
    std::filesystem::path operator/(const char* name) const { return path_ / name; }
    /// Makes the file, and the folders above it.
    std::filesystem::path write(const char* name, std::string_view content) const {
        std::filesystem::create_directories((path_ / name).parent_path());
        std::ofstream(path_ / name, std::ios::binary) << content;
        return path_ / name;
    }

private:
    const std::filesystem::path path_ =
        std::filesystem::temp_directory_path() / ("vex-test-" + std::to_string(std::random_device()()));
};

inline std::string read_file(const std::filesystem::path& file) {
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

inline void write_file(const std::filesystem::path& file, std::string_view content) {
    std::ofstream(file, std::ios::binary | std::ios::trunc) << content;
}

}  // namespace vex::test
