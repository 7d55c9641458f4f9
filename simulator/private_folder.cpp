// A folder for one run alone.
#include "simulator/private_folder.h"

#include <random>
#include <system_error>

namespace vex::sim {

PrivateFolder::PrivateFolder() {
    std::random_device random;
    do {
        path_ = std::filesystem::temp_directory_path() / ("brivola-sim-" + std::to_string(random()));
    } while (!std::filesystem::create_directory(path_));
    std::filesystem::permissions(path_, std::filesystem::perms::owner_all);
}

PrivateFolder::~PrivateFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
}

}  // namespace vex::sim
