// The simulated computer's drives: folders of the real file system under drive letters.
#pragma once

#include <filesystem>
#include <string>

#include "platform/files.h"

namespace vex::platform::native {

/// Drive C: is the sub-folder "drive_c" and so on; Z: is the real root folder. Names are found without
/// regard to case; where two differ in nothing else, the one spelled as asked comes first.
class DriveFiles final : public Files {
public:
    /// Where the drives are. Empty: there is only Z:.
    void set_folder(const std::filesystem::path& folder) { folder_ = folder; }

    bool ordinary_file_exists(const std::u16string& path) override;

    /// The real file behind a drive-letter path, or an empty path when its drive does not exist. The file
    /// itself need not exist.
    std::filesystem::path real_path(const std::u16string& path) const;
    /// The drive-letter path of a real file: on Z: unless it lies on another drive.
    std::u16string drive_path(const std::filesystem::path& file) const;
    /// Adds a name to, or takes it off, the list of its folder's hidden names (the file ".hidden", as file
    /// managers read it). Raises RuntimeError when the list cannot be written.
    void set_hidden(const std::u16string& path, bool hidden) const;

private:
    std::filesystem::path folder_;
};

}  // namespace vex::platform::native
