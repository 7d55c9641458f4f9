// Files and folders for their owner alone: on Windows they take their rights from the folder that they are in,
// and the folders for a user's temporary files and settings are his own.
#include "platform/private_files.h"

#include <fstream>
#include <system_error>

namespace vex::platform {

bool make_private_folder(const std::filesystem::path& folder) { return std::filesystem::create_directory(folder); }

void replace_private_file(const std::filesystem::path& path, std::string_view bytes) {
    std::filesystem::path fresh = path;
    fresh += ".new";
    std::ofstream file(fresh, std::ios::binary | std::ios::trunc);
    file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    file.close();
    if (!file) throw std::system_error(std::make_error_code(std::errc::io_error), fresh.string());
    std::filesystem::rename(fresh, path);
}

}  // namespace vex::platform
