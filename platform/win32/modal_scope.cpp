// What a modal form does to the other windows of its thread.
#include "platform/win32/modal_scope.h"

namespace vex::platform::win32 {

namespace {

/// Collects the windows that take input.
BOOL CALLBACK collect(HWND window, LPARAM windows) noexcept {
    if (!IsWindowVisible(window) || !IsWindowEnabled(window)) return TRUE;
    try {
        reinterpret_cast<std::vector<HWND>*>(windows)->push_back(window);
        return TRUE;
    } catch (...) {
        return FALSE;
    }
}

}  // namespace

ModalScope::ModalScope(HWND modal, HWND below) : modal_(modal), below_(below), focus_(GetFocus()) {
    EnumThreadWindows(GetCurrentThreadId(), collect, reinterpret_cast<LPARAM>(&disabled_));
    std::erase(disabled_, modal);
    for (const HWND window : disabled_) EnableWindow(window, FALSE);
}

ModalScope::~ModalScope() {
    for (const HWND window : disabled_) {
        if (IsWindow(window)) EnableWindow(window, TRUE);
    }
    if (below_ == nullptr || !IsWindow(below_)) return;
    if (GetActiveWindow() == modal_) SetActiveWindow(below_);
    if (focus_ == nullptr || GetActiveWindow() != below_) return;
    if (IsWindow(focus_) && IsWindowEnabled(focus_) && IsWindowVisible(focus_)) SetFocus(focus_);
}

}  // namespace vex::platform::win32
