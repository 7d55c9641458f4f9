// The trial on the terminal: the host's selection dialog and progress, and the program as its user meets it.
#include <gmock/gmock.h>

#include <iostream>

#include "platform/native/terminal/terminal_toolkit.h"
#include "simulator/native/native_session.h"
#include "simulator/trial.h"
#include "tests/terminal/fake_screen.h"
#include "tests/terminal/terminal_process.h"

namespace vex::sim {
namespace {

using platform::native::terminal::FakeScreen;
using platform::native::terminal::TerminalToolkit;
using test::TerminalProcess;
using testing::HasSubstr;

TEST(Picker, SearchesAndChecksByKeyAndMouse) {
    FakeScreen screen;
    TerminalToolkit toolkit(screen, icon_characters());
    const auto displays = Displays::parse("", "# Brivola displays, version 1\ndisplay \"Platform 1\"\n"
                                              "display \"Café Müller\"\ndisplay 北口\ndisplay \"Platform 2\"\n");
    const auto choose = [&](const std::u16string& chosen) {
        DisplayPicker picker(toolkit, displays, chosen);
        picker.show_modal();
        return picker.answer();
    };
    // There is nothing to take yet; then a row by key and one by mouse.
    screen.keys(U"⏎↓⇲ ");
    screen.look([&] { screen.click(screen.find(U"☐ Platform 1")); });
    screen.keys(U"⏎");
    EXPECT_EQ(choose({}), u"Platform 1,Platform 2") << "in the host's order";
    EXPECT_EQ(screen.beeps, 1);
    screen.keys(U"zzz");
    screen.look([&] { EXPECT_TRUE(screen.shows("No display has this")); });
    screen.keys(U"⌫⌫⌫müL⏎⏎");
    EXPECT_EQ(choose(u"北口,gone"), u"Café Müller,北口") << "with the choice of the last time";
}

TEST(Progress, ARetryCountsAsARunOfItsOwnAndADisplayThatIsPassedOverDoesNot) {
    Trace trace(std::cerr, true);
    NativeMachine machine;
    Host host(trace, machine);
    RunProgress progress(host);
    const auto place_after = [&](const char16_t* display, Operation operation) {
        progress.follow({.call = {.display = display, .operation = operation}});
        return std::pair(progress.display_number, progress.displays());
    };
    progress.begin_run({u"A", u"B", u"C"});
    EXPECT_EQ(place_after(u"B", u"OpenConnection"), std::pair(std::size_t{2}, std::size_t{3}));
    EXPECT_EQ(place_after(u"A", u"OpenConnection"), std::pair(std::size_t{1}, std::size_t{1}));
    progress.begin_run({u"A", u"B", u"C"});
    place_after(u"A", u"OpenConnection");
    place_after(u"A", u"CancelTransmission");
    for (const char16_t* left_over : {u"C", u"B"})
        EXPECT_EQ(place_after(left_over, u"OpenConnection"), std::pair(std::size_t{1}, std::size_t{1}));
}

TerminalProcess program(const char* terminal) {
    return TerminalProcess([](int) { execl(VEX_PROGRAM, "brivola-sim", "--speed", "2", nullptr); }, terminal);
}

TEST(TrialProgram, GoesFromStartThroughARunToWhatTheUnitsHold) {
    using Steps = std::vector<std::pair<const char*, const char*>>;
    // Next to the options and the displays, one of which is there already.
    const Steps start = {{"nothing real is touched", "\r"}, {"Firmware Update Wizard", "\r\r"}, {"Click Here", "\t\r"},
                         {"- Reset and Clear all", "\r"},   {"Display - of 1", ""}};
    const std::tuple<const char*, const char*, int, Steps> runs[] = {
        {"xterm-256color", "", 0,
         {{"Preparing to Open", "\r"}, {"Are you sure", "\r"}, {"cancelled: F10", "\033[21~\r"}, {"1 updated", "\r"},
          {"\033[?1049l", ""}, {"unit \"Main Street\" 20: empty", ""}, {"5 units have not changed", ""}}},
        {"some-new-terminal", "taking it for xterm-256color", (128 + SIGINT) << 8,
         {{"Preparing to Open", "\003"}, {"\033[?1049l", ""}, {"9 units have not changed", ""}}},
    };
    for (const auto& [terminal, note, status, steps] : runs) {
        TerminalProcess trial = program(terminal);
        EXPECT_TRUE(trial.sees(note));
        for (const Steps& part : {start, steps}) {
            for (const auto& [seen, keys] : part) {
                ASSERT_TRUE(trial.sees(seen)) << seen;
                trial.send(keys);
            }
        }
        EXPECT_EQ(trial.wait(), status);
        EXPECT_TRUE(trial.modes_are_as_before());
    }
}

TEST(TrialProgram, DrawsTheSampleScenarioWhereThereIsNoTerminal) {
    TerminalProcess dumb = program("dumb");
    EXPECT_EQ(dumb.wait(), 0);
    const std::string& drawn = dumb.screen();
    EXPECT_THAT(drawn, testing::StartsWith("the terminal \"dumb\" cannot be drawn on"));
    EXPECT_THAT(drawn, testing::AllOf(HasSubstr("unit \"Station\" 1: sample.SHX"), testing::Not(HasSubstr("\033"))));
    EXPECT_THAT(drawn, HasSubstr("│   │   │                     Station      Z180 80x7  COM2 2400 030 5550 123   │\r\n"
                                 "│   │  ███  Choose Display    Town Hall    Z180 80x7  COM1 9600                │\r\n"));
    EXPECT_THAT(drawn, HasSubstr("│   ✗ Old Mill FAILED - Display does not support fi…  │\r\n"));
}

}  // namespace
}  // namespace vex::sim
