// Forms on real windows: how they look to other programs, the keyboard, modal forms among the other windows of their
// thread, and what ends them from outside.
#include <gmock/gmock.h>

#include <map>

#include "core/unicode.h"
#include "platform/win32/form_context.h"
#include "platform/win32/window_name.h"
#include "simulator/win32/import_hook.h"
#include "simulator/win32/win32_screen.h"
#include "tests/toolkit/sample_form.h"
#include "tests/toolkit/side.h"
#include "tests/toolkit/test_user.h"

namespace vex::test {
namespace {

using testing::Contains;
using testing::ElementsAre;

class WindowTest : public testing::Test {
protected:
    HWND form_window() { return static_cast<HWND>(sim::top_form_window()); }
    HWND window_of(std::u16string_view control) { return platform::win32::find_named_window(form_window(), control); }
    /// The control that has the focus.
    std::u16string focused() { return platform::win32::window_name(focus_window()); }
    HWND focus_window() {
        // A display server's late word about a window that is gone can take the activation from the form.
        if (GetActiveWindow() == nullptr) SetForegroundWindow(form_window());
        return GetFocus();
    }
    /// A key press, as the keyboard driver puts it into the thread's queue. The form has handled it by the
    /// user's next action.
    void press_key(WPARAM key) { PostMessageW(focus_window(), WM_KEYDOWN, key, 1); }
    /// Shows the form until the user has nothing left to do; `last` is what he does at the end.
    void show(std::function<void()> last) {
        user.then(std::move(last)).then([this] { screen.click(u"cmdCancel"); });
        form.show_modal();
        EXPECT_EQ(user.actions_left(), 0U);
    }

    std::unique_ptr<Side> side = make_side();
    sim::Screen& screen = side->screen();
    TestUser user{screen};
    SampleForm form{side->toolkit()};
};

// ---- What there is to see

platform::win32::Scale screen_scale() {
    const platform::win32::WindowContext screen(nullptr);
    return {GetDeviceCaps(screen.dc(), LOGPIXELSX), GetDeviceCaps(screen.dc(), LOGPIXELSY)};
}

RECT client_rectangle(HWND window, HWND parent) {
    RECT place = {};
    GetWindowRect(window, &place);
    MapWindowPoints(nullptr, parent, reinterpret_cast<POINT*>(&place), 2);
    return place;
}

TEST_F(WindowTest, ControlsStandWhereTheTablePutsThemAndLeaveNoNamesBehind) {
    show([&] {
        EXPECT_NE(GlobalFindAtomW(L"panel_label"), 0);
        const auto scale = screen_scale();
        RECT client = {};
        GetClientRect(form_window(), &client);
        EXPECT_EQ(client.right, scale.x(6000));
        EXPECT_EQ(client.bottom, scale.y(4500));
        for (const forms::Control* control : std::vector<forms::Control*>{&form.cmdOk, &form.panel, &form.pages}) {
            const forms::Rect& at = control->place();
            const RECT expected = {scale.x(at.left), scale.y(at.top), scale.x(at.left + at.width),
                                   scale.y(at.top + at.height)};
            const RECT place = client_rectangle(window_of(from_utf8(control->name())), form_window());
            EXPECT_TRUE(EqualRect(&place, &expected)) << control->name();
        }
        // Inside its page, whose top lies above the form's.
        EXPECT_EQ(client_rectangle(window_of(u"text"), form_window()).top, scale.y(-330 + 900));
        // A label of one line has room for its text, and does not grow out of its panel.
        const auto right_end = [&] { return client_rectangle(window_of(u"panel_label"), window_of(u"panel")).right; };
        form.panel_label.set_caption(u"Short");
        EXPECT_EQ(right_end(), scale.x(1200)) << "as designed";
        form.panel_label.set_caption(u"More than the designer's font would have needed");
        EXPECT_GT(right_end(), scale.x(1200));
        EXPECT_LE(right_end(), scale.x(1500));
    });
    EXPECT_EQ(GlobalFindAtomW(L"panel_label"), 0);
}

TEST_F(WindowTest, LineAndLabelAreDrawnOnThePanelsColor) {
    show([&] {
        const HWND panel = window_of(u"panel");
        RedrawWindow(panel, nullptr, nullptr, RDW_UPDATENOW | RDW_ALLCHILDREN);
        const auto scale = screen_scale();
        const platform::win32::WindowContext context(panel);
        EXPECT_EQ(GetPixel(context.dc(), scale.x(150), scale.y(600)), forms::kWhite);
        EXPECT_EQ(GetPixel(context.dc(), scale.x(1400), scale.y(600)), forms::kDarkGrey);
        const platform::win32::WindowContext label(window_of(u"panel_label"));
        std::map<COLORREF, int> colors;
        for (int x = 0; x < scale.x(900); ++x) {
            for (int y = 0; y < scale.y(195); ++y) ++colors[GetPixel(label.dc(), x, y)];
        }
        EXPECT_GT(colors[forms::kDarkGrey], colors[forms::kWhite]);
        EXPECT_GT(colors[forms::kWhite], 20) << "the text";
    });
}

TEST_F(WindowTest, FormAndRowsHaveTheirIconsAndANewListHasNoOldSelection) {
    form.pages.set_tab(1);
    show([&] {
        for (const WPARAM size : {ICON_SMALL, ICON_BIG}) EXPECT_NE(SendMessageW(form_window(), WM_GETICON, size, 0), 0);
        const HWND list = window_of(u"list");
        for (const bool anew : {false, true}) {
            form.list.clear();
            form.list.add_row({}, u"good", u"good");
            form.list.add_row({}, u"bad", u"bad");
            if (!anew) form.list.select(1);
            RedrawWindow(list, nullptr, nullptr, RDW_UPDATENOW);
            const LRESULT selected = SendMessageW(list, LVM_GETNEXTITEM, static_cast<WPARAM>(-1), LVNI_SELECTED);
            EXPECT_EQ(selected, anew ? -1 : 1);
        }
        RECT icon = {};
        icon.left = LVIR_ICON;
        SendMessageW(list, LVM_GETITEMRECT, 1, reinterpret_cast<LPARAM>(&icon));
        const platform::win32::WindowContext context(list);
        const COLORREF middle = GetPixel(context.dc(), (icon.left + icon.right) / 2, (icon.top + icon.bottom) / 2 - 4);
        EXPECT_NE(middle, forms::kWhite) << "an icon is drawn";
    });
}

// ---- The keyboard

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
    show_list({u"Row 1"});
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
    show([&] {
        const auto without_focus = rows_look(u"cmdOk");
        EXPECT_NE(rows_look(u"list"), without_focus);
        EXPECT_EQ(rows_look(u"cmdOk"), without_focus);
    });
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

// ---- Among other windows

class ModalityTest : public WindowTest {
protected:
    ModalityTest() {
        host = CreateWindowExW(0, L"#32770", L"Host", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 0, 0, 600, 400, nullptr,
                               nullptr, nullptr, nullptr);
        host_field =
            CreateWindowExW(0, L"EDIT", L"", WS_CHILD | WS_VISIBLE, 0, 0, 100, 20, host, nullptr, nullptr, nullptr);
        other = CreateWindowExW(0, L"#32770", L"Other", WS_OVERLAPPEDWINDOW | WS_VISIBLE | WS_DISABLED, 0, 0, 100, 100,
                                nullptr, nullptr, nullptr, nullptr);
        SetActiveWindow(host);
        SetFocus(host_field);
    }
    ~ModalityTest() override {
        DestroyWindow(other);
        if (IsWindow(host)) DestroyWindow(host);
    }

    /// A click on the form's OK opens the inner form.
    void open_inner() {
        form.on_any_click = [this](const std::string& control) {
            if (control != "cmdOk") return;
            below = form_window();
            inner.show_modal();
        };
        user.then([this] { screen.click(u"cmdOk"); });
    }
    bool was_quit(WPARAM code) {
        MSG message = {};
        return PeekMessageW(&message, nullptr, WM_QUIT, WM_QUIT, PM_REMOVE) && message.wParam == code;
    }

    HWND host, host_field, other;
    SampleForm inner{side->toolkit(), "dlgInner"};
    HWND below = nullptr;
};

TEST_F(ModalityTest, HostTakesNoInputMeanwhileAndGetsItsFocusBack) {
    show([&] {
        EXPECT_FALSE(IsWindowEnabled(host));
        EXPECT_EQ(GetActiveWindow(), form_window());
    });
    EXPECT_TRUE(IsWindowEnabled(host));
    EXPECT_FALSE(IsWindowEnabled(other)) << "it was disabled before";
    EXPECT_EQ(GetActiveWindow(), host);
    EXPECT_EQ(GetFocus(), host_field);
}

TEST_F(ModalityTest, FormBelowTakesNoCloseRequestAndAPressOnItBringsTheTopOneForward) {
    open_inner();
    show([&] {
        SendMessageW(below, WM_CLOSE, 0, 0);
        EXPECT_TRUE(form.loaded());
        const HWND top = form_window();
        const auto stands_over_all = [top] { return GetTopWindow(nullptr) == top; };
        EXPECT_TRUE(stands_over_all());
        SetWindowPos(below, HWND_TOP, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE);
        EXPECT_FALSE(stands_over_all());
        SendMessageW(below, WM_SETCURSOR, reinterpret_cast<WPARAM>(below), MAKELPARAM(HTERROR, WM_LBUTTONDOWN));
        EXPECT_TRUE(stands_over_all());
        screen.click(u"cmdCancel");
    });
    EXPECT_THAT(form.log, testing::Not(Contains("close box")));
}

std::wstring refusal_reason;

FARPROC WINAPI find_reason_function(HMODULE, LPCSTR name) {
    void* found = nullptr;
    if (std::string_view(name) == "ShutdownBlockReasonCreate") {
        found =
            reinterpret_cast<void*>(+[](HWND, LPCWSTR reason) -> BOOL { return !(refusal_reason = reason).empty(); });
    } else if (std::string_view(name) == "ShutdownBlockReasonDestroy") {
        found = reinterpret_cast<void*>(+[](HWND) -> BOOL { return !std::exchange(refusal_reason, {}).empty(); });
    }
    return reinterpret_cast<FARPROC>(found);
}

TEST_F(ModalityTest, EndOfTheSessionUnloadsTheFormUnlessItRefuses) {
    const auto may_end = [&] { return SendMessageW(form_window(), WM_QUERYENDSESSION, 0, 0) != FALSE; };
    user.then([&] {
        const sim::ImportHook hook(GetModuleHandleW(nullptr), "GetProcAddress", find_reason_function);
        form.refuses_to_close = true;
        EXPECT_FALSE(may_end());
        EXPECT_EQ(refusal_reason, L"Sample has not finished its work.");
        form.refuses_to_close = false;
        EXPECT_TRUE(may_end());
        EXPECT_EQ(refusal_reason, L"");
        SendMessageW(form_window(), WM_ENDSESSION, FALSE, 0);
        EXPECT_TRUE(form.loaded());
        SendMessageW(form_window(), WM_ENDSESSION, TRUE, 0);
    });
    form.show_modal();
    EXPECT_THAT(form.log, ElementsAre("load", "activate", "unload", "unload", "unload", "unloaded"));
}

TEST_F(ModalityTest, RequestToQuitEndsAllFormsAndIsLeftForTheHost) {
    open_inner();
    user.then([&] { PostQuitMessage(7); });
    form.show_modal();
    EXPECT_THAT(user.dialogs, ElementsAre("open dlgSample", "open dlgInner", "close dlgInner", "close dlgSample"));
    EXPECT_TRUE(was_quit(7));
    form.on_any_click = [&](const std::string&) {
        PostQuitMessage(8);
        side->toolkit().pump_messages();
        form.log.push_back("work goes on");
    };
    user.then([&] { screen.click(u"cmdOk"); });
    form.show_modal();
    EXPECT_THAT(form.log, Contains("work goes on"));
    EXPECT_TRUE(was_quit(8)) << "seen in the midst of work";
}

}  // namespace
}  // namespace vex::test
