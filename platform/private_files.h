// Files and folders that nobody but their owner may look into, whatever the process would otherwise allow.
#pragma once

#include <filesystem>
#include <string_view>

namespace vex::platform {

/// Makes a folder that was not there before. False when something has that name, be it a link that leads
/// nowhere. Raises `std::system_error`.
bool make_private_folder(const std::filesystem::path& folder);

/// Puts a new file with this content in the place of what is at `path`, in one step. A link there is replaced
/// and not followed. Raises `std::system_error`, with what was there still in place.
void replace_private_file(const std::filesystem::path& path, std::string_view bytes);

}  // namespace vex::platform
