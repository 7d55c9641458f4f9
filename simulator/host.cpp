// What the simulated host's objects share.
#include "simulator/host.h"

#include <array>
#include <utility>
#include <vector>

#include "core/runtime_error.h"
#include "core/unicode.h"
#include "support/text.h"

namespace vex::sim {
namespace {

using Line = std::array<std::u16string, 3>;

/// Characters, as far as UTF-16 can tell without a table of widths.
std::size_t length(const std::u16string& text) {
    std::size_t count = 0;
    for (const char16_t unit : text) count += unit < 0xDC00 || unit > 0xDFFF ? 1 : 0;
    return count;
}

}  // namespace

void Trace::print(std::u16string_view text) { out_ << to_utf8(text) << '\n'; }

ScriptedCall Host::begin(const Call& call, const std::u16string& shown) {
    ScriptedCall scripted = links.next(call);
    if (scripted.fault != FaultKind::raise) return scripted;
    trace.line(shown + u" -> error " + decimal_text(kAutomationError));
    throw RuntimeError(kAutomationError, std::u16string(call.operation.name) + u" failed");
}

ScriptedMessage* Host::read_message(const std::u16string& shown) {
    if (messages_said.empty() || messages_said.back().text != shown) return nullptr;
    return std::exchange(messages_said.back().was_read, true) ? nullptr : &messages_said.back();
}

void Host::put_display(Display display) {
    units.clear_hardware(display.name);
    displays.put(std::move(display));
    displays_changed = true;
}

void Host::save_displays() {
    if (!std::exchange(displays_changed, false)) return;
    std::filesystem::create_directories(display_file.parent_path());
    displays.save(display_file);
}

std::optional<std::size_t> Host::display_on_line(const std::u16string& line) const {
    const auto asked = displays.find(display_asked_about);
    return asked && displays.at(*asked).line() == line ? asked : displays.first_on_line(line);
}

void print_changed_units(const Host& host, const Units& before, std::ostream& out) {
    std::vector<Line> lines{{u"Display", u"Unit", u"Holds now"}};
    int unchanged = 0;
    for (std::size_t i = 0; i < host.displays.size(); ++i) {
        const Display& display = host.displays.at(i);
        for (const std::int16_t id : host.units.ids(display)) {
            const std::u16string content = describe(host.units.content(display.name, id));
            if (content == describe(before.content(display.name, id))) {
                ++unchanged;
            } else {
                lines.push_back({display.name, decimal_text(id), content});
            }
        }
    }
    if (lines.size() == 1) lines.clear();
    std::array<std::size_t, 2> widths{};
    for (const Line& line : lines) {
        for (std::size_t column = 0; column < widths.size(); ++column) {
            widths[column] = std::max(widths[column], length(line[column]));
        }
    }
    for (const Line& line : lines) {
        const auto blanks = [&](std::size_t column) { return std::string(widths[column] - length(line[column]), ' '); };
        out << to_utf8(line[0]) << blanks(0) << "  " << blanks(1) << to_utf8(line[1]) << "  " << to_utf8(line[2])
            << '\n';
    }
    if (unchanged > 0) out << unchanged << (unchanged == 1 ? " unit has" : " units have") << " not changed\n";
}

}  // namespace vex::sim
