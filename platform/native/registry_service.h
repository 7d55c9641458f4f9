// The registry seam on the native side.
#pragma once

#include <filesystem>
#include <memory>

#include "platform/registry.h"

namespace vex::platform::native {

/// The registry of one computer, which reaches no other one. Any thread.
class NativeRegistry : public Registry {
public:
    /// Changes to the file "registry" in `folder`. All handles become invalid. Raises RegistryDamage or
    /// std::system_error, with the registry before still in place.
    virtual void use_folder(const std::filesystem::path& folder) = 0;
};

/// An empty registry in memory.
std::unique_ptr<NativeRegistry> make_registry();

}  // namespace vex::platform::native
