// A scenario: what is installed on the simulated host, what its user does, and what must be seen; and who plays it.
#pragma once

#include <deque>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

#include "simulator/host.h"
#include "simulator/program.h"
#include "simulator/screen.h"
#include "simulator/words.h"

namespace vex::sim {

class PluginHost;
class ScenarioPlayer;

/// Where a statement stands.
struct Place {
    std::shared_ptr<const std::string> file;
    std::size_t line = 0;
};

/// What a statement does. Raises `std::exception` for what cannot be done.
using Action = std::function<void(ScenarioPlayer& player)>;

struct Statement {
    Place place;
    Action action;
};

using Scenario = std::vector<Statement>;

/// How a statement is written and what it means.
struct StatementType {
    /// Begins with the statement's own word.
    std::string_view usage;
    std::size_t fewest_words;
    std::size_t most_words;
    /// `words`: all, in a number that is allowed. Raises `std::invalid_argument` for words that cannot be meant. Null
    /// for the one that includes a file.
    Action (*read)(const Words& words);
};

/// The type of a statement, by its first word. Raises `std::invalid_argument`, also for a wrong number of words.
const StatementType& statement_type(const Words& words);

/// `file`: the scenario's name in messages. `folder`: where the files that it includes lie. Raises `TextError` for the
/// first line that is no statement.
Scenario parse_scenario(const std::string& file, std::string_view text, const std::filesystem::path& folder = {});

/// A line for each statement: how it is written.
std::string statement_reference();

/// Gives the host what a scenario states, starts the plug-in, and is the user in front of the screen.
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

    Host& host;
    Screen& screen;
    /// Of the statement that runs, or ran last.
    Place place;
    /// What the user answers, in this order.
    std::deque<std::u16string> picker_answers;
    std::deque<std::optional<std::u16string>> file_answers;
    std::deque<std::pair<forms::MessageAnswer, Place>> message_answers;

    /// The file that a statement means. Raises `std::invalid_argument` when there is none.
    std::filesystem::path source_file(const std::u16string& name) const;
    /// Puts a file at a drive-letter path, and makes its folder. What the host keeps is written first, so that a
    /// statement may replace it. Raises `std::exception`.
    void put_file(const std::u16string& path, std::string_view bytes);
    /// Raises `std::invalid_argument` where there is no display of that name.
    void require_display(const std::u16string& name) const;
    /// Lets the control say `text` during matching calls, and the user do the `reaction` while he reads it; empty:
    /// nothing.
    void say(const CallPattern& pattern, const std::u16string& text, const Action& reaction);
    /// `frame`: by StartFrameFeature.
    void start(bool frame);
    /// Tells of an action that a user could not take.
    void note_unless_done(ActionResult result, std::u16string_view what);
    void expect(const std::u16string& what, const std::u16string& expected, const std::u16string& found);

private:
    void run(const Place& where, const Action& action) noexcept;
    void report(const Place& where, const std::string& text);

    void form_opened(const std::u16string& name) noexcept override;
    void form_closed(const std::u16string& name) noexcept override;
    bool act() noexcept override;
    void messages_handled() noexcept override;
    forms::MessageAnswer answer(const forms::MessageBox& box) noexcept override;
    std::optional<std::u16string> choose_file(const forms::OpenFileRequest& request) noexcept override;
    void beeped() noexcept override { host.trace.line(u"beep"); }

    const Scenario& scenario_;
    PluginHost& plugin_;
    std::ostream& errors_;
    std::filesystem::path folder_;
    std::size_t next_ = 0;
    /// So far; kBadUsage ends the script.
    ExitStatus status_ = kPassed;
    /// The topmost dialog has been looked at while it was at work.
    bool seen_at_work_ = false;
};

}  // namespace vex::sim
