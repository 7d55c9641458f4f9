// The window of one control: what all kinds share.
#include "platform/win32/control_window.h"

#include "platform/win32/accessible_name.h"

namespace vex::platform::win32 {
namespace {

constexpr WCHAR kSelfProperty[] = L"VexControlWindow";

}  // namespace

ControlWindow* ControlWindow::from(HWND window) noexcept {
    return window == nullptr ? nullptr : static_cast<ControlWindow*>(GetPropW(window, kSelfProperty));
}

ControlWindow::~ControlWindow() {
    if (window_ == nullptr) return;
    if (!control_.accessible_name().empty()) clear_accessible_name(window_);
    name_ = {};
    if (system_procedure_ != nullptr) DestroyWindow(window_);
}

void ControlWindow::create(LPCWSTR window_class, DWORD style, DWORD extended_style, int id) {
    const RECT at = place();
    DWORD state = WS_CHILD | WS_CLIPSIBLINGS;
    // A control of the host cannot be seen at run time.
    if (control_.visible() && control_.kind() != forms::ControlKind::host_control) state |= WS_VISIBLE;
    if (!control_.enabled()) state |= WS_DISABLED;
    const HWND window = CreateWindowExW(extended_style, window_class, wide(control_.caption()), style | state, at.left,
                                        at.top, at.right - at.left, at.bottom - at.top, parent_.window(),
                                        reinterpret_cast<HMENU>(static_cast<INT_PTR>(id)), module_instance(), nullptr);
    if (window == nullptr) throw last_error(u"A control's window cannot be made");
    SetWindowLongPtrW(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
    window_ = window;
    system_procedure_ = reinterpret_cast<WNDPROC>(
        SetWindowLongPtrW(window, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&ControlWindow::procedure)));
    SetPropW(window, kSelfProperty, this);
    SendMessageW(window, WM_SETFONT, reinterpret_cast<WPARAM>(context().font(control_.font())), FALSE);
    adopt(window);
}

void ControlWindow::adopt(HWND window) {
    window_ = window;
    name_ = WindowName(window, control_.name());
    if (!control_.accessible_name().empty()) set_accessible_name(window, control_.accessible_name());
}

void ControlWindow::update(forms::Change change) {
    switch (change) {
        case forms::Change::caption:
            SetWindowTextW(window_, wide(control_.caption()));
            break;
        case forms::Change::enabled:
            EnableWindow(window_, control_.enabled());
            break;
        case forms::Change::visible:
            ShowWindow(window_, control_.visible() ? SW_SHOWNA : SW_HIDE);
            break;
        default:
            break;
    }
}

std::optional<LRESULT> ControlWindow::message(UINT message, WPARAM /*wide_parameter*/, LPARAM long_parameter) {
    if (const auto button = pressed_button(message)) raise_mouse_down(context(), control_, *button, long_parameter);
    return std::nullopt;
}

LRESULT ControlWindow::system_handling(UINT message, WPARAM wide_parameter, LPARAM long_parameter) noexcept {
    return CallWindowProcW(system_procedure_, window_, message, wide_parameter, long_parameter);
}

/// Enter presses the push button that has the focus, however it came there, and else the form's own default one; its
/// border shows which it is.
void ControlWindow::show_default_button() const noexcept {
    const auto show = [](HWND child, LPARAM focused) -> BOOL {
        const auto& focus = *reinterpret_cast<const ControlWindow*>(focused);
        const ControlWindow* button = from(child);
        if (button == nullptr || button->control_.kind() != forms::ControlKind::button) return TRUE;
        const bool is_default = focus.control_.kind() == forms::ControlKind::button
                                    ? button == &focus
                                    : static_cast<const forms::Button&>(button->control_).is_default;
        const LONG_PTR style = is_default ? BS_DEFPUSHBUTTON : BS_PUSHBUTTON;
        if ((GetWindowLongPtrW(child, GWL_STYLE) & BS_TYPEMASK) != style) {
            SendMessageW(child, BM_SETSTYLE, static_cast<WPARAM>(style), TRUE);
        }
        return TRUE;
    };
    EnumChildWindows(GetAncestor(window_, GA_ROOT), show, reinterpret_cast<LPARAM>(this));
}

LRESULT CALLBACK ControlWindow::procedure(HWND window, UINT message, WPARAM wide_parameter,
                                          LPARAM long_parameter) noexcept {
    auto& self = *reinterpret_cast<ControlWindow*>(GetWindowLongPtrW(window, GWLP_USERDATA));
    if (message == WM_NCDESTROY) {
        // Only now is nothing of the system's own left to call.
        const WNDPROC system_procedure = self.system_procedure_;
        RemovePropW(window, kSelfProperty);
        self.window_ = nullptr;
        return CallWindowProcW(system_procedure, window, message, wide_parameter, long_parameter);
    }
    if (message == WM_SETFOCUS) self.show_default_button();
    const auto result = self.context().guarded([&] { return self.message(message, wide_parameter, long_parameter); },
                                               std::optional<LRESULT>(0));
    return result ? *result : self.system_handling(message, wide_parameter, long_parameter);
}

}  // namespace vex::platform::win32
