// One run of the simulated host with its plug-in, from its data to the last look at what is left.
#pragma once

#include <exception>
#include <filesystem>
#include <functional>
#include <optional>
#include <ostream>
#include <string>

#include "com/com_ptr.h"
#include "platform/library.h"
#include "simulator/program.h"
#include "simulator/scenario.h"

namespace vex::sim {

/// The plug-in as its host uses it: registered, asked for its catalogue, created by the name that it gave.
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

/// What a user is told of an error.
std::string message_of(const std::exception& error);

/// Loads what the host kept, its units in the folder `data`, registers the host's classes, loads the plug-in, does the
/// `work`, keeps what the units hold, lets everything go and looks for what stayed behind. Needs an initialised
/// apartment. The trace goes to `out`, everything else to `errors`.
ExitStatus run_host(Machine& machine, const std::filesystem::path& data, const std::filesystem::path& plugin_library,
                    bool quiet, std::ostream& out, std::ostream& errors,
                    const std::function<ExitStatus(Host& host, PluginHost& plugin)>& work);

/// What a program of either side is made of: its folders, and what is played there on the side's machine and screen.
/// One per process. Used on the thread that made it.
class Session {
public:
    virtual ~Session() = default;

    /// Plays the scenario of that file; "-": standard input. Raises `std::exception` for one that is missing
    /// or bad. The trace goes to `out`, everything else to `errors`.
    ExitStatus play(const std::string& file, std::ostream& out, std::ostream& errors);
    /// The same for a text; `folder`: where its relative files lie.
    ExitStatus play_text(const std::string& name, const std::string& text, const std::filesystem::path& folder,
                         std::ostream& out, std::ostream& errors);

    // These answer the program's exit status.

    /// No scenario is named: opens the wizard on the sample displays.
    virtual int play_without_scenario() = 0;
    /// Prints each of the plug-in's dialogs: its size, its controls and the columns of its list.
    virtual int print_controls() = 0;

protected:
    /// Makes the data folder's name; without one in the options, a private folder for this run.
    Session(const CommandLine& options, const std::filesystem::path& program_folder, const char* plugin_file);

    virtual Machine& machine() = 0;
    virtual Screen& screen() = 0;
    /// Before a scenario is played, whose trace goes to `out`.
    virtual void prepare(std::ostream& /*out*/) {}

    /// Lets somebody do the `work` on a host whose displays are those of the sample scenario, unless it has some
    /// already; it is `fresh` then. What the units hold that have changed goes to `summary` in the end.
    ExitStatus try_out(std::ostream& summary, std::ostream& errors,
                       const std::function<ExitStatus(Host& host, PluginHost& plugin, bool fresh)>& work);
    /// Opens the wizard for somebody to use.
    static ExitStatus start(PluginHost& plugin, std::ostream& errors);

    CommandLine options_;
    /// Where settings, drives and units are kept.
    std::filesystem::path data_;
    /// The plug-in's library.
    std::filesystem::path plugin_;
    std::filesystem::path samples_;

private:
    std::optional<PrivateFolder> private_;
};

}  // namespace vex::sim
