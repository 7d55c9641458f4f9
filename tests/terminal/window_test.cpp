// Drawing on cells, keyboard and mouse on forms over each other and on the Open dialog, and where everything stands.
#include <gmock/gmock.h>

#include <map>
#include <tuple>

#include "about/frm_about.h"
#include "platform/native/machine.h"
#include "platform/native/terminal/terminal_toolkit.h"
#include "tests/shared/temporary_folder.h"
#include "tests/terminal/fake_screen.h"
#include "tests/toolkit/sample_form.h"
#include "update/dlg_disp_updater.h"
#include "update/dlg_handle_sign_option.h"
#include "wizard/dlg_firmware_wizard.h"

namespace vex::platform::native::terminal {
namespace {

using test::SampleForm;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;

// ---- Cells --------------------------------------------------------------------------------------------

TEST(Canvas, ShowsNoHalfOfAWideCharacterAndLetsNoTextSteerTheTerminal) {
    Canvas canvas({6, 1});
    canvas.text({0, 0}, U"日本語", {});
    canvas.text({1, 0}, U"x", {});   // over a right half
    canvas.text({5, 0}, U"日", {});  // at the edge
    EXPECT_EQ(text_picture(canvas), " x本\n");
    Canvas line({20, 1});
    line.text({0, 0}, U"a\x1B[2Jb\u009Bc\u202Ed\u200Be\n", {});
    EXPECT_EQ(text_picture(line), "a\uFFFD[2Jb\uFFFDcde\uFFFD\n");
    // Marks beyond those a cell keeps are dropped, and one without a letter is.
    line.fill(line.area(), look::kField);
    line.text({0, 0}, U"\u0301e\u0301\u0302\u0303\u0304x", {});
    EXPECT_EQ(text_picture(line), "e\u0301\u0302x\n");
}

TEST(Text, IsCutBetweenWholeCharacters) {
    EXPECT_EQ(text_width(U"Cafe\u0301 日本 \U0001F680\t"), 13);
    EXPECT_EQ(shorten(U"日本語", 4), U"日…");
    EXPECT_EQ(shorten(U"C:\\日本語", 6, Cut::start), U"…本語");
    EXPECT_EQ(beginning(U"e\u0301x", 1), U"e\u0301") << "a mark stays with its letter";
    EXPECT_THAT(wrap(U"one two three", 6), ElementsAre(U"one", U"two", U"three"));
    EXPECT_THAT(wrap(U"one\r\n\r\ntwo \n", 9), ElementsAre(U"one", U"", U"two", U""));
    EXPECT_THAT(wrap(U"日本", 1), ElementsAre(U"日", U"本")) << "also where nothing fits";
    const Caption both = parse_caption(u"Reset && &Clear &");
    EXPECT_EQ(both.text, U"Reset & Clear &");
    EXPECT_EQ(both.mnemonic, 8U);
}

// ---- One window ---------------------------------------------------------------------------------------

class OnTerminal : public testing::Test {
protected:
    FakeScreen screen;
    TerminalToolkit toolkit{screen};
    SampleForm form{toolkit};
};

/// The sample form's window alone, at the smallest terminal's scale.
class Window : public OnTerminal {
protected:
    Window() {
        for (char16_t letter = u'a'; letter <= u't'; ++letter) form.list.add_row({}, {letter});
    }
    void handle(const Input& input) {
        window.handle(input);
        window.draw({}, true);
    }
    void keys(std::u32string_view signs) {
        for (const char32_t sign : signs) handle(key_of(sign));
    }
    void click(Point at, Point to = {-1, -1}) {
        handle(MouseEvent{.action = MouseAction::press, .at = at});
        handle(MouseEvent{.action = MouseAction::release, .at = to.row < 0 ? at : to});
    }
    /// Draws, too.
    Area show(const forms::Control& control) {
        if (&control == &form.list) form.pages.set_tab(1);
        window.draw({}, true);
        return std::ranges::find(window.controls(), &control, &PlacedControl::control)->cells;
    }
    std::string picture() { return text_picture(window.picture()); }

    FormWindow window{form, toolkit};
};

TEST_F(Window, FocusGoesByTheKeyboardOrderAndToThePageThatOpens) {
    for (const char* name : {"text", "option_a", "check", "cmdOk", "cmdCancel", "text"}) {
        EXPECT_EQ(window.focus()->name(), name);
        keys(U"⇥");
    }
    keys(U"↓⇥⇤");
    EXPECT_EQ(window.focus(), &form.option_b) << "a group is one stop, the chosen one";
    form.option_b.set_enabled(false);
    EXPECT_EQ(window.focus(), &form.text) << "never the neighbour of what is disabled";
    form.pages.set_tab(1);
    EXPECT_EQ(window.focus(), &form.list);
    form.pages.set_tab(2);
    EXPECT_EQ(window.focus(), &form.cmdOk) << "a page without controls leaves it to the default button";
}

TEST_F(Window, KeysPressWhatTheyAreSaidToPress) {
    window.handle(KeyPress{Key::character, U'b', true});
    keys(U"⇥");
    EXPECT_THAT(window.keys(), ElementsAre(U"Enter OK", U"Space check", U"Alt+A Option A", U"Alt+B Option B",
                                           U"Esc Cancel", U"Tab next"));
    keys(U" x⏎⎋");
    form.cmdOk.set_enabled(false);
    keys(U"⏎");
    EXPECT_THAT(form.log, ElementsAre("option_b", "check", "cmdOk", "cmdCancel"));
    EXPECT_EQ(screen.beeps, 2);
    show(form.list);
    form.list.on_click = [] {};
    EXPECT_THAT(window.keys(), testing::Not(Contains(U"Space choose"))) << "no row is marked";
    keys(U"↓");
    EXPECT_THAT(window.keys(), ElementsAre(U"Space choose", U"↑↓ move", U"F10 menu", U"Esc Cancel", U"Tab next"));
}

TEST_F(Window, OnlyAPressAndAReleaseOnOneRowActOnIt) {
    form.list.on_click = [this] { form.log.push_back("row " + std::to_string(*form.list.selected())); };
    const Area list = show(form.list);
    const Point first{list.left + 4, list.top + 1};
    click(first);
    // Another row, the header, the scroll bar; its lower end is the end of the list.
    click(first, {first.column, first.row + 1});
    click({first.column, list.top});
    click({list.right - 1, list.top + 2});
    click({list.right - 1, list.bottom - 1});
    const forms::Twips last = (list.height() - 1) * 195;
    EXPECT_EQ(form.list.row_top(19), last);
    EXPECT_EQ(form.list.selected(), 0U);
    handle(MouseEvent{.action = MouseAction::wheel_up, .at = first});
    EXPECT_EQ(form.list.row_top(19), last + 3 * 195);
    form.list.clear();
    form.list.add_row({}, u"one");
    click({first.column, list.bottom - 1});
    // On a button the release may be anywhere on it.
    const Area ok = show(form.cmdOk);
    click({ok.left, ok.top}, {ok.right - 1, ok.top});
    click({ok.left, ok.top}, {ok.left, ok.top - 1});
    EXPECT_THAT(form.log, ElementsAre("row 0", "cmdOk"));
}

TEST_F(Window, ListKeepsItsSelectionInSightAndFollowsTheRowBeingWorkedOn) {
    const int page = show(form.list).height() - 1;
    keys(U"↓⇟");
    EXPECT_EQ(form.list.selected(), static_cast<std::size_t>(page));
    keys(U"⇱⇲");
    EXPECT_EQ(form.list.row_top(19), page * 195);
    form.list.set_row_color(2, forms::kRed);
    show(form.list);
    EXPECT_EQ(form.list.row_top(2), 195);
    // The menu key, from anywhere: the first that failed.
    form.list.select(std::nullopt);
    window.set_focus(form.cmdOk);
    keys(U"☰");
    EXPECT_EQ(static_cast<int>(form.presses.at(0).y) / 195, 1);
}

TEST_F(Window, TextBoxTakesWhatIsTypedAndPasted) {
    const Area box = show(form.text);
    keys(U"abc日←⌫⇱⌦");
    window.handle(Paste{U"1\r\n2"});
    keys(U"⇲0123456789abcdefghijklmnopqrstuvwxyz");
    EXPECT_THAT(picture(), HasSubstr("▸9abcdefghijklmnopqrstuvwxyz ◂"));
    EXPECT_EQ(window.cursor(), (Point{box.right - 2, box.top}));
    click({box.left + 2, box.top});
    keys(U"-");
    const std::u16string text = u"12b日0123456789-abcdefghijklmnopqrstuvwxyz";
    keys(U"⇥");
    window.handle(Paste{U"nowhere"});
    EXPECT_EQ(form.text.text(), text);
    EXPECT_THAT(picture(), HasSubstr("uvwxyz]")) << "its end, without the focus";
}

TEST_F(Window, ColumnsShareTheWidthAsTheyNeedIt) {
    form.list.clear();
    form.list.add_row({}, u"Platform in the hall 1");
    form.list.add_row({}, u"Platform in the hall 2");
    form.list.set_sub_item(0, 0, u"FAILED - Unable to open connection to display!");
    show(form.list);
    EXPECT_THAT(picture(), HasSubstr("hall 2 ")) << "two that are cut are still told apart";
    keys(U"→→→→→");
    EXPECT_THAT(picture(), HasSubstr("connection to display!"));
}

// ---- Windows over each other --------------------------------------------------------------------------

TEST_F(OnTerminal, QuestionIsAnsweredNotClosed) {
    screen.keys(U"⎋");
    screen.look([&] { EXPECT_TRUE(screen.shows("\n Enter Yes   Alt+N No   Tab next   Ctrl+C leave\n")); });
    screen.keys(U"⏎⎋");
    EXPECT_EQ(toolkit.message_box({u"", u"Sure?", forms::MessageButtons::yes_no}), forms::MessageAnswer::yes);
    EXPECT_EQ(screen.beeps, 1);
    toolkit.message_box({u"Title", u"Text"});
    EXPECT_FALSE(toolkit.ended());
}

TEST_F(OnTerminal, MenuIsDismissedByEscAndByAPressBesideIt) {
    form.pages.set_tab(1);
    form.list.add_row({}, u"row");
    form.on_press = [&](const SampleForm::Press&) { toolkit.pop_up_menu(form, form.list_menu); };
    screen.keys(U"⇥☰⎋☰");
    screen.click({2, 2});
    screen.keys(U"☰↓⏎⎋");
    form.show_modal();
    EXPECT_THAT(form.log, ElementsAre("load", "activate", "mnuSecond", "cmdCancel"));
    EXPECT_EQ(screen.beeps, 0);
}

TEST_F(OnTerminal, FollowsTheSizeTakesNoInputWhileItIsTooSmallAndEndsWithTheProcess) {
    screen.size_now = {160, 50};
    screen.click({1, 1});  // Beside the form.
    screen.look([&] {
        EXPECT_EQ(screen.find(U"┌─ Sample "), (Point{29, 4})) << "in the middle";
        screen.size_now = {79, 24};
    });
    screen.keys(U"⏎");
    screen.look([&] { EXPECT_TRUE(screen.shows("79 by 24") && !screen.shows("Sample")); });
    form.show_modal();
    EXPECT_THAT(form.log, ElementsAre("load", "activate", "unload", "unloaded"));
    EXPECT_EQ(screen.beeps, 1);
    EXPECT_EQ(toolkit.message_box({u"", u"", forms::MessageButtons::yes_no}), forms::MessageAnswer::no);
}

// ---- The Open dialog ----------------------------------------------------------------------------------

TEST_F(OnTerminal, ListOfFilesFollowsTheFieldAndOpenTakesWhatIsMarked) {
    const test::TemporaryFolder machine;
    for (const char* name :
         {"c/fw/old/x", "c/fw/new.bin", "c/fw/alpha.BIN", "c/fw/sign.shx", "c/fw/newer.bin", "d/x"}) {
        machine.write((std::string("drive_") + name).c_str(), "x");
    }
    use_machine_folder(machine.path());
    const auto open = [&](const std::u16string& folder) {
        return toolkit.open_file({folder, u"", u"Rabbit Files(*.BIN)|*.BIN;*.B?", 0x81000});
    };
    // Keys, what is then to be seen and what is not, and more keys.
    using Keys = const char32_t*;
    const std::tuple<const char16_t*, Keys, const char*, const char*, Keys, std::optional<std::u16string>> cases[] = {
        {u"C:\\fw\\", U"", "   ..\\", "sign.shx", U"↓↓⏎", u"C:\\fw\\new.bin"},
        // The only name that begins so.
        {u"C:\\fw", U"al", "alpha.BIN", "new.bin", U"⏎", u"C:\\fw\\alpha.BIN"},
        // Several begin so: none is taken. A folder is opened, not answered.
        {u"C:\\fw", U"ne⏎", "File not found", "?", U"⎋⎋", std::nullopt},
        {u"C:\\fw\\old", U"\\fw⏎", "alpha.BIN", "File not found", U"⎋", std::nullopt},
        // Up to the drives, and back.
        {u"C:\\fw", U"↓⇱⏎↓⇱⏎", "all drives", "new.bin", U"⏎⏎⏎", u"C:\\fw\\alpha.BIN"},
    };
    for (const auto& [folder, keys, shown, hidden, more_keys, answer] : cases) {
        screen.keys(keys);
        screen.look([this, seen = shown, unseen = hidden] {
            EXPECT_TRUE(screen.shows(seen) && !screen.shows(unseen)) << text_picture(screen.canvas);
        });
        screen.keys(more_keys);
        EXPECT_EQ(open(folder), answer);
    }
    // A click marks a row, a second one opens it.
    for (int times = 0; times < 2; ++times) screen.look([&] { screen.click(screen.find(U"new.bin")); });
    EXPECT_EQ(open(u"C:\\fw"), u"C:\\fw\\new.bin");
}

// ---- Every size ---------------------------------------------------------------------------------------

/// The controls of a form that are cut, or have another size in cells than others of their size; and the buttons that
/// meet another control or whose captions are short.
std::string faults_of(const forms::Form& form, Size terminal) {
    using enum forms::ControlKind;
    std::map<std::tuple<forms::ControlKind, forms::Twips, forms::Twips>, std::pair<int, int>> sizes;
    std::string faults;
    const std::vector<PlacedControl> controls = lay_out(form, scale_for(terminal));
    for (const auto& [control, cells, clip, lines] : controls) {
        if (control->kind() == label || control->kind() == line || control->kind() == option_button) continue;
        const std::tuple design(control->kind(), control->place().width, control->place().height);
        const std::pair size(cells.width(), cells.height());
        bool good = sizes.emplace(design, size).first->second == size && cells.meet(clip) == cells;
        for (const PlacedControl& other : controls) {
            if (control->kind() != button || other.control == control) continue;
            const Area common = other.cells.meet(cells);
            const bool meet = common.width() > 0 && common.height() > 0;
            if (lines.front().ends_with(U'…') || (meet && other.control->parent() == control->parent())) good = false;
        }
        if (!good) faults += control->name() + "; ";
    }
    return faults;
}

TEST_F(OnTerminal, ControlsOfOneSizeHaveOneSizeOnEveryScreen) {
    com::ModuleLifetime module;
    const Services services{
        .toolkit = toolkit, .registry = platform::registry(), .module = module, .module_folder = u"C:\\Brivola"};
    dlgFirmwareWizard wizard(services, {});
    dlgDispUpdater run(services);
    dlgHandleSignOption session(services);
    frmAbout about(services);
    auto& pages = static_cast<forms::TabPages&>(*wizard.find("SSTab1"));
    const std::pair<forms::Form*, const char32_t*> escapes[] = {
        {&wizard, U"Esc Cancel"}, {&run, U"Esc Close"}, {&session, U"Esc Cancel"}, {&about, U"Esc OK"}};
    for (const auto& [dialog, hint] : escapes) EXPECT_THAT(FormWindow(*dialog, toolkit).keys(), Contains(hint));
    for (int columns = 80; columns <= 250; ++columns) {
        // Rows and columns are independent: every value of one with a few of the other.
        for (int rows = 24; rows <= 80; rows += columns % 10 == 0 ? 1 : 7) {
            const Size size{columns, rows};
            std::string faults = faults_of(run, size) + faults_of(session, size) + faults_of(about, size);
            for (std::int16_t page = 0; page < 5; ++page) {
                pages.set_tab(page);
                faults += faults_of(wizard, size);
            }
            ASSERT_EQ(faults, "") << columns << " by " << rows;
        }
    }
}

}  // namespace
}  // namespace vex::platform::native::terminal
