// What a modal form does to the other windows of its thread.
#pragma once

#include <vector>

#include "platform/win32/windows_api.h"

namespace vex::platform::win32 {

/// While it lives, no other window of the thread takes input; then exactly those that it has disabled do
/// again. To be ended before the modal window is destroyed, so that the system activates its owner next.
class ModalScope {
public:
    explicit ModalScope(HWND modal);
    ModalScope(const ModalScope&) = delete;
    ModalScope& operator=(const ModalScope&) = delete;
    ~ModalScope();

private:
    std::vector<HWND> disabled_;
};

/// Remembers the thread's focus and gives it back at its end, if its window can still take it.
class FocusScope {
public:
    FocusScope() noexcept : active_(GetActiveWindow()), focus_(GetFocus()) {}
    FocusScope(const FocusScope&) = delete;
    FocusScope& operator=(const FocusScope&) = delete;
    ~FocusScope();

private:
    HWND active_;
    HWND focus_;
};

}  // namespace vex::platform::win32
