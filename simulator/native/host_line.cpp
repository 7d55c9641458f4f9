// The simulated host's own line on the terminal.
#include "simulator/native/host_line.h"

#include <cmath>
#include <string>

#include "platform/native/terminal/colors.h"
#include "platform/native/terminal/text.h"

namespace vex::sim {
namespace {

namespace terminal = platform::native::terminal;

constexpr forms::Color kLine = forms::rgb(0, 48, 60);
constexpr forms::Color kBar = forms::rgb(100, 255, 100);

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

}  // namespace

void draw_host_line(terminal::Canvas& canvas, const terminal::Area& line, const RunProgress& progress) {
    canvas.fill(line, {terminal::look::kDesktopText, kLine});
    const terminal::Ink ink{.fore = terminal::look::kDesktopText};
    if (!progress.working()) {
        canvas.text({line.left + 1, line.top},
                    U"Tab next   Enter press   Space choose   Esc close   F10 menu   Ctrl+C leave", ink);
        return;
    }
    const std::u32string unit = wide(of("Unit", progress.unit_number(), progress.units()));
    const std::u32string display = wide(of("Display", progress.display_number(), progress.displays()));
    const std::u32string unit_percent = wide(percent(progress.unit_share()));
    const std::u32string run_percent = wide(percent(progress.run_share()));
    const int texts = terminal::text_width(unit) + terminal::text_width(display) + 2 * 6 + 5;
    const int width = std::max(5, (line.width() - texts) / 2);
    int column = canvas.text({line.left + 1, line.top}, unit, ink);
    column = canvas.text({column, line.top}, bar(progress.unit_share(), width), {.fore = kBar});
    column = canvas.text({column, line.top}, unit_percent, ink);
    column = canvas.text({column + 2, line.top}, display, ink);
    column = canvas.text({column, line.top}, bar(progress.run_share(), width), {.fore = kBar});
    canvas.text({column, line.top}, run_percent, ink);
}

}  // namespace vex::sim
