// A form on real windows, for the tests of what only windows have.
#pragma once

#include <gmock/gmock.h>

#include "core/runtime_error.h"
#include "platform/win32/window_name.h"
#include "simulator/win32/win32_screen.h"
#include "tests/toolkit/sample_form.h"
#include "tests/toolkit/side.h"
#include "tests/toolkit/test_user.h"

namespace vex::test {

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
    void show(std::function<void()> last = [] {}) {
        user.then(std::move(last));
        user.then([this] { screen.click(u"cmdCancel"); });
        form.show_modal();
        EXPECT_EQ(user.actions_left(), 0U);
    }

    std::unique_ptr<Side> side = make_side();
    sim::Screen& screen = side->screen();
    TestUser user{screen};
    SampleForm form{side->toolkit()};
};

}  // namespace vex::test
