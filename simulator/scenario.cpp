// Reads and plays scenarios.
#include "simulator/scenario.h"

#include <stdexcept>
#include <utility>

#include "core/digits.h"
#include "core/runtime_error.h"
#include "core/unicode.h"
#include "platform/private_files.h"
#include "simulator/automation.h"
#include "simulator/session.h"

namespace vex::sim {
namespace {

/// Where the session shows what the control says.
constexpr char16_t kStatusControl[] = u"lblStatus";

void read(Scenario& scenario, const std::string& file, std::string_view text, const std::filesystem::path& folder,
          int depth) {
    constexpr int kDeepest = 8;
    const auto name = std::make_shared<const std::string>(file);
    read_lines(file, text, {}, [&](const Words& words, std::size_t line) {
        const StatementType& type = statement_type(words);
        if (type.read != nullptr) {
            scenario.push_back({{name, line}, type.read(words)});
            return;
        }
        if (depth == kDeepest) throw std::invalid_argument("files include each other too deeply");
        const std::filesystem::path included = folder / std::filesystem::path(words[1]);
        std::string content;
        try {
            content = read_file(included);
        } catch (const TextError& error) {
            throw std::invalid_argument(error.what());
        }
        read(scenario, included.string(), content, folder, depth + 1);
    });
}

template <class Answer>
std::optional<Answer> take(std::deque<Answer>& queue) {
    if (queue.empty()) return std::nullopt;
    std::optional<Answer> answer(std::move(queue.front()));
    queue.pop_front();
    return answer;
}

}  // namespace

Scenario parse_scenario(const std::string& file, std::string_view text, const std::filesystem::path& folder) {
    Scenario scenario;
    read(scenario, file, text, folder, 0);
    return scenario;
}

ScenarioPlayer::ScenarioPlayer(const Scenario& scenario, Host& its_host, Screen& its_screen, PluginHost& plugin,
                               std::ostream& errors, std::filesystem::path folder)
    : host(its_host),
      screen(its_screen),
      scenario_(scenario),
      plugin_(plugin),
      errors_(errors),
      folder_(std::move(folder)) {
    host.choose_displays = [this] { return take(picker_answers).value_or(u""); };
    host.machine.on_program_started(
        [this](const std::u16string& path) { host.trace.line(u"program " + in_quotes(path)); });
    screen.set_user(this);
}

ScenarioPlayer::~ScenarioPlayer() {
    screen.set_user(nullptr);
    host.machine.on_program_started(nullptr);
    host.choose_displays = nullptr;
}

ExitStatus ScenarioPlayer::play() {
    while (act()) {
    }
    return status_;
}

// ---- Statements ---------------------------------------------------------------------------------------

bool ScenarioPlayer::act() noexcept {
    if (status_ == kBadUsage || next_ == scenario_.size()) return false;
    // Advanced first: the statement may open a dialog that the ones after it act in.
    const Statement& statement = scenario_[next_++];
    run(statement.place, statement.action);
    return true;
}

void ScenarioPlayer::run(const Place& where, const Action& action) noexcept {
    Place outer = std::exchange(place, where);
    try {
        action(*this);
    } catch (const std::exception& error) {
        report(where, error.what());
        status_ = kBadUsage;
    }
    place = std::move(outer);
}

void ScenarioPlayer::report(const Place& where, const std::string& text) {
    errors_ << TextError(*where.file, where.line, text).what() << '\n';
}

std::filesystem::path ScenarioPlayer::source_file(const std::u16string& name) const {
    const std::filesystem::path path(name);
    for (const std::filesystem::path& candidate : {folder_ / path, path}) {
        if (std::filesystem::is_regular_file(candidate)) return candidate;
    }
    throw std::invalid_argument("there is no file " + to_utf8(in_quotes(name)));
}

void ScenarioPlayer::put_file(const std::u16string& path, std::string_view bytes) {
    host.save_displays();
    const std::filesystem::path real = host.machine.writable_path(path);
    std::filesystem::create_directories(real.parent_path());
    platform::replace_private_file(real, bytes);
}

void ScenarioPlayer::require_display(const std::u16string& name) const {
    if (!host.displays.find(name)) throw std::invalid_argument("there is no display " + to_utf8(in_quotes(name)));
}

void ScenarioPlayer::say(const CallPattern& pattern, const std::u16string& text, const Action& reaction) {
    std::function<void()> bound;
    if (reaction) {
        // A click may lead to another call with the same message; the user does not click in his own click.
        bound = [this, where = place, reaction, busy = std::make_shared<bool>(false)] {
            if (std::exchange(*busy, true)) return;
            run(where, reaction);
            *busy = false;
        };
    }
    host.script.push_back({.pattern = pattern, .message = ScriptedMessage{text, std::move(bound)}});
}

void ScenarioPlayer::start(bool frame) {
    if (screen.any_dialog()) throw std::invalid_argument("a dialog is still open");
    const std::u16string name = frame ? u"StartFrameFeature" : u"StartPlugin";
    try {
        plugin_.start(frame ? create_object(u"vexBrivolaClasses4.HostSignInfo").get() : nullptr);
        host.trace.line(u"return " + name);
    } catch (const RuntimeError& error) {
        host.trace.line(u"error " + name + u" " + decimal_text(error.number()) + u" " + in_quotes(error.description()));
    }
}

void ScenarioPlayer::note_unless_done(ActionResult result, std::u16string_view what) {
    if (result == ActionResult::done) return;
    report(place, "note: " + to_utf8(what) + " is disabled or cannot be reached; nothing happens");
}

void ScenarioPlayer::expect(const std::u16string& what, const std::u16string& expected, const std::u16string& found) {
    if (expected == found) return;
    status_ = kFailed;
    report(place, "expected " + to_utf8(what) + " = " + to_utf8(expected) + ", found " + to_utf8(found));
}

// ---- What the screen tells ----------------------------------------------------------------------------

void ScenarioPlayer::form_opened(const std::u16string& name) noexcept {
    seen_at_work_ = false;
    host.trace.line(u"open " + name);
}

void ScenarioPlayer::form_closed(const std::u16string& name) noexcept { host.trace.line(u"close " + name); }

void ScenarioPlayer::messages_handled() noexcept {
    const auto status = screen.find(kStatusControl);
    ScriptedMessage* const message = status && status_ != kBadUsage ? host.read_message(status->caption) : nullptr;
    if (message == nullptr) return;
    if (!std::exchange(seen_at_work_, true)) screen.look();
    // By value: other messages may be said meanwhile.
    if (const auto reaction = message->reaction) reaction();
}

forms::MessageAnswer ScenarioPlayer::answer(const forms::MessageBox& box) noexcept {
    const bool asks = box.buttons == forms::MessageButtons::yes_no;
    forms::MessageAnswer answer = asks ? forms::MessageAnswer::yes : forms::MessageAnswer::ok;
    if (const auto choice = take(message_answers)) {
        if (asks == (choice->first != forms::MessageAnswer::ok)) {
            answer = choice->first;
        } else {
            report(choice->second, "the message " + to_utf8(in_quotes(box.text)) + " has no such button");
            status_ = kBadUsage;
        }
    }
    host.trace.line(u"msgbox " + in_quotes(box.title) + u" " + in_quotes(box.text) +
                    (!asks                                ? u" OK -> OK"
                     : answer == forms::MessageAnswer::no ? u" YesNo -> No"
                                                          : u" YesNo -> Yes"));
    return answer;
}

std::optional<std::u16string> ScenarioPlayer::choose_file(const forms::OpenFileRequest& request) noexcept {
    auto answer = take(file_answers).value_or(std::nullopt);
    host.trace.line(u"openfile initial=" + in_quotes(request.initial_folder) + u" filter=" + in_quotes(request.filter) +
                    u" flags=0x" + digits_of(request.flags, 16) + u" -> " + (answer ? in_quotes(*answer) : u"cancel"));
    return answer;
}

}  // namespace vex::sim
