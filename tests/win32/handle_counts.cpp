// How many window and graphics handles this process holds.
#include "tests/win32/handle_counts.h"

#include <limits>

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

}  // namespace

HandleCounts count_handles() {
    HandleCounts counts;
    counts.user = GetGuiResources(GetCurrentProcess(), GR_USEROBJECTS);
    counts.graphics = GetGuiResources(GetCurrentProcess(), GR_GDIOBJECTS);
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

}  // namespace vex::test
