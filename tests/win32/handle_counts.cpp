// Whether window and graphics handles of this process stay behind.
#include "tests/win32/handle_counts.h"

#include <gtest/gtest.h>

#include <limits>

#include "platform/win32/windows_api.h"

namespace vex::test {
namespace {

template <class Handle>
Handle handle_at(std::uintptr_t index) noexcept {
    return reinterpret_cast<Handle>(index);
}

bool is_icon(HICON icon) noexcept {
    ICONINFO information = {};
    if (!GetIconInfo(icon, &information)) return false;
    DeleteObject(information.hbmMask);
    if (information.hbmColor != nullptr) DeleteObject(information.hbmColor);
    return true;
}

bool is_own_window(HWND window) noexcept {
    DWORD process = 0;
    return IsWindow(window) && GetWindowThreadProcessId(window, &process) != 0 && process == GetCurrentProcessId();
}

struct HandleCounts {
    unsigned long user = 0;
    unsigned long graphics = 0;
};

/// Windows tells the numbers. Wine does not (it answers 0); there every possible handle is looked at.
HandleCounts count_handles() {
    HandleCounts counts{GetGuiResources(GetCurrentProcess(), GR_USEROBJECTS),
                        GetGuiResources(GetCurrentProcess(), GR_GDIOBJECTS)};
    if (counts.user != 0 || counts.graphics != 0) return counts;
    // Only the lower half of a handle says which one it is.
    for (std::uintptr_t index = 1; index <= std::numeric_limits<std::uint16_t>::max(); ++index) {
        if (GetObjectType(handle_at<HGDIOBJ>(index)) != 0) ++counts.graphics;
        if (is_own_window(handle_at<HWND>(index)) || IsMenu(handle_at<HMENU>(index)) ||
            is_icon(handle_at<HICON>(index))) {
            ++counts.user;
        }
    }
    return counts;
}

}  // namespace

void expect_no_handle_stays(int times, const std::function<void()>& use) {
    // The first uses make what the system keeps for all.
    for (int used = 0; used < 3; ++used) use();
    const HandleCounts before = count_handles();
    for (int used = 0; used < times; ++used) use();
    const HandleCounts after = count_handles();
    EXPECT_GT(before.graphics, 0U);
    EXPECT_EQ(after.user, before.user);
    EXPECT_EQ(after.graphics, before.graphics);
}

}  // namespace vex::test
