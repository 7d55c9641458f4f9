// The code page seam: wide text to and from the system's ANSI code page.
#pragma once

#include <string>
#include <string_view>

namespace vex::platform {

class CodePage {
public:
    virtual ~CodePage() = default;
    /// Characters that the code page cannot hold become "?", never another one that only looks like them.
    virtual std::string to_ansi(std::u16string_view text) const = 0;
    virtual std::u16string from_ansi(std::string_view bytes) const = 0;
};

}  // namespace vex::platform
