// A folder for one run alone.
#include "simulator/private_folder.h"

#include <random>
#include <system_error>

#include "platform/private_files.h"

namespace vex::sim {

PrivateFolder::PrivateFolder() {
    std::random_device random;
    do {
        path_ = std::filesystem::temp_directory_path() / ("brivola-sim-" + std::to_string(random()));
    } while (!platform::make_private_folder(path_));
}

PrivateFolder::~PrivateFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
}

}  // namespace vex::sim
