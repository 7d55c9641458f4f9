// File descriptors: their owner, and writing to one until nothing is left.
#pragma once

#include <unistd.h>

#include <cerrno>
#include <string_view>
#include <utility>

namespace vex::platform::native {

/// Owns an open file, or none.
class Descriptor {
public:
    explicit Descriptor(int number = -1) noexcept : number_(number) {}
    Descriptor(Descriptor&& other) noexcept : number_(std::exchange(other.number_, -1)) {}
    Descriptor& operator=(Descriptor&& other) noexcept {
        std::swap(number_, other.number_);
        return *this;
    }
    ~Descriptor() {
        if (is_open()) ::close(number_);
    }

    int get() const noexcept { return number_; }
    bool is_open() const noexcept { return number_ >= 0; }

private:
    int number_;
};

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
