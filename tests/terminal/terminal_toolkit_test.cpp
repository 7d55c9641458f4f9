// Forms over each other, message boxes and menus on a terminal.
#include "platform/native/terminal/terminal_toolkit.h"

#include <gmock/gmock.h>

#include "core/runtime_error.h"
#include "tests/terminal/fake_screen.h"

namespace vex::platform::native::terminal {
namespace {

using testing::ElementsAre;

class SmallForm final : public forms::Form {
public:
    SmallForm(forms::Toolkit& shown_on, std::u16string_view title)
        : Form(shown_on, {.name = "Small", .caption = title, .width = 3000, .height = 1950}) {
        list.columns = {{u"Name", 1500}};
        lay_out({
            {.control = label, .name = "label", .at = {100, 0, 2800, 195}},
            {.control = button, .name = "button", .at = {100, 195, 900, 195}, .text = u"Do", .tab_index = 0},
            {.control = list, .name = "list", .at = {100, 390, 2800, 975}, .tab_index = 1},
        });
        list.add_row({}, u"first");
        list.add_row({}, u"second");
    }

    std::function<void()> activate;
    bool refuse = false;
    int activations = 0;
    forms::UnloadMode unload_mode = forms::UnloadMode::code;
    forms::Label label;
    forms::Button button;
    forms::ListView list;

protected:
    void Form_Activate() override {
        ++activations;
        if (activations == 1 && activate) activate();
    }
    void Form_QueryUnload(bool& cancel, forms::UnloadMode mode) override {
        unload_mode = mode;
        cancel = refuse;
    }
};

class OnTerminal : public testing::Test {
protected:
    NoDrives drives;
    FakeScreen screen;
    TerminalToolkit toolkit{screen, drives};
};

TEST_F(OnTerminal, NestedFormsStandCentredOverEachOther) {
    SmallForm outer(toolkit, u"Outer");
    SmallForm inner(toolkit, u"Inner");
    outer.button.on_click = [&] { inner.show_modal(&outer); };
    inner.button.on_click = [&] { inner.hide(); };
    screen.key(Key::enter, [&] {
        EXPECT_EQ(toolkit.top(), &outer);
        EXPECT_EQ(screen.find(U"┌─ Outer "), (Point{24, 5}));
    });
    screen.key(Key::enter, [&] {
        EXPECT_EQ(toolkit.top(), &inner);
        EXPECT_EQ(screen.find(U"┌─ Inner "), (Point{24, 5}));
        EXPECT_FALSE(screen.shows("Outer"));
        EXPECT_EQ(screen.cursor, (Point{29, 7})) << "the cursor is on the button that has the focus";
    });
    screen.key(Key::escape, [&] { EXPECT_TRUE(screen.shows("Outer")); });
    outer.show_modal();
    EXPECT_EQ(outer.activations, 1) << "the end of a form above it is no activation";
    EXPECT_FALSE(outer.loaded());
    EXPECT_FALSE(toolkit.ended());
}

TEST_F(OnTerminal, FormIsOnTheScreenBeforeItsWorkBegins) {
    SmallForm form(toolkit, u"Busy");
    bool cancelled = false;
    form.button.on_click = [&] { cancelled = true; };
    form.activate = [&] {
        EXPECT_TRUE(screen.shows("Busy"));
        toolkit.pump_messages();
        EXPECT_FALSE(cancelled);
        form.label.set_caption(u"Sending block 7");
        toolkit.pump_messages();
        EXPECT_TRUE(screen.shows("Sending block 7"));
        const int frames = screen.frames;
        toolkit.pump_messages();
        EXPECT_EQ(screen.frames, frames) << "nothing changed, nothing is drawn";
        form.label.set_caption(u"Sending block 8");
        form.label.refresh();
        EXPECT_TRUE(screen.shows("Sending block 8"));
        screen.key(Key::enter);
        toolkit.pump_messages();
        EXPECT_TRUE(cancelled);
        form.hide();
    };
    form.show_modal();
    EXPECT_TRUE(cancelled);
}

TEST_F(OnTerminal, QuestionIsAnsweredNotClosed) {
    SmallForm form(toolkit, u"Form");
    std::vector<forms::MessageAnswer> answers;
    form.button.on_click = [&] {
        answers.push_back(
            toolkit.message_box({u"Verify Cancellation", u"Are you sure?", forms::MessageButtons::yes_no}));
    };
    screen.key(Key::enter);
    screen.key(Key::escape, [&] { EXPECT_TRUE(screen.shows("Verify Cancellation")); });
    screen.key(Key::enter);  // Yes is the default.
    screen.key(Key::enter);
    screen.type(U"n");
    screen.key(Key::enter);
    screen.alt(U'y');
    screen.key(Key::escape);
    form.show_modal();
    EXPECT_THAT(answers, ElementsAre(forms::MessageAnswer::yes, forms::MessageAnswer::no, forms::MessageAnswer::yes));
    EXPECT_EQ(screen.beeps, 1);
    EXPECT_EQ(form.activations, 1);
    // Escape closes a box that only tells something.
    screen.key(Key::escape);
    EXPECT_EQ(toolkit.message_box({u"Title", u"Text"}), forms::MessageAnswer::ok);
}

TEST_F(OnTerminal, MessageBoxIsAsLargeAsItsText) {
    const std::u16string text = u"first line\n" + std::u16string(80, u'w') + u"\nthe last line";
    screen.key(Key::enter, [&] {
        EXPECT_TRUE(screen.shows("first line"));
        EXPECT_TRUE(screen.shows("the last line"));
        EXPECT_TRUE(screen.shows(std::string(66, 'w')));
    });
    toolkit.message_box({u"A title that is longer than its text", text});
}

TEST_F(OnTerminal, MenuOpensBelowThePointerAndTellsWhatWasChosen) {
    SmallForm form(toolkit, u"Form");
    std::vector<std::string> chosen;
    const auto choose = [&chosen](const char* item) { return [&chosen, item] { chosen.push_back(item); }; };
    forms::Menu menu{"menu", u"Popup", {{"r", u"Retry!", choose("retry")}, {"o", u"&Other", choose("other")}}};
    form.list.on_mouse_down = [&](forms::MouseButton button, float, float) {
        if (button == forms::MouseButton::right) toolkit.pop_up_menu(form, menu);
    };
    const Point row{32, 9};
    screen.look([&] { EXPECT_EQ(screen.find(U"first"), (Point{27, 9})); });
    screen.mouse(MouseAction::press, row, forms::MouseButton::right);
    screen.mouse(MouseAction::release, row, forms::MouseButton::right);
    screen.look([&] { EXPECT_EQ(screen.find(U"▸Retry!"), (Point{33, 11})); });
    screen.keys({Key::down, Key::enter});
    // By the mouse, dismissed in two ways, and by its letter.
    const auto open_menu = [&] { screen.mouse(MouseAction::press, row, forms::MouseButton::right); };
    open_menu();
    screen.click({34, 11});
    open_menu();
    screen.mouse(MouseAction::press, {2, 2});
    open_menu();
    screen.key(Key::escape);
    open_menu();
    screen.type(U"o");
    screen.key(Key::escape);
    form.show_modal();
    EXPECT_THAT(chosen, ElementsAre("other", "retry", "other"));
    EXPECT_FALSE(toolkit.ended());
}

TEST_F(OnTerminal, FollowsTheSizeAndSaysWhenItIsTooSmall) {
    SmallForm form(toolkit, u"Form");
    bool clicked = false;
    form.button.on_click = [&] { clicked = true; };
    screen.look([&] { screen.size_now = {79, 24}; });
    screen.key(Key::enter, [&] {
        EXPECT_TRUE(screen.shows("79 by 24"));
        EXPECT_TRUE(screen.shows("80 by 24"));
        EXPECT_FALSE(screen.shows("Form"));
    });
    screen.look([&] { screen.size_now = {160, 50}; });
    screen.key(Key::escape, [&] {
        EXPECT_FALSE(clicked) << "what cannot be seen takes no input";
        const Point at = screen.find(U"┌─ Form ");
        EXPECT_EQ(at, (Point{54, 15})) << "larger, and still in the middle";
    });
    form.show_modal();
    EXPECT_FALSE(toolkit.ended());
}

TEST_F(OnTerminal, EndOfTheProcessClosesEverything) {
    SmallForm outer(toolkit, u"Outer");
    SmallForm inner(toolkit, u"Inner");
    outer.refuse = true;
    int shown_after_end = 0;
    outer.button.on_click = [&] {
        inner.show_modal(&outer);
        SmallForm late(toolkit, u"Late");
        late.activate = [&] { ++shown_after_end; };
        late.show_modal();
        EXPECT_EQ(toolkit.message_box({u"", u"", forms::MessageButtons::yes_no}), forms::MessageAnswer::no);
    };
    screen.key(Key::enter);
    outer.show_modal();
    EXPECT_TRUE(toolkit.ended());
    EXPECT_EQ(inner.unload_mode, forms::UnloadMode::system);
    EXPECT_FALSE(inner.loaded());
    EXPECT_EQ(shown_after_end, 0);
    EXPECT_TRUE(outer.loaded()) << "it refused; its display ended all the same";
}

TEST_F(OnTerminal, HandlersErrorComesOutOfShowModal) {
    SmallForm outer(toolkit, u"Outer");
    SmallForm inner(toolkit, u"Inner");
    inner.button.on_click = [] { throw RuntimeError(kTypeMismatch); };
    outer.button.on_click = [&] { inner.show_modal(&outer); };
    screen.keys({Key::enter, Key::enter});
    EXPECT_THROW(outer.show_modal(), RuntimeError);
    EXPECT_EQ(toolkit.top(), nullptr);
}

TEST_F(OnTerminal, PressBesideTheTopmostFormBeeps) {
    SmallForm form(toolkit, u"Form");
    screen.click({1, 1});
    screen.click({53, 5});  // The close box.
    form.show_modal();
    EXPECT_EQ(screen.beeps, 1);
    EXPECT_FALSE(form.loaded());
    EXPECT_EQ(form.unload_mode, forms::UnloadMode::control_menu);
}

}  // namespace
}  // namespace vex::platform::native::terminal
