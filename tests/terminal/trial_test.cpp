// The trial on the terminal: the host's selection dialog, its progress and pace, and the whole program.
#include <chrono>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <string>

#include <gmock/gmock.h>

#include "platform/native/terminal/terminal_toolkit.h"
#include "simulator/native/terminal_trial.h"
#include "tests/terminal/fake_screen.h"
#include "tests/terminal/terminal_process.h"

namespace vex::sim {
namespace {

using platform::native::terminal::FakeScreen;
using platform::native::terminal::Key;
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
    FakeScreen screen;
    TerminalToolkit toolkit{screen, icon_characters()};
};

class Picker : public OnTerminal {
protected:
    Picker() {
        displays.put(display(u"Platform 1", u"Z180 80x7", u"COM1"));
        displays.put(display(u"Café Müller", u"TQ-1 - 64x16", u"COM2"));
        displays.put(display(u"北口", u"Z180 80x7", u"COM3"));
        displays.put(display(u"Platform 2", u"TQ-1 - 64x16", u"COM4"));
    }
    std::u16string choose(const std::u16string& chosen = {}) {
        DisplayPicker picker(toolkit, displays, chosen);
        picker.show_modal();
        return picker.answer();
    }

    Displays displays;
};

TEST_F(Picker, ChecksByKeyAndMouseAndAnswersInTheHostsOrder) {
    screen.look([&] { EXPECT_TRUE(screen.shows("0 of 4 checked")); });
    screen.keys({Key::enter});
    screen.look([&] { EXPECT_EQ(screen.beeps, 1) << "there is nothing to take yet"; });
    screen.keys({Key::down, Key::end});
    screen.type(U" ");
    screen.look([&] { screen.click(screen.find(U"☐ Platform 1")); });
    screen.look([&] { screen.click(screen.find(U"Address")); });
    screen.look([&] { EXPECT_TRUE(screen.shows("☑ Platform 1")); });
    screen.keys({Key::enter});
    EXPECT_EQ(choose(), u"Platform 1,Platform 2");
    screen.look([&] { EXPECT_TRUE(screen.shows("☑ 北口")) << "the choice of the last time"; });
    screen.keys({Key::enter});
    EXPECT_EQ(choose(u"北口,gone"), u"北口");
}

TEST_F(Picker, EnterChecksTheOneThatTheSearchLeaves) {
    screen.type(U"müL");
    screen.look([&] {
        EXPECT_TRUE(screen.shows("Café Müller"));
        EXPECT_FALSE(screen.shows("Platform"));
        EXPECT_THAT(screen.last_line(), testing::StartsWith(" Enter Check All 1 "));
    });
    screen.keys({Key::enter});
    screen.look([&] { EXPECT_TRUE(screen.shows("☑ Café Müller")); });
    screen.type(U"z180");
    screen.alt(U'a');
    screen.look([&] {
        EXPECT_TRUE(screen.shows("3 of 4 checked"));
        EXPECT_TRUE(screen.shows("Uncheck All 2"));
    });
    screen.type(U"x");
    screen.look([&] { EXPECT_TRUE(screen.shows("No display has this")); });
    screen.keys({Key::enter, Key::backspace, Key::enter});
    EXPECT_EQ(choose(), u"Platform 1,Café Müller,北口");
    screen.alt(U'a');
    screen.keys({Key::escape});
    EXPECT_EQ(choose(), u"") << "cancelled";
    EXPECT_FALSE(toolkit.ended());
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
    EXPECT_EQ(progress.run_share(), 0);
    event(begins, Operation::OpenConnection, u"Main");
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
    event(begins, Operation::OpenConnection, u"Second");
    EXPECT_EQ(progress.display_number(), 2U);
    EXPECT_DOUBLE_EQ(progress.run_share(), 0.5);
    event(ends, Operation::OpenConnection, u"Second", 0, false);
    event(begins, Operation::OpenConnection, u"Main");
    EXPECT_EQ(progress.displays(), 1U) << "done again, a display is a run of its own";
    EXPECT_EQ(progress.run_share(), 0);
}

/// Stands for the plug-in's dialog of a run.
class RunForm final : public forms::Form {
public:
    explicit RunForm(forms::Toolkit& shown_on)
        : Form(shown_on, {.name = "dlgDispUpdater", .caption = u"Run", .width = 3000, .height = 2000}) {
        list.columns = {{u"Name", 1000}};
        list.small_icons = &icons;
        lay_out({{.control = list, .name = "lstvDisplayStatus", .at = {0, 0, 3000, 1500}, .tab_index = 1},
                 {.control = close, .name = "cmdClose", .at = {0, 1600, 900, 300}, .text = u"Close", .tab_index = 0}});
        for (const char16_t* icon : {u"good", u"bad", u"good"}) list.add_row({}, u"Display", icon);
        close.is_default = true;
        close.is_cancel = true;
        close.on_click = [this] { hide(); };
    }
    forms::ImageList icons{{u"good", "UPDATED"}, {u"bad", "FAILED"}};
    forms::ListView list;
    forms::Button close;
    std::function<void()> on_activate = [] {};

private:
    void Form_Activate() override { on_activate(); }
};

TEST_F(Progress, IsOnTheHostsLineFromTheRunsBeginningToItsEnd) {
    FakeScreen screen;
    TerminalToolkit toolkit(screen, icon_characters(),
                            [&](auto& canvas, auto& line) { return draw_host_line(canvas, line, toolkit, progress); });
    progress.begin_run({u"Main", u"Second"});
    RunForm form(toolkit);
    form.close.set_enabled(false);
    screen.look([&] {
        EXPECT_THAT(screen.last_line(), HasSubstr("Display - of 2"));
        event(LinkEvent::Kind::begins, Operation::OpenConnection, u"Main");
        event(LinkEvent::Kind::begins, Operation::CloseConnection, u"Main");
    });
    screen.look([&] {
        EXPECT_THAT(screen.last_line(), HasSubstr("Display 1 of 2")) << "also between displays";
        form.close.set_enabled(true);
    });
    screen.look([&] {
        EXPECT_THAT(screen.last_line(), testing::StartsWith(" 2 updated, 1 failed: F10 retries   Enter Close "));
        form.list.set_icon(1, u"good");
    });
    screen.look([&] { EXPECT_THAT(screen.last_line(), testing::StartsWith(" 3 updated   Enter Close ")); });
    screen.keys({Key::escape});
    form.show_modal();
    EXPECT_FALSE(toolkit.ended());
}

TEST_F(Progress, TableAtTheEndListsWhatChanged) {
    const Units before = host.units;
    const auto table = [&] {
        std::ostringstream out;
        print_changed_units(host, before, out);
        return out.str();
    };
    EXPECT_EQ(table(), "5 units have not changed\n");
    host.units.store(u"Main", 20, {Content::State::empty, {}});
    EXPECT_EQ(table(), "Display  Unit  Holds now\nMain       20  empty\n4 units have not changed\n");
}

TEST_F(OnTerminal, CancelIsServedAtOnceAndNothingIsWaitedForAfterIt) {
    Pace pace(toolkit, 1, [this] { return toolkit.ended().has_value(); });
    RunForm form(toolkit);
    int clicks = 0;
    form.close.on_click = [&] {
        ++clicks;
        pace.follow({.kind = LinkEvent::Kind::begins, .call = {u"", 1, Operation::CancelTransmission}});
    };
    const auto start = std::chrono::steady_clock::now();
    form.on_activate = [&] {
        screen.keys({Key::enter});
        // Half an hour on a slow link.
        for (int part = 0; part < 20; ++part) {
            pace.follow({.kind = LinkEvent::Kind::transfers,
                         .call = {u"", 1, Operation::DownloadFirmware},
                         .bytes = 1'800'000});
        }
        form.hide();
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
    // Next to the options and the displays (one is there already), where a control of the page has the focus.
    trial.send("\r\r");
    ASSERT_TRUE(trial.sees("Click Here"));
    trial.send("\t\r");
    ASSERT_TRUE(trial.sees("- Reset and Clear all"));
    trial.send("\r");
    ASSERT_TRUE(trial.sees("1 updated"));
    trial.send("\r");
    ASSERT_TRUE(trial.sees("\033[?1049l"));
    EXPECT_EQ(trial.wait(), 0);
    EXPECT_TRUE(trial.sees("Main Street     1  empty"));
    EXPECT_TRUE(trial.sees("Main Street    20  empty"));
    EXPECT_TRUE(trial.sees("5 units have not changed"));
    EXPECT_TRUE(trial.modes_are_as_before());
}

TEST(TrialProgram, LeavesTheUnitsAsTheyAreWhenItIsEndedInTheMidstOfARun) {
    TerminalProcess trial = program("xterm-256color", "1");
    ASSERT_TRUE(trial.sees("nothing real is touched"));
    trial.send("\r\r\r\t\r");
    ASSERT_TRUE(trial.sees("- Reset and Clear all"));
    trial.send("\r");
    ASSERT_TRUE(trial.sees("Preparing to Open"));
    trial.send("\003");
    const int status = trial.wait();
    ASSERT_TRUE(WIFEXITED(status));
    EXPECT_EQ(WEXITSTATUS(status), 128 + SIGINT);
    EXPECT_TRUE(trial.modes_are_as_before());
    EXPECT_TRUE(trial.sees("9 units have not changed"));
}

TEST(TrialProgram, DrawsTheSampleScenarioWhereThereIsNoTerminal) {
    TerminalProcess dumb = program("dumb");
    EXPECT_EQ(dumb.wait(), 0);
    std::string drawn = dumb.screen();
    std::erase(drawn, '\r');
    EXPECT_THAT(drawn, testing::StartsWith("the terminal \"dumb\" cannot be drawn on"));
    EXPECT_THAT(drawn, HasSubstr("unit \"Station\" 1: sample.SHX"));
    EXPECT_THAT(drawn, Not(HasSubstr("\033")));
    // The approved ones; VEX_RECORD=1 renews them.
    std::string pictures;
    for (const char* wanted : {"030 5550 123", "FAILED - Display"}) {
        const std::size_t at = drawn.find(wanted);
        ASSERT_NE(at, drawn.npos) << wanted;
        const std::size_t start = drawn.rfind("┌─", drawn.rfind("─┐\n", at));
        const std::size_t line = drawn.rfind('\n', start) + 1;
        pictures += drawn.substr(line, drawn.find("\n\n", at) - line) + "\n\n";
    }
    if (std::getenv("VEX_RECORD") != nullptr) std::ofstream(VEX_PICTURES) << pictures;
    std::ostringstream approved;
    approved << std::ifstream(VEX_PICTURES).rdbuf();
    EXPECT_TRUE(approved.str() == pictures) << pictures;
}

}  // namespace
}  // namespace vex::sim
