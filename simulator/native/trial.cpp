// A trial of the plug-in on the terminal.
#include "simulator/native/trial.h"

#include <iostream>
#include <sstream>

#include "platform/native/machine.h"
#include "platform/native/terminal/terminal_toolkit.h"
#include "simulator/display_picker.h"
#include "simulator/native/host_line.h"
#include "simulator/native/icon_characters.h"
#include "simulator/pace.h"
#include "simulator/run_progress.h"
#include "support/text.h"

namespace vex::sim {
namespace {

namespace terminal = platform::native::terminal;

constexpr int kEndedBySignal = 128;

/// What somebody sees who has never seen this: three lines.
std::u16string first_run_text(std::size_t displays) {
    return u"A simulated host with " + decimal_text(static_cast<std::int32_t>(displays)) +
           u" sample displays: nothing real is touched.\n"
           u"Its firmware plug-in opens now: options, displays, file, Finish.\n"
           u"Use the mouse, or Tab, Enter, Space and arrows; Ctrl+C leaves.";
}

/// A windowing system for this thread, then the one before again.
class DesktopScope {
public:
    DesktopScope(forms::Toolkit& now, forms::Toolkit& before) noexcept : before_(before) {
        platform::native::set_desktop(&now);
    }
    DesktopScope(const DesktopScope&) = delete;
    DesktopScope& operator=(const DesktopScope&) = delete;
    ~DesktopScope() { platform::native::set_desktop(&before_); }

private:
    forms::Toolkit& before_;
};

/// The host in front of its user.
class Trial {
public:
    Trial(Host& host, double speed)
        : host_(host),
          progress_(host),
          toolkit_(*screen_, icon_characters(),
                   [this](auto& canvas, auto& line) { return draw_host_line(canvas, line, toolkit_, progress_); }),
          pace_(toolkit_, speed, [this] { return toolkit_.ended().has_value(); }) {
        host_.choose_displays = [this] { return choose_displays(); };
        host_.on_link = [this](const LinkEvent& event) {
            progress_.follow(event);
            toolkit_.invalidate();
            pace_.follow(event);
            // Who leaves in the midst of it cuts the link.
            return !toolkit_.ended();
        };
    }
    Trial(const Trial&) = delete;
    Trial& operator=(const Trial&) = delete;
    ~Trial() {
        host_.on_link = nullptr;
        host_.choose_displays = nullptr;
    }

    ExitStatus play(PluginHost& plugin, forms::Toolkit& scripted, bool first_run, std::ostream& errors) {
        const DesktopScope desktop(toolkit_, scripted);
        if (first_run) toolkit_.message_box({u"Brivola (simulated)", first_run_text(host_.displays.size())});
        return toolkit_.ended() ? kPassed : Session::start(plugin, errors);
    }

    /// The signal that ended it, if any.
    std::optional<int> ended_by() const {
        if (!toolkit_.ended()) return std::nullopt;
        return toolkit_.ended()->signal;
    }

private:
    std::u16string choose_displays() {
        DisplayPicker picker(toolkit_, host_.displays, choice_);
        picker.show_modal();
        std::u16string answer = picker.answer();
        if (answer.empty()) return answer;
        progress_.begin_run(split(answer, u','));
        return choice_ = answer;
    }

    Host& host_;
    RunProgress progress_;
    /// What the user chose last.
    std::u16string choice_;
    std::unique_ptr<terminal::Screen> screen_ = terminal::take_terminal();
    terminal::TerminalToolkit toolkit_;
    Pace pace_;
};

}  // namespace

int run_trial(NativeSession& session, const CommandLine& options) {
    // The screen is in use until the end.
    std::ostringstream errors;
    std::ostringstream summary;
    std::optional<int> signal;
    const ExitStatus status = session.try_out(errors, [&](Host& host, PluginHost& plugin, bool first_run) {
        const Units before = host.units;
        ExitStatus played = kPassed;
        {
            Trial trial(host, options.speed);
            played = trial.play(plugin, session.screen().toolkit(), first_run, errors);
            signal = trial.ended_by();
        }
        print_changed_units(host, before, summary);
        return played;
    });
    std::cout << summary.str() << std::flush;
    std::cerr << errors.str();
    if (signal && status == kPassed) return kEndedBySignal + *signal;
    return status;
}

}  // namespace vex::sim
