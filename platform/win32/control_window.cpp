#include "platform/win32/control_window.h"

#include <algorithm>

namespace vex::platform::win32 {
namespace {

constexpr WCHAR kSelfProperty[] = L"VexControlWindow";

void place_surface(Surface& surface, HWND parent, const RECT& at, bool visible, bool enabled) {
    surface.create(parent, WS_CHILD | DS_CONTROL, WS_EX_CONTROLPARENT);
    SetWindowPos(surface.window(), HWND_BOTTOM, at.left, at.top, at.right - at.left, at.bottom - at.top,
                 SWP_NOACTIVATE | (visible ? SWP_SHOWWINDOW : 0U));
    EnableWindow(surface.window(), enabled);
    surface.adopt_drawings();
}

DWORD button_style(const forms::Control& button) noexcept {
    switch (button.kind()) {
        case forms::ControlKind::option_button: return BS_AUTORADIOBUTTON | BS_MULTILINE;
        case forms::ControlKind::check_box: return BS_CHECKBOX | BS_MULTILINE;
        default:
            return BS_MULTILINE | (static_cast<const forms::Button&>(button).is_default ? DWORD{BS_DEFPUSHBUTTON}
                                                                                        : DWORD{BS_PUSHBUTTON});
    }
}

DWORD tab_stop(const forms::Control& control) noexcept { return control.tab_index() < 0 ? 0 : WS_TABSTOP; }

/// Arrow keys move within a group: the option buttons of a container are one, everything else stands alone.
DWORD group(const Surface& parent, const forms::Control& control) noexcept {
    if (control.kind() != forms::ControlKind::option_button) return WS_GROUP;
    const HWND last = GetWindow(GetWindow(parent.window(), GW_CHILD), GW_HWNDLAST);
    const ControlWindow* before = ControlWindow::from(last);
    return before != nullptr && before->control().kind() == forms::ControlKind::option_button ? 0 : WS_GROUP;
}

}  // namespace

// ---- What all kinds share --------------------------------------------------------------------------------

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
        case forms::Change::caption: SetWindowTextW(window_, wide(control_.caption())); break;
        case forms::Change::enabled: EnableWindow(window_, control_.enabled()); break;
        case forms::Change::visible: ShowWindow(window_, control_.visible() ? SW_SHOWNA : SW_HIDE); break;
        default: break;
    }
}

std::optional<LRESULT> ControlWindow::message(UINT message, WPARAM /*wide_parameter*/, LPARAM long_parameter) {
    if (const auto button = pressed_button(message)) raise_mouse_down(context(), control_, *button, long_parameter);
    return std::nullopt;
}

LRESULT ControlWindow::system_handling(UINT message, WPARAM wide_parameter, LPARAM long_parameter) noexcept {
    return CallWindowProcW(system_procedure_, window_, message, wide_parameter, long_parameter);
}

void ControlWindow::show_default_button() const noexcept {
    EnumChildWindows(GetAncestor(window_, GA_ROOT), show_whether_default, reinterpret_cast<LPARAM>(this));
}

BOOL CALLBACK ControlWindow::show_whether_default(HWND child, LPARAM focused) noexcept {
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

// ---- The plain kinds --------------------------------------------------------------------------------------

LabelWindow::LabelWindow(Surface& parent, forms::Label& label, int id) : ControlWindow(parent, label) {
    create(WC_STATICW, SS_LEFT | SS_NOPREFIX | SS_NOTIFY | WS_GROUP, 0, id);
    fit();
}

std::optional<LRESULT> LabelWindow::message(UINT message, WPARAM wide_parameter, LPARAM long_parameter) {
    switch (message) {
        case WM_ERASEBKGND: return 1;
        case WM_PAINT: paint(); return 0;
        case WM_SETTEXT: {
            // The system's label would write the new text over the old one at once.
            const LRESULT result = DefWindowProcW(window(), message, wide_parameter, long_parameter);
            fit();
            InvalidateRect(window(), nullptr, FALSE);
            return result;
        }
        default: return ControlWindow::message(message, wide_parameter, long_parameter);
    }
}

void LabelWindow::paint() const noexcept {
    const PaintContext paint(window());
    RECT area;
    GetClientRect(window(), &area);
    POINT corner = {};
    MapWindowPoints(window(), parent().window(), &corner, 1);
    SetViewportOrgEx(paint.dc(), -corner.x, -corner.y, nullptr);
    parent().paint(paint.dc());
    SetViewportOrgEx(paint.dc(), 0, 0, nullptr);

    SelectObject(paint.dc(), reinterpret_cast<HGDIOBJ>(SendMessageW(window(), WM_GETFONT, 0, 0)));
    SetBkMode(paint.dc(), TRANSPARENT);
    SetTextColor(paint.dc(), text_color(control().fore_color(), COLOR_BTNTEXT));
    const std::u16string& text = control().caption();
    DrawTextW(paint.dc(), wide(text), static_cast<int>(text.size()), &area,
              DT_LEFT | DT_NOPREFIX | (one_line_ ? DT_SINGLELINE : DT_WORDBREAK));
}

void LabelWindow::fit() noexcept {
    const WindowContext context(window());
    const HGDIOBJ before =
        SelectObject(context.dc(), reinterpret_cast<HGDIOBJ>(SendMessageW(window(), WM_GETFONT, 0, 0)));
    TEXTMETRICW font = {};
    SIZE size = {};
    const std::u16string& text = control().caption();
    GetTextMetricsW(context.dc(), &font);
    GetTextExtentPoint32W(context.dc(), wide(text), static_cast<int>(text.size()), &size);
    SelectObject(context.dc(), before);

    const RECT at = place();
    one_line_ = at.bottom - at.top < 2 * font.tmHeight;
    if (!one_line_) return;
    RECT surface = {};
    GetClientRect(parent().window(), &surface);
    const LONG width = std::max(at.right - at.left, std::min(size.cx, surface.right - at.left));
    SetWindowPos(window(), nullptr, 0, 0, width, at.bottom - at.top, SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
}

ButtonWindow::ButtonWindow(Surface& parent, forms::Control& button, int id) : ControlWindow(parent, button) {
    create(WC_BUTTONW, button_style(button) | tab_stop(button) | group(parent, button), 0, id);
    show_value();
}

void ButtonWindow::update(forms::Change change) {
    if (change == forms::Change::value) show_value();
    ControlWindow::update(change);
}

void ButtonWindow::command(WORD code) {
    if (code != BN_CLICKED) return;
    context().form().raise_click(control());
    // The system's option button has set itself; where the click was refused, it must show the value again.
    if (window() != nullptr) show_value();
}

void ButtonWindow::show_value() {
    bool checked = false;
    if (control().kind() == forms::ControlKind::option_button) {
        checked = static_cast<const forms::OptionButton&>(control()).value();
    } else if (control().kind() == forms::ControlKind::check_box) {
        checked = static_cast<const forms::CheckBox&>(control()).value() != 0;
    } else {
        return;
    }
    SendMessageW(window(), BM_SETCHECK, checked ? BST_CHECKED : BST_UNCHECKED, 0);
}

TextBoxWindow::TextBoxWindow(Surface& parent, forms::TextBox& box, int id) : ControlWindow(parent, box) {
    create(WC_EDITW, ES_LEFT | ES_AUTOHSCROLL | tab_stop(box) | WS_GROUP, WS_EX_CLIENTEDGE, id);
    // The system's own limit is 30,000 characters.
    SendMessageW(window(), EM_SETLIMITTEXT, 0, 0);
}

void TextBoxWindow::command(WORD code) {
    if (code != EN_CHANGE) return;
    std::u16string text(static_cast<std::size_t>(GetWindowTextLengthW(window())) + 1, u'\0');
    text.resize(static_cast<std::size_t>(GetWindowTextW(window(), wide(text), static_cast<int>(text.size()))));
    context().form().user_text(static_cast<forms::TextBox&>(control()), std::move(text));
}

PanelWindow::PanelWindow(Surface& parent, forms::Panel& panel)
    : ControlWindow(parent, panel), surface_(parent.context(), &panel, -1) {
    place_surface(surface_, parent.window(), place(), panel.visible(), panel.enabled());
    adopt(surface_.window());
}

PagesWindow::PagesWindow(Surface& parent, forms::TabPages& pages)
    : ControlWindow(parent, pages), pages_(pages), frame_(parent.context(), &pages, -1) {
    const RECT at = place();
    place_surface(frame_, parent.window(), at, pages.visible(), pages.enabled());
    adopt(frame_.window());
    const RECT inside = {0, 0, at.right - at.left, at.bottom - at.top};
    for (std::size_t page = 0; page < pages.captions.size(); ++page) {
        surfaces_.push_back(std::make_unique<Surface>(context(), &pages, static_cast<int>(page)));
        place_surface(*surfaces_.back(), frame_.window(), inside, static_cast<int>(page) == pages.tab(), true);
        SetWindowTextW(surfaces_.back()->window(), wide(pages.captions[page]));
    }
}

void PagesWindow::update(forms::Change change) {
    if (change == forms::Change::tab) {
        for (const auto& surface : surfaces_) {
            ShowWindow(surface->window(), surface->page() == pages_.tab() ? SW_SHOWNA : SW_HIDE);
        }
    }
    ControlWindow::update(change);
}

Surface* PagesWindow::surface(std::size_t page) noexcept {
    return page < surfaces_.size() ? surfaces_[page].get() : nullptr;
}

}  // namespace vex::platform::win32
