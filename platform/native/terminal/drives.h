// The computer's drives as the Open dialog shows them.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace vex::platform::native::terminal {

struct FolderEntry {
    std::u16string name;
    bool folder = false;
    /// In bytes; of files.
    std::uintmax_t size = 0;
};

/// Paths are drive-letter paths; folders are given without a trailing backslash.
class Drives {
public:
    virtual ~Drives() = default;
    /// "C:" and so on, in order.
    virtual std::vector<std::u16string> letters() const = 0;
    /// What the user may see in a folder, in no order; nothing when there is no such folder.
    virtual std::optional<std::vector<FolderEntry>> entries(const std::u16string& folder) const = 0;
    virtual bool file_exists(const std::u16string& path) const = 0;
};

}  // namespace vex::platform::native::terminal
