// The plug-in as its host uses it: registered, asked for its catalogue, created by the name that it gave.
#pragma once

#include <filesystem>
#include <string>

#include "com/com_ptr.h"
#include "platform/library.h"

namespace vex::sim {

/// Used on the host's thread; needs an initialised apartment.
class PluginHost {
public:
    /// Loads and registers the library, and reads the catalogue. Raises `RuntimeError`.
    explicit PluginHost(const std::filesystem::path& library);

    /// Creates the first feature's entry class by its name and starts it, by StartFrameFeature with a `frame`, else by
    /// StartPlugin; returns when its dialog is closed. Raises the `RuntimeError` that the plug-in answers.
    void start(IDispatch* frame = nullptr);

    /// Whether the plug-in agrees to be unloaded now.
    bool can_unload() const;

private:
    platform::Library library_;
    std::u16string entry_class_;
};

}  // namespace vex::sim
