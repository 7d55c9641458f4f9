// Keyboard and mouse on forms over each other, and where everything stands.
#include <map>

#include <gmock/gmock.h>

#include "about/frm_about.h"
#include "platform/native/machine.h"
#include "platform/native/terminal/terminal_toolkit.h"
#include "platform/native/terminal/text.h"
#include "tests/terminal/fake_screen.h"
#include "update/dlg_disp_updater.h"
#include "update/dlg_handle_sign_option.h"
#include "wizard/dlg_firmware_wizard.h"

namespace vex::platform::native::terminal {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

/// A list, a box, a group of options on a page and a panel with a shape; whatever happens is written down.
class SampleForm final : public forms::Form {
public:
    explicit SampleForm(forms::Toolkit& shown_on)
        : Form(shown_on, {.name = "Sample", .caption = u"Sample", .width = 6000, .height = 3900}) {
        list.columns = {{u"Name", 2000}, {u"Status", 2000}};
        lay_out({
            {.control = list, .name = "list", .at = {200, 0, 5000, 1170}, .tab_index = 0},
            {.control = box, .name = "box", .at = {200, 1365, 1200, 195}, .tab_index = 2},
            {.control = check, .name = "check", .at = {2000, 1365, 2000, 195}, .text = u"&Wipe", .tab_index = 3},
            {.control = pages, .name = "pages", .at = {200, 1560, 2600, 1560}},
            {.control = red, .name = "red", .parent = &pages, .page = 1, .at = {0, 195, 2000, 195}, .text = u"red",
             .tab_index = 4},
            {.control = blue, .name = "blue", .parent = &pages, .page = 1, .at = {0, 390, 2000, 195}, .text = u"blue",
             .tab_index = 5},
            {.control = panel, .name = "panel", .at = {3000, 1560, 2600, 1560}, .back = forms::kDarkGrey},
            {.control = node, .name = "node", .parent = &panel, .at = {330, 465, 330, 285}},
            {.control = stop, .name = "stop", .at = {1300, 3500, 900, 315}, .text = u"&Stop", .tab_index = 8},
            {.control = ok, .name = "ok", .at = {200, 3500, 900, 315}, .text = u"OK", .tab_index = 9},
        });
        for (int i = 0; i < 20; ++i) list.add_row({}, std::u16string(1, static_cast<char16_t>(u'a' + i)));
        red.set_value(true);
        ok.is_default = true;
        for (forms::Control* control : controls()) {
            if (control != &pages) control->on_click = [this, control] { happened.push_back(control->name()); };
        }
        panel.on_mouse_down = [this](forms::MouseButton, float x, float y) {
            const bool in_node = x > 330 && x < 660 && y > 465 && y < 750;
            happened.emplace_back(in_node ? "node" : "panel");
        };
    }

    std::vector<std::string> happened;
    forms::Button ok, stop;
    forms::ListView list;
    forms::TextBox box;
    forms::CheckBox check;
    forms::TabPages pages;
    forms::OptionButton red, blue;
    forms::Panel panel;
    forms::Shape node;
};

class Window : public testing::Test, public WindowOwner {
protected:
    Window() { draw(); }
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
    void mouse(MouseAction action, Point at, forms::MouseButton button = forms::MouseButton::left) {
        window.handle(MouseEvent{action, button, at});
        draw();
    }
    void click(Point at) {
        mouse(MouseAction::press, at);
        mouse(MouseAction::release, at);
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

    FakeScreen screen;
    TerminalToolkit toolkit{screen};
    SampleForm form{toolkit};
    IconCharacters icons;
    int beeps = 0;
    FormWindow window{form, *this, icons};
};

TEST_F(Window, FocusGoesByTheKeyboardOrderAndToThePageThatOpens) {
    std::vector<std::string> order;
    const auto next = [&](Key key) {
        order.push_back(window.focus()->name());
        press({key});
    };
    EXPECT_EQ(window.focus(), &form.ok) << "a page without controls leaves it to the default button";
    for (int i = 0; i < 5; ++i) next(Key::tab);
    EXPECT_THAT(order, ElementsAre("ok", "list", "box", "check", "stop"));
    form.pages.set_tab(1);
    EXPECT_EQ(window.focus(), &form.red);
    press({Key::down});
    EXPECT_TRUE(form.blue.value());
    press({Key::back_tab});
    EXPECT_EQ(window.focus(), &form.check);
    press({Key::tab});
    EXPECT_EQ(window.focus(), &form.blue) << "a group is one stop, the chosen one";
    window.set_focus(form.stop);
    form.stop.set_enabled(false);
    EXPECT_EQ(window.focus(), &form.blue) << "never the neighbour of what is disabled";
}

TEST_F(Window, KeysPressWhatTheyAreSaidToPress) {
    EXPECT_EQ(keys(), "Enter OK, Alt+W Wipe, Alt+S Stop, Tab next, ");
    form.stop.is_cancel = true;
    window.set_focus(form.list);
    EXPECT_EQ(keys(), "Enter OK, Space choose, ↑↓ move, Alt+W Wipe, Alt+S Stop, Esc Stop, Tab next, ");
    press({Key::enter, Key::escape});
    type(U"w", true);
    form.stop.set_enabled(false);
    EXPECT_EQ(keys(), "Enter OK, Space check, Alt+W Wipe, Tab next, ");
    type(U" sw");
    type(U"s", true);
    EXPECT_THAT(form.happened, ElementsAre("ok", "stop", "check", "check", "check"));
    EXPECT_EQ(beeps, 2);
}

TEST_F(Window, OnlyAPressAndAReleaseOnOneRowActOnIt) {
    const Area list = cells(form.list);
    const Point first{list.left + 3, list.top + 1};
    click(first);
    EXPECT_EQ(form.list.selected(), 0U);
    EXPECT_THAT(form.happened, ElementsAre("list"));
    // Another row, the header, the scroll bar; its lower end is the end of the list.
    mouse(MouseAction::press, first);
    mouse(MouseAction::release, {first.column, first.row + 1});
    click({first.column, list.top});
    click({list.right - 1, list.top + 2});
    click({list.right - 1, list.bottom - 1});
    EXPECT_EQ(form.list.row_top(19), 5 * 195);
    EXPECT_EQ(form.list.selected(), 0U);
    mouse(MouseAction::wheel_up, first);
    EXPECT_EQ(form.list.row_top(19), (5 + 3) * 195);
    // Below the last row.
    form.list.clear();
    form.list.add_row({}, u"only");
    form.list.select(0);
    draw();
    click({first.column, list.bottom - 1});
    EXPECT_THAT(form.happened, ElementsAre("list"));
    // On a button the release may be anywhere on it.
    const Area stop = cells(form.stop);
    mouse(MouseAction::press, {stop.left, stop.top});
    mouse(MouseAction::release, {stop.right - 1, stop.top});
    mouse(MouseAction::press, {stop.left, stop.top});
    mouse(MouseAction::release, {stop.left, stop.top - 1});
    EXPECT_THAT(form.happened, ElementsAre("list", "stop"));
}

TEST_F(Window, ListKeepsItsSelectionInSightAndFollowsTheRowBeingWorkedOn) {
    window.set_focus(form.list);
    press({Key::down, Key::page_down});
    EXPECT_EQ(form.list.selected(), 5U) << "six rows less the header";
    press({Key::end});
    EXPECT_EQ(form.list.row_top(19), 5 * 195);
    form.list.set_row_color(2, forms::kRed);
    draw();
    EXPECT_EQ(form.list.row_top(2), 195);
    form.list.on_click = [this] { form.list.set_row_color(19, forms::kRed); };
    type(U" ");
    EXPECT_EQ(form.list.row_top(2), 195) << "what the user changes does not move the list";
    form.list.select(7);
    draw();
    EXPECT_EQ(form.list.row_top(7), 5 * 195);
    type(U"x");
    EXPECT_EQ(form.box.text(), u"x") << "letters belong into a field";
    // The menu key, from anywhere: the selected row, or the first that failed.
    form.list.on_mouse_down = [this](forms::MouseButton, float, float y) {
        form.happened.push_back(std::to_string(static_cast<int>(y) / 195));
    };
    press({Key::menu});
    form.list.select(std::nullopt);
    press({Key::menu});
    EXPECT_THAT(form.happened, ElementsAre("5", "1"));
    EXPECT_THAT(keys(), HasSubstr("F10 menu"));
}

TEST_F(Window, TextBoxTakesWhatIsTypedAndPasted) {
    window.set_focus(form.box);
    type(U"abc日");
    press({Key::left, Key::backspace, Key::home, Key::remove});
    EXPECT_EQ(form.box.text(), u"b日");
    window.handle(Paste{U"1\r\n2"});
    EXPECT_EQ(form.box.text(), u"12b日");
    press({Key::end});
    type(U"0123456789");
    // Twelve cells with brackets: the end of the text is in sight, and the cursor after it.
    const Area box = cells(form.box);
    EXPECT_EQ(window.cursor(), (Point{box.right - 2, box.top}));
    EXPECT_THAT(text_picture(window.picture()), HasSubstr("▸123456789 ◂"));
    click({box.left + 2, box.top});
    type(U"-");
    EXPECT_EQ(form.box.text(), u"12b日01-23456789");
    form.happened.clear();
    window.set_focus(form.ok);
    window.handle(Paste{U"y\r"});
    draw();
    EXPECT_THAT(text_picture(window.picture()), HasSubstr("[…-23456789]")) << "without the focus, the end";
    EXPECT_TRUE(form.happened.empty());
}

TEST_F(Window, MouseMeetsInAPanelWhatIsDrawnThere) {
    const Area node = cells(form.node);
    for (int column = node.left; column < node.right; ++column) mouse(MouseAction::press, {column, node.top});
    mouse(MouseAction::press, {node.left - 1, node.top});
    mouse(MouseAction::press, {node.right, node.top});
    mouse(MouseAction::press, {node.left, node.top - 1});
    mouse(MouseAction::press, {node.left, node.bottom});
    EXPECT_THAT(form.happened, ElementsAre("node", "node", "node", "panel", "panel", "panel", "panel"));
}

TEST_F(Window, ColumnsShareTheWidthAsTheyNeedIt) {
    form.list.clear();
    for (const char16_t* name : {u"Platform north of the main hall 1", u"Platform north of the main hall 2"}) {
        form.list.set_sub_item(form.list.add_row({}, name), 0, u"Updated -");
    }
    draw();
    EXPECT_THAT(text_picture(window.picture()), HasSubstr(" Platform north of the main hall 1 Updated -"));
    form.list.set_sub_item(0, 0, u"FAILED - Unable to open connection to display!");
    draw();
    EXPECT_THAT(text_picture(window.picture()), HasSubstr("main hall 2")) << "two that are cut are still told apart";
    window.set_focus(form.list);
    press({Key::right, Key::right, Key::right, Key::right, Key::right});
    EXPECT_THAT(text_picture(window.picture()), HasSubstr("connection to display!"));
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
    std::string chosen;
    forms::Menu menu{"menu", u"", {{"r", u"Retry!", [&] { chosen += 'r'; }}, {"o", u"&Other", [&] { chosen += 'o'; }}}};
    form.list.on_mouse_down = [&](forms::MouseButton button, float, float) {
        if (button == forms::MouseButton::right) toolkit.pop_up_menu(form, menu);
    };
    const Point row{32, 5};
    const auto open_menu = [&] {
        screen.mouse(MouseAction::press, row, forms::MouseButton::right);
        screen.mouse(MouseAction::release, row, forms::MouseButton::right);
    };
    open_menu();
    screen.look([&] { EXPECT_EQ(screen.find(U"▸Retry!"), (Point{row.column + 1, row.row + 2})); });
    screen.keys({Key::down, Key::enter});
    open_menu();
    screen.click({row.column + 2, row.row + 2});
    open_menu();
    screen.click({2, 2});
    open_menu();
    screen.keys({Key::escape});
    open_menu();
    screen.type(U"r");
    screen.keys({Key::escape});
    form.show_modal();
    EXPECT_EQ(chosen, "orr");
    EXPECT_EQ(screen.beeps, 0);
    EXPECT_FALSE(toolkit.ended());
}

TEST_F(OnTerminal, FollowsTheSizeAndTakesNoInputWhileItIsTooSmall) {
    SampleForm form(toolkit);
    screen.click({1, 1});  // Beside the form.
    screen.look([&] { screen.size_now = {79, 24}; });
    screen.keys({Key::enter});
    screen.look([&] {
        EXPECT_TRUE(screen.shows("79 by 24"));
        EXPECT_FALSE(screen.shows("Sample"));
        screen.size_now = {160, 50};
    });
    screen.look([&] { EXPECT_EQ(screen.find(U"┌─ Sample "), (Point{29, 7})) << "in the middle"; });
    form.show_modal();
    EXPECT_TRUE(form.happened.empty());
    EXPECT_EQ(screen.beeps, 1);
}

TEST_F(OnTerminal, EndOfTheProcessClosesEverything) {
    SampleForm outer(toolkit);
    SampleForm inner(toolkit);
    outer.ok.on_click = [&] {
        inner.show_modal(&outer);
        EXPECT_EQ(toolkit.message_box({u"", u"", forms::MessageButtons::yes_no}), forms::MessageAnswer::no);
    };
    screen.keys({Key::enter});
    outer.show_modal();
    EXPECT_TRUE(toolkit.ended());
    EXPECT_FALSE(inner.loaded());
    EXPECT_FALSE(outer.loaded());
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
        if (text_width(parse_caption(control.caption()).text) > cells.width() - 2) faults += control.name() + " is short; ";
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
            for (const forms::Form* form : {static_cast<const forms::Form*>(&run), static_cast<const forms::Form*>(&session), static_cast<const forms::Form*>(&about)}) {
                ASSERT_EQ(faults_of(*form, {columns, rows}), "") << columns << " by " << rows;
            }
        }
    }
}

}  // namespace
}  // namespace vex::platform::native::terminal
