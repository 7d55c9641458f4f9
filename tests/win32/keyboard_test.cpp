// The keyboard on real windows: order, mnemonics, default and cancel keys, and where the focus goes.
#include "platform/win32/windows_api.h"

#include "simulator/win32/win32_screen.h"
#include "tests/win32/window_fixture.h"

namespace vex::test {
namespace {

using testing::ElementsAre;

class KeyboardTest : public WindowTest {};

TEST_F(KeyboardTest, TabFollowsTheKeyboardOrderAndComesRound) {
    form.on_load = [&] { form.option_a.set_value(true); };
    // What lies on the pages comes where they stand, whatever its own numbers.
    form.pages.set_tab_index(1);
    std::vector<std::u16string> visited;
    for (int stop = 0; stop < 6; ++stop) {
        user.then([&] {
            visited.push_back(focused());
            press_key(VK_TAB);
        });
    }
    show();
    // Of options only the chosen one is a stop.
    EXPECT_THAT(visited, ElementsAre(u"cmdOk", u"text", u"option_a", u"check", u"cmdCancel", u"cmdOk"));
}

TEST_F(KeyboardTest, ArrowsChooseAmongOptions) {
    form.on_load = [&] { form.option_a.set_value(true); };
    user.then([&] { SetFocus(window_of(u"option_a")); }).then([&] { press_key(VK_DOWN); }).then([&] {
        EXPECT_EQ(focused(), u"option_b");
        EXPECT_TRUE(form.option_b.value());
        EXPECT_FALSE(form.option_a.value());
    });
    show();
}

TEST_F(KeyboardTest, EnterPressesTheButtonThatHasTheFocusAndElseTheDefaultOne) {
    const auto has_border = [&](const char16_t* button) {
        return (GetWindowLongPtrW(window_of(button), GWL_STYLE) & BS_TYPEMASK) == BS_DEFPUSHBUTTON;
    };
    const auto give_focus = [&](const char16_t* control) {
        // As after a dialog over the form, not as the Tab key does.
        return [&, control] { SetFocus(window_of(control)); };
    };
    const auto press_enter = [&] { press_key(VK_RETURN); };
    user.then(give_focus(u"cmdCancel"))
        .then([&] { EXPECT_TRUE(has_border(u"cmdCancel") && !has_border(u"cmdOk")); })
        .then(give_focus(u"text"))
        .then([&] { EXPECT_TRUE(has_border(u"cmdOk") && !has_border(u"cmdCancel")); })
        .then(press_enter)
        .then(give_focus(u"cmdCancel"))
        .then(press_enter);
    form.show_modal();
    EXPECT_THAT(form.log, ElementsAre("load", "activate", "cmdOk", "cmdCancel"));
}

TEST_F(KeyboardTest, EscPressesTheCancelButtonUnlessItIsDisabled) {
    user.then([&] {
            form.cmdCancel.set_enabled(false);
            press_key(VK_ESCAPE);
        })
        .then([&] {
            EXPECT_THAT(form.log, ElementsAre("load", "activate"));
            form.cmdCancel.set_enabled(true);
            press_key(VK_ESCAPE);
        });
    form.show_modal();
    EXPECT_THAT(form.log, ElementsAre("load", "activate", "cmdCancel"));
}

TEST_F(KeyboardTest, MnemonicChoosesItsControl) {
    user.then([&] { press_alt_and(u'b'); }).then([&] { EXPECT_TRUE(form.option_b.value()); });
    show();
    EXPECT_THAT(form.log, ElementsAre("load", "activate", "option_b", "cmdCancel"));
}

TEST_F(KeyboardTest, FocusLeavesWhatCanNoLongerBeUsed) {
    user.then([&] {
            EXPECT_EQ(focused(), u"cmdOk");
            form.cmdOk.set_enabled(false);
            EXPECT_EQ(focused(), u"cmdCancel");
            SetFocus(window_of(u"text"));
        })
        .then([&] {
            form.pages.set_tab(1);
            EXPECT_NE(focused(), u"text");
            EXPECT_NE(GetFocus(), nullptr);
            SetFocus(window_of(u"list"));
        })
        .then([&] {
            form.list.set_visible(false);
            EXPECT_NE(focused(), u"list");
            EXPECT_TRUE(IsWindowEnabled(GetFocus()) && IsWindowVisible(GetFocus()));
        });
    show();
}

TEST_F(KeyboardTest, MenuKeyIsARightPressInTheSelectedRow) {
    form.pages.set_tab(1);
    for (const char16_t* name : {u"Row 1", u"Row 2", u"Row 3"}) form.list.add_row({}, name);
    form.list.select(1);
    form.on_press = [&](const SampleForm::Press& press) {
        EXPECT_GT(press.y, static_cast<float>(form.list.row_top(1)));
        EXPECT_LT(press.y, static_cast<float>(form.list.row_top(2)));
    };
    user.then([&] { SendMessageW(window_of(u"list"), WM_CONTEXTMENU, 0, -1); });
    show();
    ASSERT_EQ(form.presses.size(), 1U);
    EXPECT_EQ(form.presses[0].button, forms::MouseButton::right);
}

TEST_F(KeyboardTest, ListWithoutASelectionShowsItsFocus) {
    form.pages.set_tab(1);
    const auto rows_look = [&] {
        const HWND list = window_of(u"list");
        RECT area = {};
        GetClientRect(list, &area);
        RedrawWindow(list, nullptr, nullptr, RDW_INVALIDATE | RDW_UPDATENOW);
        const platform::win32::WindowContext context(list);
        std::vector<COLORREF> edge;
        for (LONG y = 0; y < area.bottom; ++y) edge.push_back(GetPixel(context.dc(), 0, y));
        return edge;
    };
    for (const std::size_t rows : {0U, 1U}) {
        user.then([&, rows] {
            if (rows > 0) form.list.add_row({}, u"Row 1");
            SetFocus(window_of(u"cmdOk"));
            const auto without_focus = rows_look();
            SetFocus(window_of(u"list"));
            EXPECT_NE(rows_look(), without_focus);
        });
    }
    show();
}

TEST_F(KeyboardTest, ArrowsAndLettersSelectRows) {
    form.pages.set_tab(1);
    for (const char16_t* name : {u"Alpha", u"Beta", u"Gamma"}) form.list.add_row({}, name);
    form.list.select(0);
    user.then([&] { SetFocus(window_of(u"list")); })
        .then([&] { press_key(VK_DOWN); })
        .then([&] {
            EXPECT_EQ(form.list.selected(), 1U);
            PostMessageW(GetFocus(), WM_CHAR, u'g', 1);
        })
        .then([&] { EXPECT_EQ(form.list.selected(), 2U); });
    show();
}

}  // namespace
}  // namespace vex::test
