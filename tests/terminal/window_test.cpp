// Keyboard and mouse on forms over each other, and where everything stands.
#include <map>

#include <gmock/gmock.h>

#include "about/frm_about.h"
#include "platform/native/machine.h"
#include "platform/native/terminal/terminal_toolkit.h"
#include "platform/native/terminal/text.h"
#include "tests/terminal/fake_screen.h"
#include "tests/toolkit/sample_form.h"
#include "update/dlg_disp_updater.h"
#include "update/dlg_handle_sign_option.h"
#include "wizard/dlg_firmware_wizard.h"

namespace vex::platform::native::terminal {
namespace {

using test::SampleForm;
using testing::ElementsAre;
using testing::HasSubstr;

class Window : public testing::Test, public WindowOwner {
protected:
    Window() {
        for (int i = 0; i < 20; ++i) form.list.add_row({}, std::u16string(1, static_cast<char16_t>(u'a' + i)));
        draw();
    }
    void draw() { window.draw({}, true); }
    void beep() override { ++beeps; }

    void press(std::initializer_list<Key> keys) {
        for (const Key key : keys) window.handle(KeyPress{key});
        draw();
    }
    void type(std::u32string_view text, bool alt = false) {
        for (const char32_t character : text) window.handle(KeyPress{Key::character, character, alt});
        draw();
    }
    void mouse(MouseAction action, Point at) {
        window.handle(MouseEvent{action, forms::MouseButton::left, at});
        draw();
    }
    void click(Point at) {
        mouse(MouseAction::press, at);
        mouse(MouseAction::release, at);
    }
    void show_list() {
        form.pages.set_tab(1);
        draw();
    }
    Area cells(const forms::Control& control) {
        for (const PlacedControl& placed : window.controls()) {
            if (placed.control == &control) return placed.cells;
        }
        return {};
    }
    std::string keys() {
        std::string all;
        for (const std::u32string& key : window.keys()) all += to_utf8(key) + ", ";
        return all;
    }
    std::string picture() { return text_picture(window.picture()); }

    FakeScreen screen;
    TerminalToolkit toolkit{screen};
    SampleForm form{toolkit};
    IconCharacters icons;
    int beeps = 0;
    FormWindow window{form, *this, icons};
};

TEST_F(Window, FocusGoesByTheKeyboardOrderAndToThePageThatOpens) {
    std::vector<std::string> order;
    for (int i = 0; i < 6; ++i) {
        order.push_back(window.focus()->name());
        press({Key::tab});
    }
    EXPECT_THAT(order, ElementsAre("text", "option_a", "check", "cmdOk", "cmdCancel", "text"));
    EXPECT_EQ(window.focus(), &form.option_a);
    press({Key::down, Key::tab, Key::back_tab});
    EXPECT_EQ(window.focus(), &form.option_b) << "a group is one stop, the chosen one";
    form.option_b.set_enabled(false);
    EXPECT_EQ(window.focus(), &form.text) << "never the neighbour of what is disabled";
    show_list();
    EXPECT_EQ(window.focus(), &form.list);
    form.pages.set_tab(2);
    EXPECT_EQ(window.focus(), &form.cmdOk) << "a page without controls leaves it to the default button";
}

TEST_F(Window, KeysPressWhatTheyAreSaidToPress) {
    EXPECT_EQ(keys(), "Enter OK, Alt+A Option A, Alt+B Option B, Esc Cancel, Tab next, ");
    type(U"b", true);
    press({Key::tab});
    EXPECT_EQ(keys(), "Enter OK, Space check, Alt+A Option A, Alt+B Option B, Esc Cancel, Tab next, ");
    type(U" x");
    press({Key::enter, Key::escape});
    form.cmdOk.set_enabled(false);
    press({Key::enter});
    EXPECT_THAT(form.log, ElementsAre("option_b", "check", "cmdOk", "cmdCancel"));
    EXPECT_EQ(beeps, 2);
    show_list();
    form.list.on_click = [] {};
    EXPECT_EQ(keys(), "Space choose, ↑↓ move, F10 menu, Esc Cancel, Tab next, ");
}

TEST_F(Window, OnlyAPressAndAReleaseOnOneRowActOnIt) {
    show_list();
    form.list.on_click = [this] { form.log.push_back("row " + std::to_string(*form.list.selected())); };
    const Area list = cells(form.list);
    const Point first{list.left + 4, list.top + 1};
    click(first);
    EXPECT_THAT(form.log, ElementsAre("row 0"));
    // Another row, the header, the scroll bar; its lower end is the end of the list.
    mouse(MouseAction::press, first);
    mouse(MouseAction::release, {first.column, first.row + 1});
    click({first.column, list.top});
    click({list.right - 1, list.top + 2});
    click({list.right - 1, list.bottom - 1});
    const forms::Twips last = (list.height() - 1) * 195;
    EXPECT_EQ(form.list.row_top(19), last);
    EXPECT_EQ(form.list.selected(), 0U);
    mouse(MouseAction::wheel_up, first);
    EXPECT_EQ(form.list.row_top(19), last + 3 * 195);
    // Below the last row.
    form.list.clear();
    form.list.add_row({}, u"only");
    form.list.select(0);
    draw();
    click({first.column, list.bottom - 1});
    EXPECT_THAT(form.log, ElementsAre("row 0"));
    // On a button the release may be anywhere on it.
    const Area ok = cells(form.cmdOk);
    mouse(MouseAction::press, {ok.left, ok.top});
    mouse(MouseAction::release, {ok.right - 1, ok.top});
    mouse(MouseAction::press, {ok.left, ok.top});
    mouse(MouseAction::release, {ok.left, ok.top - 1});
    EXPECT_THAT(form.log, ElementsAre("row 0", "cmdOk"));
}

TEST_F(Window, ListKeepsItsSelectionInSightAndFollowsTheRowBeingWorkedOn) {
    show_list();
    const int page = cells(form.list).height() - 1;
    press({Key::down, Key::page_down});
    EXPECT_EQ(form.list.selected(), static_cast<std::size_t>(page));
    press({Key::end});
    EXPECT_EQ(form.list.row_top(19), page * 195);
    form.list.set_row_color(2, forms::kRed);
    draw();
    EXPECT_EQ(form.list.row_top(2), 195);
    form.list.on_click = [this] { form.list.set_row_color(19, forms::kRed); };
    type(U" ");
    EXPECT_EQ(form.list.row_top(2), 195) << "what the user changes does not move the list";
    form.list.select(17);
    draw();
    EXPECT_EQ(form.list.row_top(17), page * 195);
    // The menu key, from anywhere: the selected row, or the first that failed.
    window.set_focus(form.cmdOk);
    press({Key::menu});
    form.list.select(std::nullopt);
    press({Key::menu});
    ASSERT_EQ(form.presses.size(), 2U);
    EXPECT_EQ(static_cast<int>(form.presses[0].y) / 195, page);
    EXPECT_EQ(static_cast<int>(form.presses[1].y) / 195, 1);
}

TEST_F(Window, TextBoxTakesWhatIsTypedAndPasted) {
    type(U"abc日");
    press({Key::left, Key::backspace, Key::home, Key::remove});
    EXPECT_EQ(form.text.text(), u"b日");
    window.handle(Paste{U"1\r\n2"});
    press({Key::end});
    type(U"0123456789abcdefghijklmnopqrstuvwxyz");
    // Thirty cells with brackets: the end of the text is in sight, and the cursor after it.
    const Area box = cells(form.text);
    EXPECT_EQ(window.cursor(), (Point{box.right - 2, box.top}));
    EXPECT_THAT(picture(), HasSubstr("▸9abcdefghijklmnopqrstuvwxyz ◂"));
    click({box.left + 2, box.top});
    type(U"-");
    EXPECT_EQ(form.text.text(), u"12b日0123456789-abcdefghijklmnopqrstuvwxyz");
    window.set_focus(form.cmdOk);
    window.handle(Paste{U"y\r"});
    draw();
    EXPECT_THAT(picture(), HasSubstr("[…-abcdefghijklmnopqrstuvwxyz]")) << "without the focus, the end";
    EXPECT_TRUE(form.log.empty());
}

TEST_F(Window, MouseMeetsInAPanelWhatIsDrawnThere) {
    const Area node = cells(form.shape);
    std::string hits;
    form.on_press = [&hits](const SampleForm::Press& press) {
        hits += press.x > 300 && press.x < 750 && press.y > 300 && press.y < 600 ? 'n' : '.';
    };
    for (int column = node.left; column < node.right; ++column) mouse(MouseAction::press, {column, node.top});
    EXPECT_EQ(hits, std::string(static_cast<std::size_t>(node.width()), 'n'));
    hits.clear();
    for (const Point beside : {Point{node.left - 1, node.top}, Point{node.right, node.top},
                               Point{node.left, node.top - 1}, Point{node.left, node.bottom}}) {
        mouse(MouseAction::press, beside);
    }
    EXPECT_EQ(hits, "....");
}

TEST_F(Window, ColumnsShareTheWidthAsTheyNeedIt) {
    show_list();
    form.list.clear();
    for (const char16_t* name : {u"Platform in the hall 1", u"Platform in the hall 2"}) {
        form.list.set_sub_item(form.list.add_row({}, name), 0, u"Updated -");
    }
    draw();
    EXPECT_THAT(picture(), HasSubstr(" Platform in the hall 1 Updated -"));
    form.list.set_sub_item(0, 0, u"FAILED - Unable to open connection to display!");
    draw();
    EXPECT_THAT(picture(), HasSubstr("hall 2 ")) << "two that are cut are still told apart";
    press({Key::right, Key::right, Key::right, Key::right, Key::right});
    EXPECT_THAT(picture(), HasSubstr("connection to display!"));
}

// ---- Windows over each other --------------------------------------------------------------------------

class OnTerminal : public testing::Test {
protected:
    FakeScreen screen;
    TerminalToolkit toolkit{screen};
};

TEST_F(OnTerminal, QuestionIsAnsweredNotClosed) {
    const auto ask = [&] { return toolkit.message_box({u"Verify", u"Are you sure?", forms::MessageButtons::yes_no}); };
    screen.keys({Key::escape});
    screen.look([&] { EXPECT_EQ(screen.last_line(), " Enter Yes   Alt+N No   Tab next   Ctrl+C leave\n"); });
    screen.keys({Key::enter});  // Yes is the default.
    EXPECT_EQ(ask(), forms::MessageAnswer::yes);
    EXPECT_EQ(screen.beeps, 1);
    screen.type(U"n");
    EXPECT_EQ(ask(), forms::MessageAnswer::no);
    const std::u16string text = u"first line\n" + std::u16string(80, u'w') + u"\nthe last line";
    screen.look([&] {
        EXPECT_TRUE(screen.shows(std::string(66, 'w')));
        EXPECT_TRUE(screen.shows("the last line"));
    });
    screen.keys({Key::escape});
    EXPECT_EQ(toolkit.message_box({u"Title", text}), forms::MessageAnswer::ok);
    EXPECT_FALSE(toolkit.ended());
}

TEST_F(OnTerminal, MenuOpensBelowThePointerAndIsDismissedByAPressBesideIt) {
    SampleForm form(toolkit);
    form.pages.set_tab(1);
    form.list.add_row({}, u"row");
    form.on_press = [&](const SampleForm::Press&) { toolkit.pop_up_menu(form, form.list_menu); };
    const Point row{40, 6};
    const auto open_menu = [&] {
        screen.mouse(MouseAction::press, row, forms::MouseButton::right);
        screen.mouse(MouseAction::release, row, forms::MouseButton::right);
    };
    screen.size_now = {80, 30};
    open_menu();
    screen.look([&] { EXPECT_EQ(screen.find(U"▸First!"), (Point{row.column + 1, row.row + 2})); });
    screen.keys({Key::down, Key::enter});
    open_menu();
    screen.click({row.column + 2, row.row + 2});
    open_menu();
    screen.click({2, 2});
    open_menu();
    screen.keys({Key::escape});
    open_menu();
    screen.type(U"s");
    screen.keys({Key::escape});
    form.show_modal();
    EXPECT_THAT(form.log, ElementsAre("load", "activate", "mnuSecond", "mnuFirst", "mnuSecond", "cmdCancel"));
    EXPECT_EQ(screen.beeps, 0);
}

TEST_F(OnTerminal, FollowsTheSizeTakesNoInputWhileItIsTooSmallAndEndsWithTheProcess) {
    SampleForm form(toolkit);
    screen.size_now = {160, 50};
    screen.click({1, 1});  // Beside the form.
    screen.look([&] { EXPECT_EQ(screen.find(U"┌─ Sample "), (Point{29, 4})) << "in the middle"; });
    screen.look([&] { screen.size_now = {79, 24}; });
    screen.keys({Key::enter});
    screen.look([&] {
        EXPECT_TRUE(screen.shows("79 by 24"));
        EXPECT_FALSE(screen.shows("Sample"));
    });
    form.show_modal();
    EXPECT_THAT(form.log, ElementsAre("load", "activate", "unload", "unloaded"));
    EXPECT_EQ(screen.beeps, 1);
    EXPECT_TRUE(toolkit.ended());
    EXPECT_EQ(toolkit.message_box({u"", u"", forms::MessageButtons::yes_no}), forms::MessageAnswer::no);
}

// ---- Every size ---------------------------------------------------------------------------------------

/// What is wrong with a form's layout: sizes that differ where the controls' do not, buttons that meet or are cut.
std::string faults_of(const forms::Form& form, Size terminal) {
    using forms::ControlKind;
    std::string faults;
    std::map<std::tuple<ControlKind, int, int>, Area> sizes;
    const std::vector<PlacedControl> controls = lay_out(form, scale_for(terminal));
    for (const PlacedControl& placed : controls) {
        const forms::Control& control = *placed.control;
        const ControlKind kind = control.kind();
        if (kind == ControlKind::label || kind == ControlKind::line || kind == ControlKind::option_button) continue;
        const auto [known, is_new] =
            sizes.try_emplace({kind, control.place().width, control.place().height}, placed.cells);
        const Area& cells = placed.cells;
        if (cells.width() != known->second.width() || cells.height() != known->second.height()) {
            faults += control.name() + " has another size; ";
        }
        if (cells.meet(placed.clip) != cells) faults += control.name() + " is cut; ";
        if (kind != ControlKind::button) continue;
        if (text_width(parse_caption(control.caption()).text) > cells.width() - 2)
            faults += control.name() + " is short; ";
        for (const PlacedControl& other : controls) {
            const Area common = other.cells.meet(cells);
            if (&other != &placed && other.control->parent() == control.parent() && common.width() > 0 &&
                common.height() > 0) {
                faults += control.name() + " meets " + other.control->name() + "; ";
            }
        }
    }
    return faults;
}

TEST_F(OnTerminal, ControlsOfOneSizeHaveOneSizeOnEveryScreen) {
    com::ModuleLifetime module;
    const Services services{.toolkit = toolkit,
                            .registry = native::registry(),
                            .files = native::files(),
                            .processes = native::processes(),
                            .code_page = native::code_page(),
                            .module = module,
                            .module_folder = u"C:\\Brivola"};
    dlgFirmwareWizard wizard(services, {});
    dlgDispUpdater run(services);
    dlgHandleSignOption session(services);
    frmAbout about(services);
    auto& pages = static_cast<forms::TabPages&>(*wizard.find("SSTab1"));
    for (int columns = 80; columns <= 250; ++columns) {
        for (int rows = 24; rows <= 80; ++rows) {
            // Rows and columns are independent: every value of one with a few of the other.
            if (columns % 10 != 0 && rows % 10 != 0) continue;
            for (std::int16_t page = 0; page < 5; ++page) {
                pages.set_tab(page);
                ASSERT_EQ(faults_of(wizard, {columns, rows}), "") << columns << " by " << rows << ", page " << page;
            }
            ASSERT_EQ(faults_of(run, {columns, rows}) + faults_of(session, {columns, rows}) +
                          faults_of(about, {columns, rows}),
                      "")
                << columns << " by " << rows;
        }
    }
}

}  // namespace
}  // namespace vex::platform::native::terminal
