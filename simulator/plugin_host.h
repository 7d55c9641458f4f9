// The plug-in as its host uses it: registered, asked for its catalogue, created by the name that it gave.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "com/com_ptr.h"
#include "platform/library.h"

namespace vex::sim {

/// What the catalogue says of one feature.
struct Feature {
    std::u16string name;
    std::u16string description;
    std::u16string caption;
    bool has_picture = false;
};

/// Which member of the entry class starts the feature.
enum class StartMember { StartPlugin, StartFrameFeature };

std::u16string_view name_of(StartMember member) noexcept;

/// Used on the host's thread; needs an initialised apartment.
class PluginHost {
public:
    /// Loads and registers the library, and reads the catalogue. Raises `RuntimeError`.
    explicit PluginHost(const std::filesystem::path& library);
    PluginHost(const PluginHost&) = delete;
    PluginHost& operator=(const PluginHost&) = delete;
    ~PluginHost();

    const std::vector<Feature>& features() const noexcept { return features_; }

    /// Creates the first feature's entry class by its name and starts it; returns when its dialog is closed.
    /// `object` is handed to StartFrameFeature. Raises the `RuntimeError` that the plug-in answers.
    void start(StartMember member, IDispatch* object);

    /// Whether the plug-in agrees to be unloaded now.
    bool can_unload() const;

private:
    void read_catalogue();

    platform::Library library_;
    std::vector<Feature> features_;
};

}  // namespace vex::sim
