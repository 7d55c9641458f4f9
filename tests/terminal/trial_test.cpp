// The trial on the terminal: the host's selection dialog and progress, and the program as its user meets it.
#include <gmock/gmock.h>

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
using testing::StartsWith;

TEST(Picker, SearchesAndChecksByKeyAndMouse) {
    FakeScreen screen;
    TerminalToolkit toolkit(screen, icon_characters());
    Displays displays;
    for (const char16_t* name : {u"Platform 1", u"Café Müller", u"北口", u"Platform 2"}) {
        Display display;
        display.name = name;
        displays.put(display);
    }
    const auto choose = [&](const std::u16string& chosen) {
        DisplayPicker picker(toolkit, displays, chosen);
        picker.show_modal();
        return picker.answer();
    };
    screen.keys(U"⏎");
    screen.look([&] { EXPECT_EQ(screen.beeps, 1) << "there is nothing to take yet"; });
    screen.keys(U"↓⇲ ");
    screen.look([&] { screen.click(screen.find(U"☐ Platform 1")); });
    screen.keys(U"⏎");
    EXPECT_EQ(choose({}), u"Platform 1,Platform 2") << "in the host's order";
    screen.keys(U"müL");
    screen.look([&] { EXPECT_TRUE(!screen.shows("Platform") && screen.shows("\n Enter Check All 1 ")); });
    screen.keys(U"⏎x");
    screen.look([&] { EXPECT_TRUE(screen.shows("No display has this")); });
    screen.keys(U"⏎⌫⏎");
    EXPECT_EQ(choose(u"北口,gone"), u"Café Müller,北口") << "with the choice of the last time";
    screen.keys(U"⎋");
    EXPECT_EQ(choose(u"北口"), u"");
    EXPECT_FALSE(toolkit.ended());
}

TEST(Progress, SharesTheRunAmongDisplaysAndTheirUnits) {
    std::ostream nowhere(nullptr);
    Trace trace(nowhere, true);
    NativeMachine computer;
    Host host(trace, computer);
    Display main;
    main.name = u"Main";
    main.ids = u"1,20";
    host.put_display(main);
    host.units.set_slaves(u"Main", 1, {.y = 0, .x = 2});
    RunProgress progress(host);
    progress.begin_run({u"Main", u"Second"});
    using enum LinkEvent::Kind;
    // After each event: the unit of four (two masters, and two slaves behind one of them), and the run's share.
    constexpr Operation kOpen = u"OpenConnection", kLoad = u"DownloadFirmware";
    const std::tuple<LinkEvent::Kind, Operation, const char16_t*, std::size_t, double> events[] = {
        {begins, kOpen, u"Main", 0, 0}, {begins, kLoad, u"Main", 1, 0}, {transfers, kLoad, u"Main", 1, 0.0625},
        {begins, kLoad, u"Main", 2, 0.125}, {begins, kOpen, u"Second", 0, 0.5},
        // Done again, a display is a run of its own.
        {begins, kOpen, u"Main", 0, 0}, {transfers, kLoad, u"Main", 0, 0},
    };
    for (const auto& [kind, operation, display, unit, share] : events) {
        LinkEvent event;
        event.kind = kind;
        event.call.operation = operation;
        event.call.display = display;
        event.percent = 50;
        progress.follow(event);
        EXPECT_EQ(progress.unit_number, unit);
        EXPECT_DOUBLE_EQ(progress.run_share(), share);
    }
    EXPECT_EQ(progress.displays, 1U);
}

TerminalProcess program(const char* terminal) {
    return TerminalProcess([](int) { execl(VEX_PROGRAM, "brivola-sim", "--speed", "2", nullptr); }, terminal);
}

TEST(TrialProgram, GoesFromStartThroughARunToWhatTheUnitsHold) {
    using Steps = std::vector<std::pair<const char*, const char*>>;
    // Next to the options and the displays, one of which is there already.
    const Steps start = {{"nothing real is touched", "\r"}, {"Firmware Update Wizard", "\r\r"}, {"Click Here", "\t\r"},
                         {"- Reset and Clear all", "\r"},   {"Display - of 1", ""}};
    const struct {
        Steps steps;
        int status;
        std::vector<const char*> table;
    } runs[] = {
        {{{"Preparing to Open", "\r"}, {"Are you sure", "\r"}, {"F10 retries", "\033[21~\r"}, {"Updated -", "\r"}},
         0, {"\033[?1049l", "unit \"Main Street\" 1: empty", "unit \"Main Street\" 20: empty", "5 units have not changed"}},
        {{{"Preparing to Open", "\003"}}, (128 + SIGINT) << 8, {"\033[?1049l", "9 units have not changed"}},
    };
    for (const auto& [steps, status, table] : runs) {
        TerminalProcess trial = program("xterm-256color");
        for (const Steps& part : {start, steps}) {
            for (const auto& [seen, keys] : part) {
                ASSERT_TRUE(trial.sees(seen)) << seen;
                trial.send(keys);
            }
        }
        EXPECT_EQ(trial.wait(), status);
        for (const char* line : table) EXPECT_TRUE(trial.sees(line)) << line;
        EXPECT_TRUE(trial.modes_are_as_before());
    }
}

TEST(TrialProgram, DrawsTheSampleScenarioWhereThereIsNoTerminal) {
    TerminalProcess dumb = program("dumb");
    EXPECT_EQ(dumb.wait(), 0);
    std::string drawn = dumb.screen();
    std::erase(drawn, '\r');
    EXPECT_THAT(drawn, StartsWith("the terminal \"dumb\" cannot be drawn on"));
    EXPECT_THAT(drawn, testing::AllOf(HasSubstr("unit \"Station\" 1: sample.SHX"), testing::Not(HasSubstr("\033"))));
    for (const char* lines : {"│   │   │                     Station      Z180 80x7  COM2 2400 030 5550 123   │\n"
                              "│   │  ███  Choose Display    Town Hall    Z180 80x7  COM1 9600                │\n",
                              "│   ✗ Old Mill FAILED - Display does not support fi…  │\n"}) {
        EXPECT_THAT(drawn, HasSubstr(lines));
    }
}

}  // namespace
}  // namespace vex::sim
