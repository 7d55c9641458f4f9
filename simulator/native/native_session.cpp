// The native program's composition, and the trial on the terminal.
#include "simulator/native/native_session.h"

#include <algorithm>
#include <cmath>
#include <iostream>
#include <map>
#include <set>
#include <sstream>
#include <utility>

#include "com/com.h"
#include "core/digits.h"
#include "platform/native/terminal/screen.h"
#include "platform/native/terminal/terminal_toolkit.h"
#include "simulator/trial.h"

namespace vex::sim {
namespace {

namespace native = platform::native;
namespace terminal = platform::native::terminal;

// ---- The host's line on the terminal

/// What somebody sees who has never seen this: three lines.
std::u16string first_run_text(std::size_t displays) {
    return u"A simulated host with " + digits_of(displays, 10) +
           u" sample displays: nothing real is touched.\n"
           u"Its firmware plug-in opens now: options, displays, file, Finish.\n"
           u"Use the mouse, or Tab, Enter, Space and arrows; Ctrl+C leaves.";
}

constexpr terminal::Style kLine{.fore = terminal::Color::black, .back = terminal::Color::cyan};
constexpr terminal::Style kBar{.fore = terminal::Color::white};

std::u32string wide(const std::string& text) { return {text.begin(), text.end()}; }

std::u32string bar(double share, int width) {
    const int full = static_cast<int>(std::floor(share * width));
    std::u32string cells(static_cast<std::size_t>(full), U'█');
    return cells.append(static_cast<std::size_t>(width - full), U'░');
}

std::string percent(double share) {
    const std::string number = std::to_string(std::lround(std::floor(share * 100)));
    return std::string(3 - std::min<std::size_t>(3, number.size()), ' ') + number + " %";
}

/// Before the first one there is no number yet.
std::string of(const char* what, std::size_t number, std::size_t count) {
    return std::string(what) + " " + (number == 0 ? "-" : std::to_string(number)) + " of " + std::to_string(count) +
           " ";
}

/// The run goes on while its Close is disabled, and again while a display is done once more.
bool is_running(const terminal::TerminalToolkit& toolkit) {
    const forms::Form* const run = toolkit.find("dlgDispUpdater");
    if (run == nullptr) return false;
    const forms::Control* const close = run->find("cmdClose");
    return (close != nullptr && !close->enabled()) || toolkit.find("dlgHandleSignOption") != nullptr;
}

/// How the displays of the run on the screen fared; empty where it is not the topmost dialog.
std::string outcome(const terminal::TerminalToolkit& toolkit) {
    const forms::Form* const run = toolkit.find("dlgDispUpdater");
    forms::Control* const found = run == nullptr ? nullptr : run->find("lstvDisplayStatus");
    if (found == nullptr || toolkit.top() != run) return {};
    const auto& list = static_cast<const forms::ListView&>(*found);
    std::map<std::string, std::size_t> counts;
    for (const forms::ListRow& row : list.rows())
        if (row.icon) ++counts[list.small_icons->images()[*row.icon].icon];
    std::string text = std::to_string(counts["UPDATED"]) + " updated";
    for (const auto& [icon, word] :
         {std::pair("FAILED", " failed"), {"CANCELLED", " cancelled"}, {"NOTUPDATED", " not tried"}})
        if (counts[icon] > 0) text += ", " + std::to_string(counts[icon]) + word;
    return text + (counts["UPDATED"] < list.row_count() ? ": F10 retries   " : "   ");
}

/// Draws on the host's own line how far the run among the dialogs of `toolkit` is, or answers what stands there
/// before the keys.
std::optional<std::u32string> draw_host_line(terminal::Canvas& canvas, const terminal::Area& line,
                                             const terminal::TerminalToolkit& toolkit, const RunProgress& progress) {
    // A question is answered by keys.
    if (!is_running(toolkit) || toolkit.top()->name() == "MessageBox") return wide(outcome(toolkit));
    canvas.fill(line, kLine);
    const std::u32string unit = wide(of("Unit", progress.unit_number, progress.units));
    const std::u32string display = wide(of("Display", progress.display_number, progress.displays()));
    const int texts = terminal::text_width(unit) + terminal::text_width(display) + 2 * 6 + 5;
    const int width = std::max(5, (line.width() - texts) / 2);
    int column = line.left + 1;
    for (const auto& [text, share] : {std::pair(unit, progress.unit_share), {display, progress.run_share()}}) {
        column = canvas.text({column, line.top}, text, kLine);
        column = canvas.text({column, line.top}, bar(share, width), kBar);
        column = canvas.text({column, line.top}, wide(percent(share)), kLine) + 2;
    }
    return std::nullopt;
}

// ---- The controls

/// Comes by every dialog.
constexpr char kTour[] =
    "display A\nanswer picker A\nstart\nclick cmdAbout\nclose\nclick cmdNext\nclick cmdNext\nclick cmdChooseDisplay\n"
    "click cmdNext\nclick cmdFinish\nclick cmdClose";

void print_controls_of(const forms::Form& form) {
    constexpr std::size_t kWidth = 100;
    std::cout << form.name() << ", " << form.width() << " by " << form.height() << ':';
    std::size_t column = kWidth;
    for (const forms::Control* control : form.controls()) {
        if (column + control->name().size() + 1 > kWidth) {
            std::cout << "\n   ";
            column = 3;
        }
        std::cout << ' ' << control->name();
        column += control->name().size() + 1;
    }
    for (const forms::Control* control : form.controls()) {
        if (control->kind() != forms::ControlKind::list_view) continue;
        const char* before = "\n    columns: ";
        for (const auto& [title, width] : static_cast<const forms::ListView*>(control)->columns)
            std::cout << std::exchange(before, ", ") << to_utf8(title) << ' ' << width;
    }
    std::cout << '\n';
}

}  // namespace

NativeSession::NativeSession(const CommandLine& options)
    : Session(options, std::filesystem::read_symlink("/proc/self/exe").parent_path(), "libvexFirmwarePlugin.so") {
    native::use_machine_folder(data_);
    native::set_desktop(&screen_.toolkit());
    CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
}

NativeSession::~NativeSession() {
    CoUninitialize();
    native::set_desktop(nullptr);
}

void NativeSession::prepare(std::ostream& out) {
    if (options_.pictures) screen_.on_look = pictures(out);
}

int NativeSession::play_without_scenario() {
    if (terminal::find_terminal(std::cerr)) return run_trial();
    options_.pictures = true;
    options_.quiet = true;
    return play((samples_ / "demo.scn").string(), std::cout, std::cerr);
}

int NativeSession::print_controls() {
    options_.quiet = true;
    screen_.on_look = [seen = std::set<std::string>()](const Sight& sight) mutable {
        auto* const* const form = std::get_if<forms::Form*>(&sight);
        if (form != nullptr && seen.insert((*form)->name()).second) print_controls_of(**form);
    };
    return play_text("the tour", kTour, {}, std::cout, std::cerr);
}

int NativeSession::run_trial() {
    // The screen is in use until the end.
    std::ostringstream summary, errors;
    std::optional<terminal::Ended> ended;
    const ExitStatus status = try_out(summary, errors, [&](Host& host, PluginHost& plugin, bool first_run) {
        RunProgress progress(host);
        const auto screen = terminal::take_terminal();
        terminal::TerminalToolkit toolkit(*screen, icon_characters(), [&](auto& canvas, auto& line) {
            return draw_host_line(canvas, line, toolkit, progress);
        });
        const Trial trial(host, toolkit, progress, options_.speed, [&] { return toolkit.ended().has_value(); });
        host.on_link = [&toolkit, follow = host.on_link](const LinkEvent& event) {
            toolkit.invalidate();
            return follow(event);
        };
        native::set_desktop(&toolkit);
        if (first_run) toolkit.message_box({u"Brivola (simulated)", first_run_text(host.displays.size())});
        const ExitStatus played = toolkit.ended() ? kPassed : start(plugin, errors);
        native::set_desktop(&screen_.toolkit());
        ended = toolkit.ended();
        return played;
    });
    std::cout << summary.str() << std::flush;
    std::cerr << errors.str();
    return ended && status == kPassed ? 128 + ended->signal : status;
}

}  // namespace vex::sim
