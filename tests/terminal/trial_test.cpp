// The trial on the terminal: the host's selection dialog, its progress and pace, and the whole program.
#include <array>
#include <chrono>
#include <cstdio>
#include <string>

#include <gmock/gmock.h>

#include "platform/native/terminal/terminal_toolkit.h"
#include "simulator/display_picker.h"
#include "simulator/native/icon_characters.h"
#include "simulator/native/native_machine.h"
#include "simulator/pace.h"
#include "simulator/run_progress.h"
#include "tests/terminal/fake_screen.h"
#include "tests/terminal/terminal_process.h"

namespace vex::sim {
namespace {

using platform::native::terminal::FakeScreen;
using platform::native::terminal::Key;
using platform::native::terminal::NoDrives;
using platform::native::terminal::TerminalToolkit;
using test::TerminalProcess;
using testing::HasSubstr;
using testing::Not;

Display display(std::u16string name, std::u16string type, std::u16string port) {
    Display made;
    made.name = std::move(name);
    made.type = std::move(type);
    made.port = std::move(port);
    return made;
}

class OnTerminal : public testing::Test {
protected:
    NoDrives drives;
    FakeScreen screen;
    TerminalToolkit toolkit{screen, drives, icon_characters()};
};

class Picker : public OnTerminal {
protected:
    Picker() {
        displays.put(display(u"Platform 1", u"Z180 80x7", u"COM1"));
        displays.put(display(u"Café Müller", u"TQ-1 - 64x16", u"COM2"));
        displays.put(display(u"北口", u"Z180 80x7", u"COM3"));
        displays.put(display(u"Platform 2", u"TQ-1 - 64x16", u"COM4"));
    }
    std::u16string choose() {
        DisplayPicker picker(toolkit, displays);
        picker.show_modal();
        return picker.answer();
    }

    Displays displays;
};

TEST_F(Picker, ChecksByKeyAndMouseAndAnswersInTheHostsOrder) {
    screen.key(Key::tab, [&] { EXPECT_TRUE(screen.shows("0 of 4 checked")); });
    screen.key(Key::end);
    screen.type(U" ");
    screen.look([&] { screen.click(screen.find(U"☐ Platform 1")); });
    // What the look just added comes last: the click, then Enter.
    screen.look([&] { screen.key(Key::enter, [&] { EXPECT_TRUE(screen.shows("☑ Platform 1")); }); });
    EXPECT_EQ(choose(), u"Platform 1,Platform 2");
}

TEST_F(Picker, FindsByTypingInAnyColumnAndKeepsWhatIsChecked) {
    screen.type(U"müL");
    screen.key(Key::tab, [&] {
        EXPECT_TRUE(screen.shows("Café Müller"));
        EXPECT_FALSE(screen.shows("Platform"));
    });
    screen.type(U" ");
    screen.key(Key::back_tab);
    for (int i = 0; i < 3; ++i) screen.key(Key::backspace);
    screen.type(U"z180");
    screen.alt(U'a');
    screen.key(Key::tab);
    screen.key(Key::enter, [&] {
        EXPECT_TRUE(screen.shows("北口"));
        EXPECT_FALSE(screen.shows("Müller"));
        EXPECT_TRUE(screen.shows("3 of 4 checked"));
    });
    EXPECT_EQ(choose(), u"Platform 1,Café Müller,北口");
}

TEST_F(Picker, CancelChoosesNothing) {
    screen.alt(U'a');
    screen.key(Key::escape, [&] { EXPECT_TRUE(screen.shows("4 of 4 checked")); });
    EXPECT_EQ(choose(), u"");
    screen.alt(U'a');
    screen.alt(U'a');
    screen.keys({Key::tab, Key::enter});
    EXPECT_EQ(choose(), u"") << "checking all twice checks none";
}

class Progress : public testing::Test {
protected:
    Progress() {
        Display first = display(u"Main", u"Z180 80x7", u"COM1");
        first.ids = u"1,20";
        host.put_display(first);
        host.units.set_slaves(u"Main", 1, {.y = 0, .x = 2});
        host.put_display(display(u"Second", u"Z180 80x7", u"COM2"));
    }
    void event(LinkEvent::Kind kind, Operation operation, const char16_t* name, int percent = 0,
               bool succeeded = true) {
        progress.follow(
            {.kind = kind, .call = {name, 1, operation}, .percent = percent, .bytes = 0, .succeeded = succeeded});
    }
    void unit(const char16_t* name) {
        event(LinkEvent::Kind::begins, Operation::DownloadFirmware, name);
        event(LinkEvent::Kind::transfers, Operation::DownloadFirmware, name, 50);
    }

    std::ostream nowhere{nullptr};
    Trace trace{nowhere, true};
    NativeMachine computer;
    Host host{trace, computer};
    RunProgress progress{host};
};

TEST_F(Progress, SharesTheRunAmongDisplaysAndTheirUnits) {
    using enum LinkEvent::Kind;
    progress.begin_run({u"Main", u"Second"});
    EXPECT_FALSE(progress.working());
    EXPECT_EQ(progress.run_share(), 0);
    event(begins, Operation::OpenConnection, u"Main");
    EXPECT_TRUE(progress.working());
    EXPECT_EQ(progress.units(), 4U) << "two masters, and two slaves behind one of them";
    EXPECT_EQ(progress.unit_number(), 0U);
    unit(u"Main");
    EXPECT_EQ(progress.unit_number(), 1U);
    EXPECT_DOUBLE_EQ(progress.unit_share(), 0.5);
    EXPECT_DOUBLE_EQ(progress.run_share(), 0.5 / 4 / 2);
    event(ends, Operation::DownloadFirmware, u"Main");
    unit(u"Main");
    EXPECT_DOUBLE_EQ(progress.run_share(), 1.5 / 4 / 2);
    event(begins, Operation::CloseConnection, u"Main");
    EXPECT_FALSE(progress.working());
    event(begins, Operation::OpenConnection, u"Second");
    EXPECT_EQ(progress.display_number(), 2U);
    EXPECT_DOUBLE_EQ(progress.run_share(), 0.5);
    event(ends, Operation::OpenConnection, u"Second", 0, false);
    EXPECT_FALSE(progress.working()) << "nobody answered";
    event(begins, Operation::OpenConnection, u"Main");
    EXPECT_EQ(progress.display_number(), 1U) << "done again, a display has its old place";
}

TEST_F(Progress, KnowsADisplayThatNobodyChose) {
    using enum LinkEvent::Kind;
    event(begins, Operation::OpenConnection, u"Second");
    EXPECT_EQ(progress.display_number(), 1U);
    EXPECT_EQ(progress.displays(), 1U);
    event(begins, Operation::DownloadFirmwareWithLoader, u"Second");
    event(transfers, Operation::DownloadFirmwareWithLoader, u"Second", 100);
    EXPECT_DOUBLE_EQ(progress.run_share(), 1);
}

class BusyForm final : public forms::Form {
public:
    explicit BusyForm(forms::Toolkit& shown_on)
        : Form(shown_on, {.name = "Busy", .caption = u"Busy", .width = 3000, .height = 1000}) {
        lay_out(
            {{.control = cancel, .name = "cancel", .at = {100, 200, 1000, 195}, .text = u"Cancel", .tab_index = 0}});
    }
    std::function<void()> work;
    forms::Button cancel;

protected:
    void Form_Activate() override {
        work();
        hide();
    }
};

TEST_F(OnTerminal, CancelIsServedAtOnceAndNothingIsWaitedForAfterIt) {
    Pace pace(toolkit, 1, [this] { return toolkit.ended().has_value(); });
    BusyForm form(toolkit);
    int clicks = 0;
    form.cancel.on_click = [&] {
        ++clicks;
        pace.follow({.kind = LinkEvent::Kind::begins, .call = {u"", 1, Operation::CancelTransmission}});
    };
    const auto start = std::chrono::steady_clock::now();
    form.work = [&] {
        screen.key(Key::enter);
        // Half an hour on a slow link.
        for (int part = 0; part < 20; ++part) {
            pace.follow({.kind = LinkEvent::Kind::transfers,
                         .call = {u"", 1, Operation::DownloadFirmware},
                         .bytes = 1'800'000});
        }
    };
    form.show_modal();
    EXPECT_EQ(clicks, 1);
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(5));
}

// ---- The program ----------------------------------------------------------------------------------------

TerminalProcess program(const char* terminal = "xterm-256color", const char* speed = "1000") {
    return TerminalProcess([speed](int) { execl(VEX_PROGRAM, "brivola-sim", "--speed", speed, nullptr); }, terminal);
}

TEST(TrialProgram, GoesFromStartToAFinishedRunAndTellsWhatTheUnitsHold) {
    TerminalProcess trial = program();
    ASSERT_TRUE(trial.sees("nothing real is touched"));
    trial.send("\r");
    ASSERT_TRUE(trial.sees("Firmware Update Wizard"));
    // Next to the options, the displays (one is there already), and the last page. There Next is disabled, and
    // Finish beside it has the focus.
    trial.send("\r\r\r");
    ASSERT_TRUE(trial.sees("- Reset and Clear all"));
    trial.send("\r");
    ASSERT_TRUE(trial.sees("Display Control"));
    ASSERT_TRUE(trial.sees("✓"));
    trial.send("\r");
    ASSERT_TRUE(trial.sees("\033[?1049l"));
    EXPECT_EQ(trial.wait(), 0);
    EXPECT_TRUE(trial.sees("Main Street     1  empty"));
    EXPECT_TRUE(trial.sees("Main Street    20  empty"));
    EXPECT_TRUE(trial.sees("Station         1  as delivered"));
    EXPECT_TRUE(trial.modes_are_as_before());
}

TEST(TrialProgram, LeavesTheUnitsAsTheyAreWhenItIsEndedInTheMidstOfARun) {
    TerminalProcess trial = program("xterm-256color", "1");
    ASSERT_TRUE(trial.sees("nothing real is touched"));
    trial.send("\r\r\r\r");
    ASSERT_TRUE(trial.sees("- Reset and Clear all"));
    trial.send("\r");
    ASSERT_TRUE(trial.sees("Preparing to Open"));
    trial.send("\003");
    const int status = trial.wait();
    ASSERT_TRUE(WIFEXITED(status));
    EXPECT_EQ(WEXITSTATUS(status), 128 + SIGINT);
    EXPECT_TRUE(trial.modes_are_as_before());
    EXPECT_TRUE(trial.sees("Main Street     1  as delivered"));
    EXPECT_TRUE(trial.sees("Main Street    20  as delivered"));
}

TEST(TrialProgram, DrawsTheSampleScenarioWhereThereIsNoTerminal) {
    TerminalProcess dumb = program("dumb");
    EXPECT_TRUE(dumb.sees("┌─ Firmware Update Wizard"));
    EXPECT_EQ(dumb.wait(), 0);
    EXPECT_THAT(dumb.screen(), HasSubstr("┌─ Display Control"));
    EXPECT_THAT(dumb.screen(), HasSubstr("unit \"Station\" 1: sample.SHX"));
    EXPECT_THAT(dumb.screen(), Not(HasSubstr("\033")));
}

}  // namespace
}  // namespace vex::sim
