// Modal forms among the other windows of their thread, and what ends them from outside.
#include "platform/win32/windows_api.h"

#include "platform/win32/window_reader.h"
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

    HWND host;
    HWND host_field;
    HWND other;
};

TEST_F(ModalityTest, HostTakesNoInputMeanwhileAndGetsItsFocusBack) {
    user.then([&] {
        EXPECT_FALSE(IsWindowEnabled(host));
        EXPECT_EQ(GetWindow(form_window(), GW_OWNER), host);
        EXPECT_EQ(GetActiveWindow(), form_window());
    });
    show();
    EXPECT_TRUE(IsWindowEnabled(host));
    EXPECT_FALSE(IsWindowEnabled(other)) << "it was disabled before";
    EXPECT_EQ(GetActiveWindow(), host);
    EXPECT_EQ(GetFocus(), host_field);
}

TEST_F(ModalityTest, HostTakesInputAgainAfterAnError) {
    form.on_any_click = [](const std::string&) { throw RuntimeError(kOverflow); };
    user.then([&] { screen.click(u"cmdOk"); });
    EXPECT_THROW(form.show_modal(), RuntimeError);
    EXPECT_TRUE(IsWindowEnabled(host));
}

TEST_F(ModalityTest, CloseRequestToAFormBelowIsIgnored) {
    SampleForm inner(side->toolkit(), "dlgInner");
    HWND below = nullptr;
    form.on_any_click = [&](const std::string& control) {
        if (control != "cmdOk") return;
        below = form_window();
        inner.show_modal(&form);
    };
    user.then([&] { screen.click(u"cmdOk"); }).then([&] {
        EXPECT_EQ(GetWindow(form_window(), GW_OWNER), below);
        SendMessageW(below, WM_CLOSE, 0, 0);
        EXPECT_TRUE(form.loaded());
        screen.click(u"cmdCancel");
    });
    show();
    EXPECT_THAT(form.log, testing::Not(Contains("close box")));
}

TEST_F(ModalityTest, EndOfTheSessionUnloadsTheForm) {
    user.then([&] {
        EXPECT_TRUE(SendMessageW(form_window(), WM_QUERYENDSESSION, 0, 0));
        SendMessageW(form_window(), WM_ENDSESSION, FALSE, 0);
        EXPECT_TRUE(form.loaded());
        SendMessageW(form_window(), WM_ENDSESSION, TRUE, 0);
    });
    form.show_modal();
    EXPECT_THAT(form.log, ElementsAre("load", "activate", "unload", "unloaded"));
}

TEST_F(ModalityTest, RequestToQuitEndsAllFormsAndIsLeftForTheHost) {
    SampleForm inner(side->toolkit(), "dlgInner");
    form.on_any_click = [&](const std::string&) { inner.show_modal(&form); };
    user.then([&] { screen.click(u"cmdOk"); }).then([&] { PostQuitMessage(7); });
    form.show_modal();
    EXPECT_THAT(user.dialogs, ElementsAre("open dlgSample", "open dlgInner", "close dlgInner", "close dlgSample"));
    MSG message = {};
    ASSERT_TRUE(PeekMessageW(&message, nullptr, WM_QUIT, WM_QUIT, PM_REMOVE));
    EXPECT_EQ(message.wParam, 7U);
}

TEST_F(ModalityTest, RequestToQuitIsSeenInTheMidstOfWorkAndKept) {
    form.on_any_click = [&](const std::string&) {
        PostQuitMessage(7);
        side->toolkit().pump_messages();
        form.log.push_back("work goes on");
    };
    user.then([&] { screen.click(u"cmdOk"); });
    form.show_modal();
    EXPECT_THAT(form.log, Contains("work goes on"));
    MSG message = {};
    EXPECT_TRUE(PeekMessageW(&message, nullptr, WM_QUIT, WM_QUIT, PM_REMOVE));
}

TEST_F(ModalityTest, DestroyedOwnerTakesTheFormWithIt) {
    user.then([&] { DestroyWindow(host); });
    form.show_modal();
    EXPECT_EQ(form.view(), nullptr);
    EXPECT_TRUE(form.loaded());
}

}  // namespace
}  // namespace vex::test
