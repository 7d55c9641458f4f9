// The library seam: a module that a program loads by hand, to call a function of it by name.
#pragma once

#include <filesystem>

namespace vex::platform {

/// Owns one use of a loaded library.
class Library {
public:
    /// The file at `path` and no other: a name alone is one of the current folder. Raises 53 with the path
    /// and the system's reason when it cannot be loaded.
    explicit Library(const std::filesystem::path& path);
    Library(const Library&) = delete;
    Library& operator=(const Library&) = delete;
    ~Library();

    /// An exported function; valid while this object lives. Raises 453 with the name when there is none.
    template <class Function>
    Function function(const char* name) const {
        return reinterpret_cast<Function>(find(name));
    }

private:
    /// Any function, until it is known which.
    using Address = void (*)();
    Address find(const char* name) const;

    void* module_;
};

}  // namespace vex::platform
