// The terminal's screen on a pseudo terminal, in a process of its own that may die of a signal.
#include "platform/native/terminal/screen.h"

#include <algorithm>
#include <sstream>

#include <gmock/gmock.h>

#include "tests/terminal/terminal_process.h"

namespace vex::platform::native::terminal {
namespace {

using test::TerminalProcess;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

std::string describe(const Input& input) {
    constexpr const char* kKeys[] = {"",     "enter", "escape",  "tab",       "back_tab", "up",  "down",      "left",
                                     "right", "page_up", "page_down", "home", "end", "backspace", "remove", "menu"};
    constexpr const char* kActions[] = {"press", "release", "wheel up", "wheel down"};
    std::ostringstream text;
    if (const auto* key = std::get_if<KeyPress>(&input)) {
        if (key->key != Key::character) return kKeys[static_cast<int>(key->key)];
        text << (key->alt ? "alt " : "") << to_utf8(std::u32string(1, key->character));
    } else if (const auto* paste = std::get_if<Paste>(&input)) {
        text << "paste " << to_utf8(paste->text);
    } else if (const auto* mouse = std::get_if<MouseEvent>(&input)) {
        text << kActions[static_cast<int>(mouse->action)] << ' ' << static_cast<int>(mouse->button) << " at "
             << mouse->at.column << ',' << mouse->at.row;
    } else if (const auto* ended = std::get_if<Ended>(&input)) {
        text << "ended " << ended->signal;
    }
    return text.str();
}

void tell(int report, const std::string& line) {
    [[maybe_unused]] const auto written = write(report, (line + "\n").data(), line.size() + 1);
}

void show_greeting(Screen& screen) {
    Canvas canvas(screen.size(), {Color::white, Color::dark_grey});
    canvas.text({2, 1}, U"日本 Café", {.fore = Color::green});
    screen.show(canvas, Point{2, 1});
}

/// Shows a picture and reports what the user does, until the end.
void report_input(int report) {
    const auto screen = take_terminal();
    show_greeting(*screen);
    tell(report, "ready");
    for (std::optional<Input> input; !input || !std::holds_alternative<Ended>(*input);) {
        input = screen->read(true);
        const Size size = screen->size();
        const bool resized = std::holds_alternative<Resized>(*input);
        if (resized) show_greeting(*screen);
        tell(report, resized ? std::to_string(size.columns) + "x" + std::to_string(size.rows) : describe(*input));
    }
}

/// What is sent, and what the user did; lines in one text, or nothing.
const std::pair<std::string, std::string> kSequences[] = {
    {"x", "x\n"}, {"日", "日\n"}, {"\r", "enter\n"}, {"\177", "backspace\n"}, {"\033[Z", "back_tab\n"},
    {"\033OA", "up\n"}, {"\033[B", "down\n"}, {"\033[21~", "menu\n"}, {"\033y", "alt y\n"},
    // Home as xterm, tmux and rxvt send it.
    {"\033OH", "home\n"}, {"\033[1~", "home\n"}, {"\033[H", "home\n"},
    // Presses of two buttons, releases, the wheel; columns beyond the old limit of 223.
    {"\033[<0;5;3M\033[<0;5;3m", "press 1 at 4,2\nrelease 1 at 4,2\n"},
    {"\033[<2;300;3M\033[<2;300;3m", "press 2 at 299,2\nrelease 2 at 299,2\n"},
    {"\033[<65;5;3M", "wheel down 1 at 4,2\n"},
    // A paste is one piece of text, whatever stands in it.
    {"\033[200~C:\\a\rb é\033[201~", "paste C:\\a\rb é\n"}, {"\033[200~\033[201~", "paste \n"},
    // Focus marks, answers to questions that nobody asked, keys that nobody knows.
    {"\033[I", ""}, {"\033[?1;2c", ""}, {"\033[99;5~", ""}, {"\033]11;rgb:0000/0000/0000\033\\", ""},
};

TEST(TerminalScreen, TakesSequencesAsTheyAreHoweverTheyComeUntilItIsLost) {
    TerminalProcess process(report_input);
    ASSERT_EQ(process.hear(), "ready");
    const auto expect = [&process](const std::string& what, const std::string& lines) {
        // Something known at the end shows that nothing came before it.
        process.send("|");
        std::istringstream expected(lines + "|\n");
        for (std::string line; std::getline(expected, line);) ASSERT_EQ(process.hear(), line) << what;
    };
    std::string all, all_lines;
    for (const auto& [bytes, lines] : kSequences) {
        SCOPED_TRACE(testing::PrintToString(bytes));
        for (std::size_t split = 0; split < bytes.size(); ++split) {
            process.send(bytes.substr(0, split));
            usleep(5'000);
            process.send(bytes.substr(split));
            expect("in two", lines);
        }
        all += bytes;
        all_lines += lines;
    }
    process.send(all);
    expect("all at once", all_lines);
    // Alone, or before a key.
    process.send("\033");
    EXPECT_EQ(process.hear(), "escape");
    process.send("\033\033[A");
    expect("escape and up", "up\n");
    process.resize(100, 30);
    EXPECT_EQ(process.hear(), "100x30");
    process.hang_up();
    EXPECT_THAT(process.hear(), StartsWith("ended "));
}

TEST(TerminalScreen, EscHoldsUpNoWorkThatOnlyLooksForInput) {
    TerminalProcess process([](int report) {
        const auto screen = take_terminal();
        tell(report, "ready");
        while (true) {
            const auto start = std::chrono::steady_clock::now();
            const auto input = screen->read(false);
            if (std::chrono::steady_clock::now() - start > std::chrono::milliseconds(200)) tell(report, "late");
            if (input) tell(report, describe(*input));
            usleep(10'000);
        }
    });
    ASSERT_EQ(process.hear(), "ready");
    process.send("\033");
    EXPECT_EQ(process.hear(), "escape");
}

TEST(TerminalScreen, LeavesTheTerminalAsItWasHoweverTheProcessEnds) {
    for (const int signal : {0, SIGTERM, SIGINT, SIGHUP, SIGSEGV, SIGABRT, SIGUSR1, SIGPIPE}) {
        TerminalProcess process([signal](int report) {
            const auto screen = take_terminal();
            show_greeting(*screen);
            tell(report, "ready");
            // Busy: it reads nothing.
            while (signal != 0) pause();
        });
        ASSERT_EQ(process.hear(), "ready");
        EXPECT_TRUE(signal == 0 || !process.modes_are_as_before());
        // What only asks to end is held up by the work; who asks twice does not want to wait.
        for (int times = signal == 0 ? 0 : 2; times > 0; --times, usleep(50'000)) process.signal(signal);
        EXPECT_EQ(WTERMSIG(process.wait()), signal);
        EXPECT_TRUE(process.modes_are_as_before()) << signal;
        for (const char* off : {"\033[?1049l", "1000l", "\033[?2004l"}) EXPECT_THAT(process.screen(), HasSubstr(off));
    }
}

TEST(TerminalScreen, UsesColoursOnlyWhereTheyAreWelcomeAndEndsWhenAsked) {
    const std::tuple<const char*, const char*, testing::Matcher<std::string>> cases[] = {
        {"xterm-256color", "", HasSubstr("48;5;240")}, {"xterm", "", HasSubstr("\033[32m")},
        {"xterm-256color", "1", Not(HasSubstr("48;5;"))}, {"vt100", "", Not(HasSubstr("\033[3"))}};
    for (const auto& [terminal, no_color, expected] : cases) {
        setenv("NO_COLOR", no_color, 1);
        TerminalProcess process(report_input, terminal);
        EXPECT_EQ(process.hear(), "ready");
        process.signal(SIGTERM);
        EXPECT_EQ(process.hear(), "ended " + std::to_string(SIGTERM));
        EXPECT_EQ(process.wait(), 0);
        EXPECT_THAT(process.screen(), testing::AllOf(HasSubstr("日本 Café"), expected));
    }
    unsetenv("NO_COLOR");
}

TEST(FindTerminal, TakesAnUnknownOneForACommonOneAndSaysSo) {
    const auto body = [](int report) {
        std::ostringstream notes;
        if (find_terminal(notes)) tell(report, std::string(getenv("TERM")) + " " + notes.str());
    };
    EXPECT_EQ(TerminalProcess(body, "some-new-terminal").hear(),
              "xterm-256color no description of the terminal \"some-new-terminal\" is installed; "
              "taking it for xterm-256color");
}

}  // namespace
}  // namespace vex::platform::native::terminal
