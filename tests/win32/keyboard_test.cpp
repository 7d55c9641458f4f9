// The keyboard on real windows: order, mnemonics, default and cancel keys, and where the focus goes.
#include "platform/win32/windows_api.h"

#include "simulator/win32/win32_screen.h"
#include "tests/win32/window_fixture.h"

namespace vex::test {
namespace {

using testing::ElementsAre;

class KeyboardTest : public WindowTest {
protected:
    /// What the user does: puts the focus somewhere, as a dialog over the form does when it goes, or presses a key.
    auto focus(const char16_t* control) {
        return [this, control] { SetFocus(window_of(control)); };
    }
    auto key(WPARAM key) {
        return [this, key] { press_key(key); };
    }
    /// The list with rows, and the first one selected.
    void show_list(std::initializer_list<const char16_t*> rows) {
        form.pages.set_tab(1);
        for (const char16_t* name : rows) form.list.add_row({}, name);
        form.list.select(0);
    }
};

TEST_F(KeyboardTest, TabFollowsTheKeyboardOrderAndArrowsChooseAmongOptions) {
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
    user.then(focus(u"option_a")).then(key(VK_DOWN));
    show([&] {
        EXPECT_EQ(focused(), u"option_b");
        EXPECT_TRUE(form.option_b.value() && !form.option_a.value());
    });
    // Of options only the chosen one is a stop.
    EXPECT_THAT(visited, ElementsAre(u"cmdOk", u"text", u"option_a", u"check", u"cmdCancel", u"cmdOk"));
}

TEST_F(KeyboardTest, EnterPressesTheButtonThatHasTheFocusAndElseTheDefaultOne) {
    const auto expect_border_of = [&](const std::u16string& button) {
        for (const char16_t* each : {u"cmdOk", u"cmdCancel"}) {
            const auto type = GetWindowLongPtrW(window_of(each), GWL_STYLE) & BS_TYPEMASK;
            EXPECT_EQ(type == BS_DEFPUSHBUTTON, each == button);
        }
    };
    user.then(focus(u"cmdCancel"))
        .then([&] { expect_border_of(u"cmdCancel"); })
        .then(focus(u"text"))
        .then([&] { expect_border_of(u"cmdOk"); })
        .then(key(VK_RETURN))
        .then(focus(u"cmdCancel"))
        .then(key(VK_RETURN));
    form.show_modal();
    EXPECT_THAT(form.log, ElementsAre("load", "activate", "cmdOk", "cmdCancel"));
}

TEST_F(KeyboardTest, EscPressesTheCancelButtonUnlessItIsDisabledAndMnemonicsChooseTheirControl) {
    form.cmdCancel.set_enabled(false);
    user.then(key(VK_ESCAPE))
        .then([&] { PostMessageW(focus_window(), WM_SYSCHAR, u'b', KF_ALTDOWN << 16 | 1); })
        .then([&] { form.cmdCancel.set_enabled(true); })
        .then(key(VK_ESCAPE));
    form.show_modal();
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
            EXPECT_NE(focus_window(), nullptr);
            SetFocus(window_of(u"list"));
        });
    show([&] {
        form.list.set_visible(false);
        EXPECT_NE(focused(), u"list");
        EXPECT_TRUE(IsWindowEnabled(focus_window()) && IsWindowVisible(focus_window()));
    });
}

TEST_F(KeyboardTest, ListWithoutASelectionShowsItsFocus) {
    show_list({});
    form.list.select(std::nullopt);
    const auto rows_look = [&](const char16_t* focused) {
        SetFocus(window_of(focused));
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
            const auto without_focus = rows_look(u"cmdOk");
            EXPECT_NE(rows_look(u"list"), without_focus);
            EXPECT_EQ(rows_look(u"cmdOk"), without_focus);
        });
    }
    show();
}

TEST_F(KeyboardTest, ArrowsAndLettersSelectRowsAndTheMenuKeyIsARightPressThere) {
    show_list({u"Alpha", u"Beta", u"Gamma"});
    user.then(focus(u"list")).then(key(VK_DOWN)).then([&] {
        EXPECT_EQ(form.list.selected(), 1U);
        SendMessageW(focus_window(), WM_CONTEXTMENU, 0, -1);
        ASSERT_EQ(form.presses.size(), 1U);
        EXPECT_EQ(form.presses[0].button, forms::MouseButton::right);
        EXPECT_GT(form.presses[0].y, static_cast<float>(form.list.row_top(1)));
        EXPECT_LT(form.presses[0].y, static_cast<float>(form.list.row_top(2)));
        PostMessageW(focus_window(), WM_CHAR, u'g', 1);
    });
    show([&] { EXPECT_EQ(form.list.selected(), 2U); });
}

}  // namespace
}  // namespace vex::test
