// The terminal's screen on a pseudo terminal, in a process of its own that may die of a signal.
#include "platform/native/terminal/screen.h"

#include <csignal>
#include <sstream>
#include <stdexcept>
#include <string>

#include <gmock/gmock.h>

#include <unistd.h>

#include "platform/native/terminal/text.h"
#include "tests/terminal/terminal_process.h"

namespace vex::platform::native::terminal {
namespace {

using test::TerminalProcess;
using testing::HasSubstr;
using testing::Not;

constexpr const char* kKeys[] = {"",      "enter",   "escape",    "tab",  "back_tab", "up",        "down",   "left",
                                 "right", "page_up", "page_down", "home", "end",      "backspace", "remove", "menu"};

std::string describe(const Input& input) {
    if (const auto* key = std::get_if<KeyPress>(&input)) {
        if (key->key != Key::character) return kKeys[static_cast<int>(key->key)];
        return (key->alt ? "alt " : "") + to_utf8(std::u32string(1, key->character));
    }
    if (const auto* paste = std::get_if<Paste>(&input)) return "paste " + to_utf8(paste->text);
    if (const auto* mouse = std::get_if<MouseEvent>(&input)) {
        constexpr const char* kActions[] = {"press", "release", "wheel up", "wheel down"};
        return std::string(kActions[static_cast<int>(mouse->action)]) + " " +
               std::to_string(static_cast<int>(mouse->button)) + " at " + std::to_string(mouse->at.column) + "," +
               std::to_string(mouse->at.row);
    }
    if (const auto* ended = std::get_if<Ended>(&input)) return "ended " + std::to_string(ended->signal);
    return "resized";
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
    while (true) {
        const auto input = screen->read(true);
        std::string line = describe(*input);
        if (line == "resized") {
            line += " " + std::to_string(screen->size().columns) + "x" + std::to_string(screen->size().rows);
            show_greeting(*screen);
        }
        tell(report, line);
        if (std::holds_alternative<Ended>(*input)) return;
    }
}

/// What is sent, and what the user did; lines in one text, or nothing.
const std::pair<std::string, std::string> kSequences[] = {
    {"x", "x\n"},
    {"é", "é\n"},
    {"日", "日\n"},
    {"\r", "enter\n"},
    {"\t", "tab\n"},
    {"\177", "backspace\n"},
    {"\033[Z", "back_tab\n"},
    {"\033OA", "up\n"},
    {"\033[B", "down\n"},
    {"\033[6~", "page_down\n"},
    {"\033[3~", "remove\n"},
    {"\033[21~", "menu\n"},
    {"\033[29~", "menu\n"},
    // Home and End as xterm, tmux and rxvt send them.
    {"\033OH", "home\n"},
    {"\033[1~", "home\n"},
    {"\033[H", "home\n"},
    {"\033[4~", "end\n"},
    {"\033[8~", "end\n"},
    {"\033y", "alt y\n"},
    // Presses of two buttons, releases, the wheel; columns beyond the old limit of 223.
    {"\033[<0;5;3M\033[<0;5;3m", "press 1 at 4,2\nrelease 1 at 4,2\n"},
    {"\033[<2;300;3M\033[<2;300;3m", "press 2 at 299,2\nrelease 2 at 299,2\n"},
    {"\033[<0;9;3M\033[<0;5;3m", "press 1 at 8,2\nrelease 1 at 4,2\n"},
    {"\033[<65;5;3M", "wheel down 1 at 4,2\n"},
    // A paste is one piece of text, whatever stands in it.
    {"\033[200~C:\\a\rb é\033[201~", "paste C:\\a\rb é\n"},
    {"\033[200~\033[201~", "paste \n"},
    // Focus marks, answers to questions that nobody asked, keys that nobody knows.
    {"\033[I", ""},
    {"\033[O", ""},
    {"\033[?1;2c", ""},
    {"\033[99;5~", ""},
    {"\033[1;7P", ""},
    {"\033]11;rgb:0000/0000/0000\007", ""},
    {"\033]11;rgb:0000/0000/0000\033\\", ""},
};

TEST(TerminalScreen, TakesSequencesAsTheyAreHoweverTheyCome) {
    TerminalProcess process(report_input);
    ASSERT_EQ(process.hear(), "ready");
    const auto expect = [&process](const std::string& what, std::string lines) {
        // Something known at the end shows that nothing came before it.
        lines += "|\n";
        for (std::size_t start = 0; start < lines.size();) {
            const std::size_t end = lines.find('\n', start);
            ASSERT_EQ(process.hear(), lines.substr(start, end - start)) << testing::PrintToString(what);
            start = end + 1;
        }
    };
    std::string all;
    std::string all_lines;
    for (const auto& [bytes, lines] : kSequences) {
        SCOPED_TRACE(testing::PrintToString(bytes));
        process.send(bytes + "|");
        expect(bytes, lines);
        for (std::size_t split = 1; split < bytes.size(); ++split) {
            process.send(bytes.substr(0, split));
            usleep(5'000);
            process.send(bytes.substr(split) + "|");
            expect(bytes, lines);
        }
        for (const char byte : bytes) {
            process.send({&byte, 1});
            usleep(2'000);
        }
        process.send("|");
        expect(bytes, lines);
        all += bytes;
        all_lines += lines;
    }
    process.send(all + "|");
    expect("all at once", all_lines);
    // Alone, or before a key.
    process.send("\033");
    EXPECT_EQ(process.hear(), "escape");
    process.send("\033\033[A|");
    expect("escape and up", "up\n");
}

TEST(TerminalScreen, FollowsTheSize) {
    TerminalProcess process(report_input);
    ASSERT_EQ(process.hear(), "ready");
    process.resize(100, 30);
    EXPECT_EQ(process.hear(), "resized 100x30");
    process.resize(40, 10);
    EXPECT_EQ(process.hear(), "resized 40x10");
}

TEST(TerminalScreen, GivesTheTerminalBack) {
    TerminalProcess process([](int report) {
        try {
            const auto screen = take_terminal();
            throw std::runtime_error("in the middle");
        } catch (const std::runtime_error&) {
            tell(report, "caught");
        }
    });
    EXPECT_EQ(process.hear(), "caught");
    EXPECT_EQ(process.wait(), 0);
    EXPECT_TRUE(process.modes_are_as_before());
    for (const char* off : {"\033[?1049l", "\033[?1006;1000l", "\033[?2004l"}) {
        EXPECT_THAT(process.screen(), HasSubstr(off));
    }
}

class KilledScreen : public testing::TestWithParam<int> {};

TEST_P(KilledScreen, LeavesTheTerminalAsItWas) {
    TerminalProcess process([](int report) {
        const auto screen = take_terminal();
        show_greeting(*screen);
        tell(report, "ready");
        // Busy: it reads nothing.
        while (true) pause();
    });
    ASSERT_EQ(process.hear(), "ready");
    EXPECT_FALSE(process.modes_are_as_before());
    process.signal(GetParam());
    // What only asks to end is held up by the work; who asks twice does not want to wait.
    usleep(50'000);
    process.signal(GetParam());
    const int status = process.wait();
    ASSERT_TRUE(WIFSIGNALED(status)) << status;
    EXPECT_EQ(WTERMSIG(status), GetParam());
    EXPECT_TRUE(process.modes_are_as_before());
    for (const char* off : {"\033[?1049l", "\033[?1006l", "\033[?2004l"}) {
        EXPECT_THAT(process.screen(), HasSubstr(off));
    }
}

INSTANTIATE_TEST_SUITE_P(Signals, KilledScreen,
                         testing::Values(SIGTERM, SIGINT, SIGHUP, SIGSEGV, SIGABRT, SIGUSR1, SIGPIPE));

TEST(TerminalScreen, TellsOfARequestToEndOrALostTerminal) {
    TerminalProcess asked(report_input);
    ASSERT_EQ(asked.hear(), "ready");
    asked.signal(SIGTERM);
    EXPECT_EQ(asked.hear(), "ended " + std::to_string(SIGTERM));
    EXPECT_EQ(asked.wait(), 0);
    EXPECT_TRUE(asked.modes_are_as_before());
    TerminalProcess lost(report_input);
    ASSERT_EQ(lost.hear(), "ready");
    lost.hang_up();
    EXPECT_THAT(lost.hear(), testing::StartsWith("ended "));
}

TEST(TerminalScreen, UsesColoursOnlyWhereTheyAreWelcome) {
    const auto screen_of = [](const char* terminal, bool colors) {
        TerminalProcess process(report_input, terminal, colors);
        EXPECT_EQ(process.hear(), "ready");
        process.signal(SIGTERM);
        EXPECT_EQ(process.wait(), 0);
        EXPECT_THAT(process.screen(), HasSubstr("日本 Café"));
        return process.screen();
    };
    EXPECT_THAT(screen_of("xterm-256color", true), HasSubstr("48;5;240"));
    EXPECT_THAT(screen_of("xterm", true), HasSubstr("\033[32m"));
    EXPECT_THAT(screen_of("xterm-256color", false), Not(HasSubstr("48;5;")));
    screen_of("vt100", true);
}

TEST(FindTerminal, TakesAnUnknownOneForACommonOneAndSaysSo) {
    const auto found = [](const char* terminal) {
        TerminalProcess process(
            [](int report) {
                std::ostringstream notes;
                const bool usable = find_terminal(notes);
                tell(report, (usable ? "yes " : "no ") + std::string(getenv("TERM")) + " " + notes.str());
            },
            terminal);
        return process.hear();
    };
    EXPECT_EQ(found("vt100"), "yes vt100 ");
    EXPECT_EQ(found("some-new-terminal"),
              "yes xterm-256color no description of the terminal \"some-new-terminal\" is installed; taking it for "
              "xterm-256color");
    EXPECT_THAT(found("dumb"), testing::StartsWith("no dumb the terminal \"dumb\" cannot be drawn on"));
}

}  // namespace
}  // namespace vex::platform::native::terminal
