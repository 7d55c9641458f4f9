// Plays a scenario: gives the host what it states, starts the plug-in, and is the user in front of the screen.
#pragma once

#include <deque>
#include <filesystem>
#include <functional>
#include <optional>
#include <ostream>
#include <string>

#include "simulator/host.h"
#include "simulator/plugin_host.h"
#include "simulator/program.h"
#include "simulator/registry_editor.h"
#include "simulator/scenario.h"
#include "simulator/screen.h"

namespace vex::sim {

/// What a user does about one message box.
struct MessageChoice {
    forms::MessageAnswer answer;
    Place place;
};

class ScenarioPlayer final : private ScreenUser {
public:
    /// The references outlive the player. `errors` gets failed expectations, bad statements and notes.
    /// `folder`: where relative files of the scenario lie, besides the current folder.
    ScenarioPlayer(const Scenario& scenario, Host& host, Screen& screen, PluginHost& plugin, std::ostream& errors,
                   std::filesystem::path folder);
    ~ScenarioPlayer() override;

    /// Once. A bad statement ends the script at once; failed expectations do not.
    ExitStatus play();

    // For the statements.

    Host& host() noexcept { return host_; }
    Screen& screen() noexcept { return screen_; }
    RegistryEditor& registry() noexcept { return registry_; }
    Trace& trace() noexcept { return host_.trace; }
    /// The file that a statement means. Raises `std::invalid_argument` when there is none.
    std::filesystem::path source_file(const std::u16string& name) const;

    /// The display of that name, which must exist. Raises `std::invalid_argument`.
    const Display& display(const std::u16string& name) const;
    /// The real file at a drive-letter path, in a folder that exists. What the host keeps is written first, so
    /// that a statement may replace it. Raises `std::exception`.
    std::filesystem::path target_file(const std::u16string& path);

    /// Lets the control say `text` during matching calls, and the user do `reaction` while he reads it.
    void say(CallPattern pattern, std::u16string text, std::function<void(ScenarioPlayer&)> reaction);
    void queue_picker(std::u16string answer) { picker_.push_back(std::move(answer)); }
    void queue_file(std::optional<std::u16string> answer) { files_.push_back(std::move(answer)); }
    void queue_message(forms::MessageAnswer answer) { messages_.push_back({answer, place_}); }
    void start(StartMember member);
    /// Tells of an action that a user could not take.
    void note_unless_done(ActionResult result, const std::u16string& what);
    void expect(const std::u16string& what, const std::u16string& expected, const std::u16string& found, bool equal);

private:
    void run(const Place& place, const std::function<void(ScenarioPlayer&)>& action) noexcept;
    void report(const Place& place, const std::string& text);

    void form_opened(const std::u16string& name) noexcept override;
    void form_closed(const std::u16string& name) noexcept override;
    bool act() noexcept override;
    void messages_handled() noexcept override;
    forms::MessageAnswer answer(const forms::MessageBox& box) noexcept override;
    std::optional<std::u16string> choose_file(const forms::OpenFileRequest& request) noexcept override;
    void beeped() noexcept override;

    const Scenario& scenario_;
    Host& host_;
    Screen& screen_;
    PluginHost& plugin_;
    std::ostream& errors_;
    std::filesystem::path folder_;
    RegistryEditor registry_;

    std::size_t next_ = 0;
    /// Of the statement that runs, or ran last.
    Place place_;
    bool stopped_ = false;
    bool failed_ = false;
    /// The topmost dialog has been looked at while it was at work.
    bool seen_at_work_ = false;

    std::deque<std::u16string> picker_;
    std::deque<std::optional<std::u16string>> files_;
    std::deque<MessageChoice> messages_;
};

}  // namespace vex::sim
