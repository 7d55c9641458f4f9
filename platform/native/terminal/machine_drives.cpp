// The drives of the simulated computer.
#include "platform/native/terminal/machine_drives.h"

#include <filesystem>
#include <system_error>

#include "core/unicode.h"
#include "platform/native/machine.h"

namespace vex::platform::native::terminal {

std::vector<std::u16string> MachineDrives::letters() const {
    std::vector<std::u16string> drives;
    for (char16_t letter = u'A'; letter <= u'Z'; ++letter) {
        std::u16string drive{letter, u':'};
        std::error_code error;
        const std::filesystem::path root = real_path(drive + u"\\");
        if (!root.empty() && std::filesystem::is_directory(root, error)) drives.push_back(std::move(drive));
    }
    return drives;
}

std::optional<std::vector<FolderEntry>> MachineDrives::entries(const std::u16string& folder) const {
    const std::filesystem::path real = real_path(folder + u"\\");
    std::error_code error;
    if (real.empty() || !std::filesystem::is_directory(real, error)) return std::nullopt;
    std::vector<FolderEntry> entries;
    // A folder that may not be read shows nothing.
    std::filesystem::directory_iterator entry(real, error);
    for (; !error && entry != std::filesystem::directory_iterator(); entry.increment(error)) {
        std::error_code unreadable;
        FolderEntry found;
        found.name = from_utf8(entry->path().filename().native());
        found.folder = entry->is_directory(unreadable);
        if (!found.folder && !files().ordinary_file_exists(folder + u"\\" + found.name)) continue;
        if (!found.folder) found.size = entry->file_size(unreadable);
        entries.push_back(std::move(found));
    }
    return entries;
}

bool MachineDrives::file_exists(const std::u16string& path) const {
    const std::filesystem::path real = real_path(path);
    std::error_code error;
    return !real.empty() && std::filesystem::is_regular_file(real, error);
}

}  // namespace vex::platform::native::terminal
