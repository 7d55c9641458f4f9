// The drives of the simulated computer.
#pragma once

#include "platform/native/terminal/drives.h"

namespace vex::platform::native::terminal {

class MachineDrives final : public Drives {
public:
    std::vector<std::u16string> letters() const override;
    std::optional<std::vector<FolderEntry>> entries(const std::u16string& folder) const override;
    bool file_exists(const std::u16string& path) const override;
};

}  // namespace vex::platform::native::terminal
