// What a modal form does to the other windows of its thread.
#pragma once

#include <vector>

#include "platform/win32/windows_api.h"

namespace vex::platform::win32 {

/// While it lives, no other window of the thread takes input; then exactly those that it has disabled do
/// again, and the window that the modal one stood over is active with the focus that it had.
class ModalScope {
public:
    /// Before `modal` is shown. `below`: what it stands over, or null. To be ended before `modal` is destroyed: the
    /// system would activate another program's window next when it has no owner.
    ModalScope(HWND modal, HWND below);
    ModalScope(const ModalScope&) = delete;
    ModalScope& operator=(const ModalScope&) = delete;
    ~ModalScope();

private:
    HWND modal_;
    HWND below_;
    HWND focus_;
    std::vector<HWND> disabled_;
};

}  // namespace vex::platform::win32
