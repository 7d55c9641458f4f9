// The ncurses screen on a pseudo terminal, in a process of its own that may die of a signal.
#include "platform/native/terminal/ncurses_screen.h"

#include <csignal>
#include <stdexcept>
#include <string>

#include <gmock/gmock.h>

#include <unistd.h>

#include "platform/native/terminal/terminal_description.h"
#include "platform/native/terminal/text.h"
#include "tests/terminal/terminal_process.h"

namespace vex::platform::native::terminal {
namespace {

using test::TerminalProcess;
using testing::HasSubstr;
using testing::Not;

std::string describe(const Input& input) {
    if (const auto* key = std::get_if<KeyPress>(&input)) {
        const std::string alt = key->alt ? "alt " : "";
        if (key->key == Key::character) return alt + to_utf8(std::u32string(1, key->character));
        return "key " + std::to_string(static_cast<int>(key->key));
    }
    if (const auto* mouse = std::get_if<MouseEvent>(&input)) {
        return "mouse " + std::to_string(static_cast<int>(mouse->action)) + " " +
               std::to_string(static_cast<int>(mouse->button)) + " " + std::to_string(mouse->at.column) + "," +
               std::to_string(mouse->at.row);
    }
    if (const auto* ended = std::get_if<Ended>(&input)) return "ended " + std::to_string(ended->signal);
    return "resized";
}

std::string key_name(Key key) { return "key " + std::to_string(static_cast<int>(key)); }

void tell(int report, const std::string& line) {
    [[maybe_unused]] const auto written = write(report, (line + "\n").data(), line.size() + 1);
}

Canvas greeting(Size size) {
    Canvas canvas(size, {forms::kWhite, forms::kDarkGrey});
    canvas.text({2, 1}, U"日本 Café", {.fore = forms::kGreen});
    return canvas;
}

/// Shows a picture and reports what the user does, until the end.
void report_input(int report) {
    NcursesScreen screen;
    screen.show(greeting(screen.size()), Point{2, 1});
    tell(report, "ready");
    while (true) {
        const auto input = screen.read(true);
        std::string line = describe(*input);
        if (line == "resized") {
            line += " " + std::to_string(screen.size().columns) + "x" + std::to_string(screen.size().rows);
            screen.show(greeting(screen.size()), std::nullopt);
        }
        tell(report, line);
        if (std::holds_alternative<Ended>(*input)) return;
    }
}

TEST(NcursesScreen, TellsKeysAndMouseApartAndFollowsTheSize) {
    TerminalProcess process(report_input);
    ASSERT_EQ(process.hear(), "ready");
    const std::pair<const char*, std::string> sent[] = {
        {"x", "x"},
        {"é", "é"},
        {"日", "日"},
        {"\r", key_name(Key::enter)},
        {"\t", key_name(Key::tab)},
        {"\033[Z", key_name(Key::back_tab)},
        {"\033OA", key_name(Key::up)},
        {"\033[6~", key_name(Key::page_down)},
        {"\033[21~", key_name(Key::menu)},
        {"\177", key_name(Key::backspace)},
        {"\033y", "alt y"},
        {"\033", key_name(Key::escape)},
        // Presses of two buttons, releases, the wheel; columns beyond the old limit of 223.
        {"\033[<0;5;3M", "mouse 0 1 4,2"},
        {"\033[<0;5;3m", "mouse 1 1 4,2"},
        {"\033[<2;300;3M", "mouse 0 2 299,2"},
        {"\033[<2;300;3m", "mouse 1 2 299,2"},
        {"\033[<65;5;3M", "mouse 3 1 4,2"},
    };
    for (const auto& [bytes, heard] : sent) {
        process.send(bytes);
        EXPECT_EQ(process.hear(), heard);
    }
    process.resize(100, 30);
    EXPECT_EQ(process.hear(), "resized 100x30");
    process.resize(40, 10);
    EXPECT_EQ(process.hear(), "resized 40x10");
}

TEST(NcursesScreen, GivesTheTerminalBack) {
    TerminalProcess process([](int report) {
        { const NcursesScreen screen; }
        tell(report, "closed");
        try {
            NcursesScreen screen;
            throw std::runtime_error("in the middle");
        } catch (const std::runtime_error&) {
            tell(report, "caught");
        }
    });
    EXPECT_EQ(process.hear(), "closed");
    EXPECT_EQ(process.hear(), "caught");
    EXPECT_EQ(process.wait(), 0);
    EXPECT_TRUE(process.modes_are_as_before());
    EXPECT_THAT(process.screen(), HasSubstr("\033[?1049l"));
    EXPECT_THAT(process.screen(), HasSubstr("\033[?1006;1000l"));
}

class KilledScreen : public testing::TestWithParam<int> {};

TEST_P(KilledScreen, LeavesTheTerminalAsItWas) {
    TerminalProcess process([](int report) {
        NcursesScreen screen;
        screen.show(greeting(screen.size()), Point{2, 1});
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
    EXPECT_THAT(process.screen(), HasSubstr("\033[?1049l"));
    EXPECT_THAT(process.screen(), HasSubstr("\033[?1006l"));
}

INSTANTIATE_TEST_SUITE_P(Signals, KilledScreen, testing::Values(SIGTERM, SIGINT, SIGHUP, SIGSEGV, SIGABRT));

TEST(NcursesScreen, TellsOfARequestToEndOrALostTerminal) {
    for (const int signal : {SIGTERM, SIGINT, SIGHUP}) {
        TerminalProcess process(report_input);
        ASSERT_EQ(process.hear(), "ready");
        process.signal(signal);
        EXPECT_EQ(process.hear(), "ended " + std::to_string(signal));
        EXPECT_EQ(process.wait(), 0);
        EXPECT_TRUE(process.modes_are_as_before());
    }
    TerminalProcess process(report_input);
    ASSERT_EQ(process.hear(), "ready");
    process.hang_up();
    EXPECT_THAT(process.hear(), testing::StartsWith("ended "));
}

TEST(NcursesScreen, UsesColoursOnlyWhereTheyAreWelcome) {
    const auto screen_of = [](const char* terminal, bool colors) {
        TerminalProcess process(report_input, terminal, colors);
        EXPECT_EQ(process.hear(), "ready");
        process.signal(SIGTERM);
        EXPECT_EQ(process.wait(), 0);
        return process.screen();
    };
    const std::string colored = screen_of("xterm-256color", true);
    EXPECT_THAT(colored, HasSubstr("48;5;"));
    EXPECT_THAT(colored, HasSubstr("日本 Café"));
    const std::string plain = screen_of("xterm-256color", false);
    EXPECT_THAT(plain, Not(HasSubstr("48;5;")));
    EXPECT_THAT(plain, HasSubstr("日本 Café"));
    EXPECT_THAT(screen_of("vt100", true), HasSubstr("日本 Café"));
}

TEST(TerminalDescription, KnowsWhatCanBeDrawnOn) {
    const auto usable_on = [](const char* terminal) {
        TerminalProcess process([](int report) { tell(report, terminal_is_usable() ? "yes" : "no"); }, terminal);
        return process.hear();
    };
    EXPECT_EQ(usable_on("xterm-256color"), "yes");
    EXPECT_EQ(usable_on("vt100"), "yes");
    EXPECT_EQ(usable_on("dumb"), "no");
    EXPECT_EQ(usable_on("no-such-terminal"), "no");
}

}  // namespace
}  // namespace vex::platform::native::terminal
