// Keyboard and mouse on one form.
#include "platform/native/terminal/form_window.h"

#include <memory>

#include <gmock/gmock.h>

#include "forms/scripted_toolkit.h"
#include "tests/terminal/fake_screen.h"

namespace vex::platform::native::terminal {
namespace {

using testing::ElementsAre;

/// Two groups of options, a list, a box and a panel with a shape; whatever happens is written down.
class SampleForm final : public forms::Form {
public:
    explicit SampleForm(forms::Toolkit& shown_on)
        : Form(shown_on, {.name = "Sample", .caption = u"Sample", .width = 6000, .height = 3900}) {
        list.columns = {{u"Name", 2000}, {u"Status", 2000}};
        left.captions = {u"One", u"Two"};
        lay_out({
            {.control = ok, .name = "ok", .at = {200, 3500, 900, 315}, .text = u"OK", .tab_index = 9},
            {.control = stop, .name = "stop", .at = {1300, 3500, 900, 315}, .text = u"&Stop", .tab_index = 8},
            {.control = list, .name = "list", .at = {200, 0, 5000, 1170}, .tab_index = 1},
            {.control = box, .name = "box", .at = {200, 1365, 1200, 195}, .tab_index = 2},
            {.control = check, .name = "check", .at = {2000, 1365, 2000, 195}, .text = u"&Wipe", .tab_index = 3},
            {.control = left, .name = "left", .at = {200, 1560, 2600, 780}},
            {.control = red, .name = "red", .parent = &left, .page = 0, .at = {0, 0, 2000, 195}, .text = u"red",
             .tab_index = 4},
            {.control = blue, .name = "blue", .parent = &left, .page = 0, .at = {0, 195, 2000, 195}, .text = u"blue",
             .tab_index = 5},
            {.control = hidden, .name = "hidden", .parent = &left, .page = 1, .at = {0, 0, 2000, 195},
             .text = u"hidden",
             .tab_index = 6},
            {.control = panel, .name = "panel", .at = {3000, 1560, 2600, 1560}, .back = forms::kDarkGrey},
            {.control = node, .name = "node", .parent = &panel, .at = {330, 465, 330, 285}},
            {.control = label, .name = "label", .parent = &panel, .at = {900, 495, 330, 195}, .text = u"Choose"},
        });
        for (int i = 0; i < 20; ++i) {
            list.add_row({}, std::u16string(1, static_cast<char16_t>(u'a' + i)));
        }
        red.set_value(true);
        ok.is_default = true;
        for (forms::Control* control : controls()) {
            control->on_click = [this, control] { happened.push_back(control->name()); };
        }
        const auto note = [this](std::string name) {
            return [this, name](forms::MouseButton, float x, float y) {
                const forms::Rect& at = node.place();
                const auto within = [](float v, forms::Twips from, forms::Twips size) {
                    return v > static_cast<float>(from) && v < static_cast<float>(from + size);
                };
                const bool in_node = within(x, at.left, at.width) && within(y, at.top, at.height);
                happened.push_back("down in " + (name == "panel" && in_node ? "node" : name));
                list_y = y;
            };
        };
        panel.on_mouse_down = note("panel");
        list.on_mouse_down = note("list");
    }

    using forms::Form::toolkit;

    std::vector<std::string> happened;
    float list_y = 0;
    forms::Button ok, stop;
    forms::ListView list;
    forms::TextBox box;
    forms::CheckBox check;
    forms::TabPages left;
    forms::OptionButton red, blue, hidden;
    forms::Panel panel;
    forms::Shape node;
    forms::Label label;
};

class Window : public testing::Test, public WindowOwner {
protected:
    Window() { window.draw(true); }

    void beep() override { ++beeps; }
    void invalidate() override {}
    void draw_now() override {}

    void press(Key key) { press(KeyPress{key}); }
    void press(std::initializer_list<Key> keys) {
        for (const Key key : keys) press(key);
    }
    void press(const KeyPress& key) {
        window.handle(key);
        window.draw(true);
    }
    void type(std::u32string_view text) {
        for (const char32_t character : text) press(KeyPress{Key::character, character});
    }
    void mouse(MouseAction action, Point at, forms::MouseButton button = forms::MouseButton::left) {
        window.handle(MouseEvent{action, button, at});
        window.draw(true);
    }
    void click(Point at) {
        mouse(MouseAction::press, at);
        mouse(MouseAction::release, at);
    }
    std::string focus() { return window.focus() == nullptr ? "" : window.focus()->name(); }
    std::vector<std::string> tab_order(Key key, std::size_t count) {
        std::vector<std::string> names;
        for (std::size_t i = 0; i < count; ++i) {
            names.push_back(focus());
            press(key);
        }
        return names;
    }
    Area cells(const forms::Control& control) { return window.draw(true).find(control)->cells; }

    forms::ScriptedUser user;
    forms::ScriptedToolkit toolkit{user};
    SampleForm form{toolkit};
    IconCharacters icons;
    int beeps = 0;
    FormWindow window{form, *this, icons};
};

TEST_F(Window, TabFollowsTheTabIndexAndStopsOnceInAGroup) {
    EXPECT_THAT(tab_order(Key::tab, 7), ElementsAre("list", "box", "check", "red", "stop", "ok", "list"));
    EXPECT_THAT(tab_order(Key::back_tab, 4), ElementsAre("box", "list", "ok", "stop"));
    EXPECT_EQ(focus(), "red");
    form.stop.set_enabled(false);
    form.blue.set_value(true);
    EXPECT_THAT(tab_order(Key::tab, 6), ElementsAre("red", "ok", "list", "box", "check", "blue"));
    form.left.set_tab_index(1);
    EXPECT_THAT(tab_order(Key::tab, 5), ElementsAre("ok", "list", "blue", "box", "check")) << "where its container is";
}

TEST_F(Window, FocusGoesOnWhenItsControlIsGone) {
    window.set_focus(form.stop);
    form.stop.set_enabled(false);
    EXPECT_EQ(focus(), "ok");
    form.stop.set_enabled(true);
    window.set_focus(form.check);
    form.check.set_visible(false);
    EXPECT_EQ(focus(), "box") << "of two equally near ones the earlier";
    window.set_focus(form.red);
    form.left.set_tab(1);
    EXPECT_EQ(focus(), "box");
}

TEST_F(Window, ArrowsChooseAmongOptions) {
    window.set_focus(form.red);
    press(Key::down);
    EXPECT_EQ(focus(), "blue");
    EXPECT_TRUE(form.blue.value());
    EXPECT_FALSE(form.red.value());
    press(Key::down);
    EXPECT_EQ(focus(), "red");
    press(Key::up);
    EXPECT_TRUE(form.blue.value());
    EXPECT_THAT(form.happened, ElementsAre("blue", "red", "blue"));
}

TEST_F(Window, KeysPressButtonsAndBoxes) {
    press(Key::enter);
    EXPECT_THAT(form.happened, ElementsAre("ok")) << "the default button, from anywhere";
    window.set_focus(form.stop);
    press(Key::enter);
    EXPECT_EQ(form.happened.back(), "stop") << "the button that has the focus goes first";
    press(KeyPress{Key::character, U'w', true});
    EXPECT_EQ(form.check.value(), 1);
    EXPECT_EQ(focus(), "check");
    press(KeyPress{Key::character, U' '});
    EXPECT_EQ(form.check.value(), 0);
    press(KeyPress{Key::character, U's'});
    EXPECT_EQ(form.happened.back(), "stop") << "without Alt where letters mean nothing else";
    form.stop.set_enabled(false);
    press(KeyPress{Key::character, U's', true});
    EXPECT_EQ(beeps, 1);
}

TEST_F(Window, EscapePressesCancelOrAsksToClose) {
    form.stop.is_cancel = true;
    press(Key::escape);
    EXPECT_THAT(form.happened, ElementsAre("stop"));
    form.stop.is_cancel = false;
    form.happened.clear();
    press(Key::escape);
    EXPECT_TRUE(form.happened.empty());
    EXPECT_EQ(beeps, 0) << "the form took it";
}

TEST_F(Window, ListMovesItsSelectionAndKeepsItInSight) {
    press(Key::down);
    EXPECT_EQ(form.list.selected(), 0U);
    press(Key::page_down);
    EXPECT_EQ(form.list.selected(), 5U) << "six rows less the header";
    EXPECT_EQ(form.list.row_top(5), 5 * 195) << "the last of the five in sight";
    press(Key::end);
    EXPECT_EQ(form.list.selected(), 19U);
    EXPECT_EQ(form.list.row_top(19), 5 * 195);
    EXPECT_LT(form.list.row_top(0), 0);
    form.list.add_row({}, u"dark");
    form.list.add_row({}, u"Döner d");
    type(U"dÖner D");
    EXPECT_EQ(form.list.selected(), 21U) << "what is typed in one go belongs together, blanks too";
    press({Key::home, Key::up});
    EXPECT_EQ(form.list.selected(), 0U);
    form.list.clear();
    press(Key::down);
    EXPECT_EQ(beeps, 1);
}

TEST_F(Window, TextBoxTakesWhatIsTyped) {
    window.set_focus(form.box);
    type(U"abc日");
    press({Key::left, Key::backspace});
    type(U"X");
    press({Key::home, Key::remove});
    EXPECT_EQ(form.box.text(), u"bX日");
    press(Key::end);
    type(U"0123456789");
    EXPECT_EQ(form.box.text(), u"bX日0123456789");
    // Twelve cells with brackets: the end of the text is in sight, and the cursor after it.
    const FormPicture& picture = window.draw(true);
    EXPECT_EQ(picture.cursor, (Point{cells(form.box).right - 2, cells(form.box).top}));
    EXPECT_NE(text_picture(picture.canvas).find("▸123456789 ◂"), std::string::npos) << text_picture(picture.canvas);
    click({cells(form.box).left + 2, cells(form.box).top});
    type(U"-");
    EXPECT_EQ(form.box.text(), u"bX日01-23456789");
}

TEST_F(Window, ClickNeedsItsReleaseOnTheSameControl) {
    const Area stop = cells(form.stop);
    click({stop.left + 1, stop.top});
    EXPECT_THAT(form.happened, ElementsAre("stop"));
    EXPECT_EQ(focus(), "stop");
    mouse(MouseAction::press, {stop.left + 1, stop.top});
    mouse(MouseAction::release, {stop.left, stop.top - 1});
    EXPECT_EQ(form.happened.size(), 1U);
    form.stop.set_enabled(false);
    click({stop.left + 1, stop.top});
    EXPECT_EQ(form.happened.size(), 1U);
}

TEST_F(Window, MouseMeetsInAPanelWhatIsDrawnThere) {
    const Area node = cells(form.node);
    EXPECT_EQ(node.width(), 3);
    for (int column = node.left; column < node.right; ++column) {
        mouse(MouseAction::press, {column, node.top});
        EXPECT_EQ(form.happened.back(), "down in node") << column;
    }
    for (const Point beside : {Point{node.left - 1, node.top}, Point{node.right, node.top},
                               Point{node.left, node.top - 1}, Point{node.left, node.bottom}}) {
        mouse(MouseAction::press, beside);
        EXPECT_EQ(form.happened.back(), "down in panel") << beside.column << ", " << beside.row;
    }
    // A label takes the press itself, also where its text reaches beyond its place.
    form.happened.clear();
    const Area label = cells(form.label);
    EXPECT_EQ(label.width(), 6);
    mouse(MouseAction::press, {label.right - 1, label.top});
    EXPECT_TRUE(form.happened.empty());
}

TEST_F(Window, MouseAgreesWithTheListOnWhereItsRowsAre) {
    press(Key::end);
    const Area list = cells(form.list);
    mouse(MouseAction::press, {list.left + 3, list.top + 2}, forms::MouseButton::right);
    EXPECT_GT(form.list_y, static_cast<float>(form.list.row_top(16)));
    EXPECT_LT(form.list_y, static_cast<float>(form.list.row_top(17)));
    EXPECT_EQ(form.list.selected(), 19U) << "the handler selects on a right press, not the list";
    click({list.left + 3, list.top + 2});
    EXPECT_EQ(form.list.selected(), 16U);
    mouse(MouseAction::wheel_up, {list.left + 3, list.top + 2});
    EXPECT_EQ(form.list.row_top(16), (2 + 3) * 195);
    // The scroll bar: its lower end is the end of the list.
    click({list.right - 1, list.top + 1});
    EXPECT_EQ(form.list.row_top(0), 195) << "right below the header";
    click({list.right - 1, list.bottom - 1});
    EXPECT_EQ(form.list.row_top(19), 5 * 195);
    EXPECT_EQ(form.list.selected(), 16U);
}

TEST_F(Window, MenuKeyPressesTheSelectedRow) {
    press({Key::end, Key::menu});
    EXPECT_EQ(form.happened.back(), "down in list");
    EXPECT_GT(form.list_y, static_cast<float>(form.list.row_top(19)));
    EXPECT_EQ(window.pointer().row, cells(form.list).bottom - 1);
}

}  // namespace
}  // namespace vex::platform::native::terminal
