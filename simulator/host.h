// What the simulated host's objects share: its machine, its trace, its displays and their units, its links.
#pragma once

#include <filesystem>
#include <functional>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

#include "com/object.h"
#include "platform/code_page.h"
#include "platform/registry.h"
#include "simulator/displays.h"
#include "simulator/link_script.h"

namespace vex::sim {

/// One per process; used on the host's thread.
class Machine {
public:
    virtual ~Machine() = default;

    virtual platform::Registry& registry() = 0;
    virtual const platform::CodePage& code_page() = 0;
    /// The real file behind a drive-letter path; its drive and folder need not exist. Empty for a path
    /// without a drive letter.
    virtual std::filesystem::path real_path(const std::u16string& path) = 0;
    /// Makes the drive of a path where it is missing and answers the real file behind the path. Raises
    /// `std::invalid_argument` for a path without a drive letter or on a drive that is not the run's own.
    virtual std::filesystem::path writable_path(const std::u16string& path) = 0;
    virtual void hide(const std::u16string& path) = 0;
    /// Told the path of each program that is started in place of it.
    virtual void on_program_started(std::function<void(const std::u16string&)> listener) = 0;
};

/// Writes UTF-8 lines. `out` must outlive it.
class Trace {
public:
    /// `quiet`: nothing is written but what `print` is given.
    Trace(std::ostream& out, bool quiet) noexcept : out_(out), quiet_(quiet) {}

    /// Something happened.
    void line(std::u16string_view text) {
        if (!quiet_) print(text);
    }
    /// Somebody asked to see this.
    void print(std::u16string_view text);

private:
    std::ostream& out_;
    bool quiet_;
};

/// One per run; outlives the objects made from it. Used on the host's thread only.
struct Host {
    /// Where the displays lie on the machine's own drive.
    static constexpr char16_t kDisplayFile[] = u"C:\\Brivola\\Displays.dat";

    Host(Trace& shown_trace, Machine& own_computer) noexcept : trace(shown_trace), machine(own_computer) {}

    Trace& trace;
    Machine& machine;
    /// Counts the host's own living objects.
    com::ModuleLifetime lifetime;

    /// The displays as they stand in the world; the file at `display_file` is what the host knows of them.
    Displays displays;
    std::filesystem::path display_file;
    bool displays_changed = false;
    Units units;
    LinkScript links;

    /// The host's selection dialog: display names joined by ",".
    std::function<std::u16string()> choose_displays;
    /// Told of what goes on on the links, so that it can be watched and take its time; may be empty. Answers
    /// whether the link still stands; where not, what is in progress is interrupted.
    std::function<bool(const LinkEvent& event)> on_link;

    /// The display that a caller asked about last. Where several displays share one line, it is meant.
    std::u16string display_asked_about;
    /// The status messages that the control is saying, the innermost last.
    std::vector<ScriptedMessage> messages_said;

    /// Takes what the script has for a call. Raises the error that it has; `shown` begins the line of the trace that
    /// tells of that.
    ScriptedCall begin(const Call& call, const std::u16string& shown);
    /// The message that is being said, the first time that it can be read: `shown` is what a user sees on the session's
    /// status line. Null for other texts, and for a message that was read. Its reaction is the caller's to take.
    ScriptedMessage* read_message(const std::u16string& shown);
    /// Adds or replaces a display, without slaves and device servers; what its units hold stays.
    void put_display(Display display);
    /// Writes the file where a display has changed since. Raises `TextError` or `filesystem_error`.
    void save_displays();
    /// The display that answers on a line, by its position.
    std::optional<std::size_t> display_on_line(const std::u16string& line) const;
};

/// A line for each unit that does not hold what it held `before`, in the host's order of the displays; then how many
/// still do.
void print_changed_units(const Host& host, const Units& before, std::ostream& out);

}  // namespace vex::sim
