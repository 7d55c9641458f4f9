// Plays a scenario.
#include "simulator/scenario_player.h"

#include <stdexcept>
#include <utility>

#include "core/runtime_error.h"
#include "core/unicode.h"
#include "simulator/class_library.h"
#include "simulator/words.h"
#include "support/text.h"

namespace vex::sim {
namespace {

/// Where the session shows what the control says.
constexpr char16_t kStatusControl[] = u"lblStatus";

std::u16string hexadecimal(std::uint32_t number) {
    std::u16string digits;
    do {
        digits.insert(digits.begin(), u"0123456789ABCDEF"[number & 0xFU]);
        number >>= 4U;
    } while (number != 0);
    return u"0x" + digits;
}

std::u16string_view shown_answer(forms::MessageAnswer answer) {
    switch (answer) {
        case forms::MessageAnswer::yes:
            return u"Yes";
        case forms::MessageAnswer::no:
            return u"No";
        default:
            return u"OK";
    }
}

bool offers(forms::MessageButtons buttons, forms::MessageAnswer answer) {
    return (buttons == forms::MessageButtons::ok) == (answer == forms::MessageAnswer::ok);
}

template <class Answer>
std::optional<Answer> take(std::deque<Answer>& queue) {
    if (queue.empty()) return std::nullopt;
    std::optional<Answer> answer(std::move(queue.front()));
    queue.pop_front();
    return answer;
}

}  // namespace

ScenarioPlayer::ScenarioPlayer(const Scenario& scenario, Host& host, Screen& screen, PluginHost& plugin,
                               std::ostream& errors, std::filesystem::path folder)
    : scenario_(scenario),
      host_(host),
      screen_(screen),
      plugin_(plugin),
      errors_(errors),
      folder_(std::move(folder)),
      registry_(host.machine.registry(), host.machine.code_page()) {
    host_.choose_displays = [this] { return take(picker_).value_or(u""); };
    host_.machine.on_program_started(
        [this](const std::u16string& path) { trace().line(u"program " + in_quotes(path)); });
    screen_.set_user(this);
}

ScenarioPlayer::~ScenarioPlayer() {
    screen_.set_user(nullptr);
    host_.machine.on_program_started(nullptr);
    host_.choose_displays = nullptr;
}

ExitStatus ScenarioPlayer::play() {
    while (act()) {
    }
    if (stopped_) return kBadUsage;
    return failed_ ? kFailed : kPassed;
}

// ---- Statements ---------------------------------------------------------------------------------------

bool ScenarioPlayer::act() noexcept {
    if (stopped_ || next_ == scenario_.statements.size()) return false;
    // Advanced first: the statement may open a dialog that the ones after it act in.
    const Statement& statement = scenario_.statements[next_++];
    run(statement.place, statement.run);
    return true;
}

void ScenarioPlayer::run(const Place& place, const std::function<void(ScenarioPlayer&)>& action) noexcept {
    Place outer = std::exchange(place_, place);
    try {
        action(*this);
    } catch (const std::exception& error) {
        report(place, error.what());
        stopped_ = true;
    }
    place_ = std::move(outer);
}

void ScenarioPlayer::report(const Place& place, const std::string& text) {
    errors_ << TextError(*place.file, place.line, text).what() << '\n';
}

const Display& ScenarioPlayer::display(const std::u16string& name) const {
    const auto index = host_.displays.find(name);
    if (!index) throw std::invalid_argument("there is no display " + to_utf8(in_quotes(name)));
    return host_.displays.at(*index);
}

std::filesystem::path ScenarioPlayer::target_file(const std::u16string& path) {
    host_.save_displays();
    std::filesystem::path real = host_.machine.writable_path(path);
    std::filesystem::create_directories(real.parent_path());
    return real;
}

void ScenarioPlayer::say(CallPattern pattern, std::u16string text, std::function<void(ScenarioPlayer&)> reaction) {
    std::function<void()> bound;
    if (reaction) {
        // A click may lead to another call with the same message; the user does not click in his own click.
        bound = [this, place = place_, reaction = std::move(reaction), busy = std::make_shared<bool>(false)] {
            if (std::exchange(*busy, true)) return;
            run(place, reaction);
            *busy = false;
        };
    }
    host_.links.add_message(std::move(pattern), {std::move(text), std::move(bound), false});
}

std::filesystem::path ScenarioPlayer::source_file(const std::u16string& name) const {
    const std::filesystem::path path(name);
    const std::filesystem::path beside = folder_ / path;
    for (const std::filesystem::path& candidate : {beside, path}) {
        if (std::filesystem::is_regular_file(candidate)) return candidate;
    }
    throw std::invalid_argument("there is no file " + to_utf8(in_quotes(name)));
}

void ScenarioPlayer::start(StartMember member) {
    if (screen_.any_dialog()) throw std::invalid_argument("a dialog is still open");
    const std::u16string name(name_of(member));
    try {
        const auto frame = com::make_object<SignInfoObject>(host_);
        plugin_.start(member, frame.get());
        trace().line(u"return " + name);
    } catch (const RuntimeError& error) {
        trace().line(u"error " + name + u" " + decimal_text(error.number()) + u" " + in_quotes(error.description()));
    }
}

void ScenarioPlayer::note_unless_done(ActionResult result, const std::u16string& what) {
    if (result == ActionResult::done) return;
    report(place_, "note: " + to_utf8(what) + " is disabled or cannot be reached; nothing happens");
}

void ScenarioPlayer::expect(const std::u16string& what, const std::u16string& expected, const std::u16string& found,
                            bool equal) {
    if (equal) return;
    failed_ = true;
    report(place_, "expected " + to_utf8(what) + " = " + to_utf8(expected) + ", found " + to_utf8(found));
}

// ---- What the screen tells ----------------------------------------------------------------------------

void ScenarioPlayer::form_opened(const std::u16string& name) noexcept {
    seen_at_work_ = false;
    trace().line(u"open " + name);
}

void ScenarioPlayer::form_closed(const std::u16string& name) noexcept { trace().line(u"close " + name); }

void ScenarioPlayer::messages_handled() noexcept {
    const auto status = screen_.find(kStatusControl);
    ScriptedMessage* const message = status && !stopped_ ? host_.read_message(status->caption) : nullptr;
    if (message == nullptr) return;
    if (!std::exchange(seen_at_work_, true)) screen_.look();
    if (message->reaction) {
        // By value: other messages may be said meanwhile.
        const auto reaction = message->reaction;
        return reaction();
    }
    // A statement about a control of the busy dialog can mean no other moment. Others wait until it is done.
    const bool any = next_ < scenario_.statements.size();
    if (any && !scenario_.statements[next_].control.empty() && screen_.find(scenario_.statements[next_].control)) act();
}

forms::MessageAnswer ScenarioPlayer::answer(const forms::MessageBox& box) noexcept {
    const bool asks = box.buttons == forms::MessageButtons::yes_no;
    forms::MessageAnswer answer = asks ? forms::MessageAnswer::yes : forms::MessageAnswer::ok;
    if (const auto choice = take(messages_)) {
        if (offers(box.buttons, choice->answer)) {
            answer = choice->answer;
        } else {
            report(choice->place, "the message " + to_utf8(in_quotes(box.text)) + " has no such button");
            stopped_ = true;
        }
    }
    trace().line(u"msgbox " + in_quotes(box.title) + u" " + in_quotes(box.text) + (asks ? u" YesNo -> " : u" OK -> ") +
                 std::u16string(shown_answer(answer)));
    return answer;
}

std::optional<std::u16string> ScenarioPlayer::choose_file(const forms::OpenFileRequest& request) noexcept {
    auto answer = take(files_).value_or(std::nullopt);
    trace().line(u"openfile initial=" + in_quotes(request.initial_folder) + u" filter=" + in_quotes(request.filter) +
                 u" flags=" + hexadecimal(request.flags) + u" -> " + (answer ? in_quotes(*answer) : u"cancel"));
    return answer;
}

void ScenarioPlayer::beeped() noexcept { trace().line(u"beep"); }

}  // namespace vex::sim
