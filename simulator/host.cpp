// What the simulated host's objects share.
#include "simulator/host.h"

#include <algorithm>

#include "core/digits.h"
#include "core/runtime_error.h"
#include "platform/private_files.h"
#include "simulator/automation.h"

namespace vex::sim {

std::filesystem::path Machine::writable_path(const std::u16string& path) {
    // The real root folder on one of the sides, and no scenario may depend on the side.
    constexpr char16_t kRealDrive = u'Z';
    const char16_t drive = path.empty() ? u'\0' : to_upper(path.front());
    if (path.size() < 4 || drive < u'A' || drive >= kRealDrive || path[1] != u':' || path[2] != u'\\')
        refuse(path, "is no path on a drive of A: to Y:");
    platform::make_private_folder(drives() / (std::string("drive_") + static_cast<char>(drive - u'A' + 'a')));
    return real_path(path);
}

std::u16string ObjectCall::name() const {
    return member == nullptr ? u"new " + std::u16string(class_name)
                             : std::u16string(class_name).append(u".").append(member->name);
}

ScriptedCall Host::begin(const Call& call, const std::u16string& shown) {
    ScriptedCall scripted;
    for (ScriptEntry& entry : script) {
        const CallPattern& meant = entry.pattern;
        if (meant.operation != call.operation || meant.display.value_or(call.display) != call.display ||
            meant.id.value_or(call.id) != call.id)
            continue;
        // Every entry counts the call, also one that an earlier fault keeps from taking effect.
        ++entry.calls;
        if (meant.at != 0 && meant.at != entry.calls) continue;
        if (entry.message) {
            scripted.messages.push_back(*entry.message);
        } else if (scripted.fault == FaultKind::none) {
            scripted.fault = entry.fault;
        }
    }
    if (scripted.fault != FaultKind::raise) return scripted;
    trace.line(shown + u" -> error " + decimal_text(kAutomationError));
    throw RuntimeError(kAutomationError, std::u16string(call.operation) + u" failed");
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
    platform::replace_private_file(display_file, displays.text());
}

std::vector<std::u16string> Host::unit_lines() const {
    std::vector<std::u16string> lines;
    for (const Display& display : displays) {
        for (const std::int16_t id : units.ids(display))
            lines.push_back(u"unit " + in_quotes(display.name) + u" " + decimal_text(id) + u": " +
                            units.content(display.name, id));
    }
    return lines;
}

std::optional<std::size_t> Host::display_on_line(const std::u16string& line) const {
    const auto asked = displays.find(display_asked_about);
    if (asked && displays.at(*asked).line() == line) return asked;
    const auto first = std::ranges::find(displays, line, &Display::line);
    return first == displays.end() ? std::nullopt : displays.find(first->name);
}

}  // namespace vex::sim
