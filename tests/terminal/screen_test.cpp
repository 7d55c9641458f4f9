// The terminal's screen on a pseudo terminal, in a process of its own that may die of a signal.
#include "platform/native/terminal/screen.h"

#include <algorithm>
#include <sstream>

#include <gmock/gmock.h>

#include "tests/terminal/fake_screen.h"
#include "tests/terminal/terminal_process.h"

namespace vex::platform::native::terminal {
namespace {

using test::TerminalProcess;
using testing::HasSubstr;
using testing::Not;

std::string describe(const Input& input, Size size = {}) {
    constexpr const char* kActions[] = {"press ", "release ", "wheel up ", "wheel down "};
    const auto number = [](auto value) { return std::to_string(static_cast<int>(value)); };
    if (std::holds_alternative<Resized>(input)) return number(size.columns) + 'x' + number(size.rows);
    if (const auto* ended = std::get_if<Ended>(&input)) return "ended " + number(ended->signal);
    if (const auto* paste = std::get_if<Paste>(&input)) return "paste " + to_utf8(paste->text);
    if (const auto* mouse = std::get_if<MouseEvent>(&input))
        return kActions[static_cast<int>(mouse->action)] + number(mouse->button) + " at " + number(mouse->at.column) +
               ',' + number(mouse->at.row);
    const auto& key = std::get<KeyPress>(input);
    const char32_t sign = key.key == Key::character ? key.character : kSigns.at(static_cast<std::size_t>(key.key) - 1);
    return (key.alt ? "alt " : "") + to_utf8(std::u32string(1, sign));
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
        tell(report, describe(*input, screen->size()));
    }
}

/// What is sent, and what the user did; lines in one text, or nothing.
const std::pair<std::string, std::string> kSequences[] = {
    {"日", "日\n"}, {"\177", "⌫\n"}, {"\033y", "alt y\n"},
    // As the terminal's description says, and as others send them: xterm, rxvt.
    {"\033[3~", "⌦\n"}, {"\033OA", "↑\n"}, {"\033[B", "↓\n"}, {"\033[29~", "☰\n"}, {"\033[8~", "⇲\n"},
    {"\033[1~", "⇱\n"}, {"\033[4~", "⇲\n"},
    // Presses of two buttons, releases, the wheel; columns beyond the old limit of 223.
    {"\033[<2;300;3M\033[<2;300;3m", "press 2 at 299,2\nrelease 2 at 299,2\n"},
    {"\033[<0;9;3M\033[<0;5;3m", "press 1 at 8,2\nrelease 1 at 4,2\n"}, {"\033[<65;5;3M", "wheel down 1 at 4,2\n"},
    // A paste is one piece of text, whatever stands in it.
    {"\033[200~C:\\a\rb é\033[201~", "paste C:\\a\rb é\n"},
    // Focus marks, answers to questions that nobody asked, keys that nobody knows.
    {"\033[I", ""}, {"\033[?1;2c", ""}, {"\033[1;7P", ""},
    {"\033]11;rgb:0000/0000/0000\007", ""}, {"\033]11;rgb:0000/0000/0000\033\\", ""},
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
    EXPECT_EQ(process.hear(), "⎋");
    process.send("\033\033[A");
    expect("escape and up", "↑\n");
    process.resize(100, 30);
    EXPECT_EQ(process.hear(), "100x30");
    process.hang_up();
    EXPECT_THAT(process.hear(), testing::StartsWith("ended "));
}

TEST(TerminalScreen, NoKeyHoldsUpWorkThatOnlyLooksForInput) {
    TerminalProcess process([](int report) {
        const auto screen = take_terminal();
        tell(report, "ready");
        for (auto longest = std::chrono::nanoseconds::zero();;) {
            const auto start = std::chrono::steady_clock::now();
            const auto input = screen->read(false);
            longest = std::max(longest, std::chrono::steady_clock::now() - start);
            if (input) tell(report, describe(*input) + (longest < std::chrono::milliseconds(200) ? "" : " late"));
            usleep(10'000);
        }
    });
    ASSERT_EQ(process.hear(), "ready");
    const auto expect = [&process](const char* begin, const char* end, const char* line) {
        process.send(begin);
        // Too long for the library to put the two together.
        usleep(100'000);
        process.send(end);
        EXPECT_EQ(process.hear(), line) << end;
    };
    expect("\033", "", "⎋");
    expect("\033", "[A", "↑");
    expect("\033", "OB", "↓");
    expect("\033", "y", "alt y");
    expect("\033", "[99;5~x", "x");
    expect("\033", "[200~text\033[201~", "paste text");
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

TEST(TerminalScreen, UsesColoursOnlyWhereTheyAreWelcome) {
    const std::tuple<const char*, const char*, testing::Matcher<std::string>> cases[] = {
        {"xterm-256color", "", HasSubstr("48;5;240")}, {"xterm", "", HasSubstr("\033[32m")},
        {"xterm-256color", "1", Not(HasSubstr("48;5;"))}, {"vt100", "", Not(HasSubstr("\033[3"))}};
    for (const auto& [terminal, no_color, expected] : cases) {
        setenv("NO_COLOR", no_color, 1);
        TerminalProcess process(report_input, terminal);
        EXPECT_TRUE(process.sees("日本 Café"));
        EXPECT_THAT(process.screen(), expected);
    }
    unsetenv("NO_COLOR");
}

}  // namespace
}  // namespace vex::platform::native::terminal
