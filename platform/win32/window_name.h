// Names on windows, for testing and assistive tools, of this process or another.
//
// Each window of a form carries its control's name (the form's own window the form's) as the window property
// kNameProperty, whose value is a global atom. A drawn shape has no window: the window that it is drawn on
// carries the property kShapePrefix + name, whose value is a point inside the shape in client pixels.
#pragma once

#include <string>
#include <string_view>

#include "platform/win32/windows_api.h"

namespace vex::platform::win32 {

inline constexpr WCHAR kNameProperty[] = L"VexControlName";
inline constexpr char16_t kShapePrefix[] = u"VexShape.";

/// Names a window while it lives.
class WindowName {
public:
    WindowName() noexcept = default;
    WindowName(HWND window, std::string_view name);
    WindowName(WindowName&& other) noexcept;
    WindowName& operator=(WindowName&& other) noexcept;
    ~WindowName();

private:
    HWND window_ = nullptr;
    ATOM atom_ = 0;
};

/// The name of a window, empty when it has none.
std::u16string window_name(HWND window);

/// The first window of that name below `ancestor`, or null.
HWND find_named_window(HWND ancestor, std::u16string_view name);

/// Gives the window an accessible name. Does nothing where the system's accessibility service is missing.
void set_accessible_name(HWND window, std::u16string_view name);
/// Takes the name back; to be called before the window is destroyed.
void clear_accessible_name(HWND window);

}  // namespace vex::platform::win32
