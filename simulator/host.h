// What the simulated host's objects share: its displays and their units, its links, and its surroundings.
#pragma once

#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "com/object.h"
#include "simulator/computer.h"
#include "simulator/displays.h"
#include "simulator/link_script.h"
#include "simulator/trace.h"
#include "simulator/units.h"

namespace vex::sim {

/// One per run; outlives the objects made from it. Used on the host's thread only.
struct Host {
    /// Where the displays lie on the computer's own drive.
    static constexpr char16_t kDisplayFile[] = u"C:\\Brivola\\Displays.dat";

    Host(Trace& shown_trace, Computer& own_computer) noexcept : trace(shown_trace), computer(own_computer) {}

    Trace& trace;
    Computer& computer;
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

}  // namespace vex::sim
