// A folder that is there for one test.
#pragma once

#include <filesystem>
#include <fstream>
#include <string_view>

#include "simulator/words.h"

namespace vex::test {

using sim::read_file;

class TemporaryFolder : public sim::PrivateFolder {
public:
    std::filesystem::path operator/(const char* name) const { return path() / name; }
    /// Makes the file, and the folders above it.
    std::filesystem::path write(const char* name, std::string_view content) const {
        std::filesystem::create_directories((path() / name).parent_path());
        std::ofstream(path() / name, std::ios::binary) << content;
        return path() / name;
    }
};

inline void write_file(const std::filesystem::path& file, std::string_view content) {
    std::ofstream(file, std::ios::binary | std::ios::trunc) << content;
}

}  // namespace vex::test
