// What the simulated host's objects share.
#include "simulator/host.h"

#include <utility>

#include "core/runtime_error.h"
#include "support/text.h"

namespace vex::sim {

ScriptedCall Host::begin(const Call& call, const std::u16string& shown) {
    ScriptedCall scripted = links.next(call);
    if (scripted.fault != FaultKind::raise) return scripted;
    trace.line(shown + u" -> error " + decimal_text(kAutomationError));
    throw RuntimeError(kAutomationError, std::u16string(name_of(call.operation)) + u" failed");
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

}  // namespace vex::sim
