// What the simulated host's objects share: its machine, its trace, its displays and their units, and what a scenario
// lets happen on the links to them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

#include "com/object.h"
#include "com/variant.h"
#include "core/unicode.h"
#include "simulator/displays.h"

namespace vex::sim {

/// What a scenario can disturb, by its name of static life: a member of the transmission control, of the finder or of
/// the display list, or the creation of an object, by its class.
using Operation = std::u16string_view;

/// Which calls something is about; what is not given matches any.
struct CallPattern {
    std::optional<std::u16string> display;
    std::optional<std::int16_t> id;
    Operation operation;
    /// Only the N-th matching call, from 1; 0: each.
    std::int64_t at = 0;
};

/// One call. The display is empty where no display answers on the line, or none was asked about; the ID is 0 where
/// none is addressed.
struct Call {
    std::u16string display;
    std::int16_t id = 0;
    Operation operation;
};

struct MemberFacts;

/// A call of one of the host's objects by automation, or the creation of one.
struct ObjectCall {
    std::u16string_view class_name;
    /// Null of a creation, as what follows.
    const MemberFacts* member = nullptr;
    WORD flags = 0;
    DISPPARAMS* parameters = nullptr;

    /// "Class.Member", or "new Class".
    std::u16string name() const;
};

/// Something on a link, while it happens.
struct LinkEvent {
    enum class Kind {
        /// A call begins.
        begins,
        /// Part of a firmware file goes over the link.
        transfers,
        /// The control has said something in its status event.
        says,
    };
    Kind kind = Kind::begins;
    Call call;
    /// Of Kind::transfers: how much of the file the unit has when it is through, and the part's size.
    int percent = 0;
    std::size_t bytes = 0;
};

/// `replace`: the call succeeds and puts another object in the place of the one that it was given.
enum class FaultKind { none, fail, raise, replace };

/// A status message that the control says during a call, and what the user does while he sees it.
struct ScriptedMessage {
    std::u16string text;
    /// Empty: he only reads it.
    std::function<void()> reaction = {};
    bool was_read = false;
};

/// What the script has for one call.
struct ScriptedCall {
    FaultKind fault = FaultKind::none;
    std::vector<ScriptedMessage> messages;

    bool fails() const noexcept { return fault == FaultKind::fail; }
};

/// What the script has for the calls that match: a fault, or a message.
struct ScriptEntry {
    CallPattern pattern;
    FaultKind fault = FaultKind::none;
    std::optional<ScriptedMessage> message = {};
    /// How many calls have matched.
    std::int64_t calls = 0;
};

/// One per process; used on the host's thread.
class Machine {
public:
    virtual ~Machine() = default;

    /// The real file behind a drive-letter path; its drive and folder need not exist. Empty for a path
    /// without a drive letter.
    virtual std::filesystem::path real_path(const std::u16string& path) = 0;
    /// Makes the drive of a path where it is missing and answers the real file behind the path. Raises
    /// `std::invalid_argument` for a path without a drive letter or on a drive that is not the run's own.
    std::filesystem::path writable_path(const std::u16string& path);
    virtual void hide(const std::u16string& path) = 0;
    /// Told the path of each program that is started in place of it.
    virtual void on_program_started(std::function<void(const std::u16string&)> listener) = 0;

private:
    /// Where the run's drives lie, each in a folder: drive C: is drive_c.
    virtual const std::filesystem::path& drives() const = 0;
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
    void print(std::u16string_view text) { out_ << to_utf8(text) << '\n'; }

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
    std::vector<ScriptEntry> script;

    /// The host's selection dialog: display names joined by ",".
    std::function<std::u16string()> choose_displays;
    /// Told of what goes on on the links, so that it can be watched and take its time; may be empty. Answers
    /// whether the link still stands; where not, what is in progress is interrupted.
    std::function<bool(const LinkEvent& event)> on_link;

    /// Stands between callers and the host's objects: lets them answer, or answers or raises in their place; a creation
    /// is answered by an object. Empty: they answer.
    std::function<com::Variant(const ObjectCall& call, const std::function<com::Variant()>& answer)> around_call;
    /// What becomes of a call: `answer`, unless something stands between.
    com::Variant outcome_of(const ObjectCall& call, const auto& answer) const {
        return around_call ? around_call(call, std::ref(answer)) : answer();
    }
    /// Told of who begins and ends to listen to a control; raises nothing.
    std::function<void(std::u16string_view class_name, IDispatch& sink, bool listens)> on_listener;

    /// The display that a caller asked about last. Where several displays share one line, it is meant.
    std::u16string display_asked_about;
    /// The status messages that the control is saying, the innermost last.
    std::vector<ScriptedMessage> messages_said;

    /// Takes what the script has for a call; to be asked once for each. Raises the error that it has; `shown` begins
    /// the line of the trace that tells of that.
    ScriptedCall begin(const Call& call, const std::u16string& shown);
    /// The message that is being said, the first time that it can be read: `shown` is what a user sees on the session's
    /// status line. Null for other texts, and for a message that was read. Its reaction is the caller's to take.
    ScriptedMessage* read_message(const std::u16string& shown);
    /// Adds or replaces a display, without slaves and device servers; what its units hold stays.
    void put_display(Display display);
    /// Writes the file where a display has changed since. Raises `std::system_error`.
    void save_displays();
    /// What each unit of the displays holds, a line each.
    std::vector<std::u16string> unit_lines() const;
    /// The display that answers on a line, by its position.
    std::optional<std::size_t> display_on_line(const std::u16string& line) const;
};

}  // namespace vex::sim
