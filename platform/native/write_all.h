// Writing to a file descriptor until nothing is left.
#pragma once

#include <unistd.h>

#include <cerrno>
#include <string_view>

namespace vex::platform::native {

/// Writes all of `bytes`, also where the system takes them in parts or is interrupted. False, with errno set, when
/// it could not.
inline bool write_all(int descriptor, std::string_view bytes) noexcept {
    while (!bytes.empty()) {
        const ssize_t written = ::write(descriptor, bytes.data(), bytes.size());
        if (written < 0 && errno == EINTR) continue;
        if (written < 0) return false;
        bytes.remove_prefix(static_cast<std::size_t>(written));
    }
    return true;
}

}  // namespace vex::platform::native
