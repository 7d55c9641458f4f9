// Modal forms among the other windows of their thread, and what ends them from outside.
#include "platform/win32/windows_api.h"

#include "simulator/win32/import_hook.h"
#include "simulator/win32/win32_screen.h"
#include "tests/win32/window_fixture.h"

namespace vex::test {
namespace {

using testing::Contains;
using testing::ElementsAre;

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
    void open_inner(forms::Form* owner) {
        form.on_any_click = [this, owner](const std::string& control) {
            if (control != "cmdOk") return;
            below = form_window();
            inner.show_modal(owner);
            came_back = GetActiveWindow() == below;
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
    bool came_back = false;
};

TEST_F(ModalityTest, HostTakesNoInputMeanwhileAndGetsItsFocusBack) {
    show([&] {
        EXPECT_FALSE(IsWindowEnabled(host));
        EXPECT_EQ(GetWindow(form_window(), GW_OWNER), nullptr);
        EXPECT_EQ(GetActiveWindow(), form_window());
    });
    EXPECT_TRUE(IsWindowEnabled(host));
    EXPECT_FALSE(IsWindowEnabled(other)) << "it was disabled before";
    EXPECT_EQ(GetActiveWindow(), host);
    EXPECT_EQ(GetFocus(), host_field);
    form.on_any_click = [](const std::string&) { throw RuntimeError(kOverflow); };
    user.then([&] { screen.click(u"cmdOk"); });
    EXPECT_THROW(form.show_modal(), RuntimeError);
    EXPECT_TRUE(IsWindowEnabled(host)) << "after an error too";
}

TEST_F(ModalityTest, CloseRequestToAFormBelowIsIgnored) {
    open_inner(&form);
    show([&] {
        EXPECT_EQ(GetWindow(form_window(), GW_OWNER), below);
        SendMessageW(below, WM_CLOSE, 0, 0);
        EXPECT_TRUE(form.loaded());
        screen.click(u"cmdCancel");
    });
    EXPECT_THAT(form.log, testing::Not(Contains("close box")));
}

TEST_F(ModalityTest, PressOnAFormBelowBringsTheTopOneForward) {
    open_inner(nullptr);
    show([&] {
        const HWND top = form_window();
        const auto stands_over_all = [top] { return GetTopWindow(nullptr) == top; };
        EXPECT_EQ(GetWindow(top, GW_OWNER), nullptr);
        EXPECT_FALSE(IsWindowEnabled(below));
        EXPECT_TRUE(stands_over_all());
        SetWindowPos(below, HWND_TOP, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE);
        EXPECT_FALSE(stands_over_all());
        SendMessageW(below, WM_SETCURSOR, reinterpret_cast<WPARAM>(below), MAKELPARAM(HTERROR, WM_LBUTTONDOWN));
        EXPECT_TRUE(stands_over_all());
        screen.click(u"cmdCancel");
    });
    EXPECT_TRUE(came_back);
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
        SendMessageW(form_window(), WM_ENDSESSION, TRUE, 0);
        EXPECT_TRUE(form.loaded());
        form.refuses_to_close = false;
        EXPECT_TRUE(may_end());
        EXPECT_EQ(refusal_reason, L"");
        SendMessageW(form_window(), WM_ENDSESSION, FALSE, 0);
        EXPECT_TRUE(form.loaded());
        SendMessageW(form_window(), WM_ENDSESSION, TRUE, 0);
    });
    form.show_modal();
    EXPECT_THAT(form.log, ElementsAre("load", "activate", "unload", "unload", "unload", "unload", "unloaded"));
}

TEST_F(ModalityTest, RequestToQuitEndsAllFormsAndIsLeftForTheHost) {
    open_inner(&form);
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

TEST_F(ModalityTest, DestroyedOwnerTakesTheFormWithIt) {
    open_inner(&form);
    user.then([&] { DestroyWindow(GetWindow(form_window(), GW_OWNER)); });
    form.show_modal();
    for (const SampleForm* destroyed : {&form, &inner}) {
        EXPECT_EQ(destroyed->view(), nullptr);
        EXPECT_TRUE(destroyed->loaded());
    }
}

}  // namespace
}  // namespace vex::test
