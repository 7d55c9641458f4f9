// The file seam: what the plug-in needs to know of files on drive-letter paths.
#pragma once

#include <string>

namespace vex::platform {

class Files {
public:
    virtual ~Files() = default;
    /// Whether `path` names an ordinary file: not a folder, not hidden, not a system file. Doubled
    /// separators count as one; bad or missing paths answer false, and so do paths that are not full.
    virtual bool ordinary_file_exists(const std::u16string& path) = 0;
};

}  // namespace vex::platform
