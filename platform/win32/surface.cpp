#include "platform/win32/surface.h"

#include <windowsx.h>

#include "platform/win32/control_window.h"
#include "platform/win32/window_name.h"

namespace vex::platform::win32 {
namespace {

/// A dialog template without controls, followed by its empty menu, class and title.
struct EmptyTemplate {
    DLGTEMPLATE header;
    WORD menu;
    WORD window_class;
    WORD title;
};

std::u16string shape_property(const forms::Control& shape) {
    return kShapePrefix + std::u16string(shape.name().begin(), shape.name().end());
}

void paint_shape(HDC dc, const forms::Shape& shape, const RECT& at) noexcept {
    SelectObject(dc, GetStockObject(DC_BRUSH));
    SelectObject(dc, GetStockObject(BLACK_PEN));
    SetDCBrushColor(dc, shape.fill_color());
    Rectangle(dc, at.left, at.top, at.right, at.bottom);
}

void paint_line(HDC dc, const forms::Line& line, const RECT& at) noexcept {
    if (line.etched) {
        RECT groove = at;
        DrawEdge(dc, &groove, EDGE_ETCHED, at.bottom - at.top < at.right - at.left ? BF_TOP : BF_LEFT);
        return;
    }
    SelectObject(dc, GetStockObject(DC_PEN));
    SetDCPenColor(dc, line.fore_color());
    MoveToEx(dc, at.left, at.top, nullptr);
    LineTo(dc, at.right, at.bottom);
    // The system leaves the last point out.
    SetPixelV(dc, at.right, at.bottom, line.fore_color());
}

}  // namespace

std::optional<forms::MouseButton> pressed_button(UINT message) noexcept {
    switch (message) {
        case WM_LBUTTONDOWN:
        case WM_LBUTTONDBLCLK:
            return forms::MouseButton::left;
        case WM_RBUTTONDOWN:
        case WM_RBUTTONDBLCLK:
            return forms::MouseButton::right;
        case WM_MBUTTONDOWN:
        case WM_MBUTTONDBLCLK:
            return forms::MouseButton::middle;
        default:
            return std::nullopt;
    }
}

void raise_mouse_down(FormContext& context, forms::Control& control, forms::MouseButton button,
                      LPARAM position) noexcept {
    const Scale& scale = context.scale();
    context.form().raise_mouse_down(control, button, static_cast<float>(scale.twips_x(GET_X_LPARAM(position))),
                                    static_cast<float>(scale.twips_y(GET_Y_LPARAM(position))));
}

COLORREF text_color(forms::Color color, int system_color) noexcept {
    return color == forms::kBlack ? GetSysColor(system_color) : color;
}

Surface::Surface(FormContext& context, forms::Control* container, int page)
    : context_(context), container_(container), page_(page) {
    forms::Twips left = 0;
    forms::Twips top = 0;
    for (const forms::Control* area = container; area != nullptr; area = area->parent()) {
        left += area->place().left;
        top += area->place().top;
    }
    origin_ = {left, top};
}

void Surface::create(HWND parent, DWORD style, DWORD extended_style) {
    EmptyTemplate design = {};
    design.header.style = style | WS_CLIPCHILDREN | WS_CLIPSIBLINGS;
    design.header.dwExtendedStyle = extended_style;
    window_ = OwnedWindow(CreateDialogIndirectParamW(module_instance(), &design.header, parent, dialog_procedure,
                                                     reinterpret_cast<LPARAM>(this)));
    if (!window_) throw last_error(u"A window cannot be made");
}

void Surface::adopt_drawings() {
    for (const forms::Control* control : context_.form().controls()) {
        const bool drawn = control->kind() == forms::ControlKind::shape || control->kind() == forms::ControlKind::line;
        if (!drawn || control->parent() != container_ || control->page() != page_) continue;
        drawings_.push_back(control);
        invalidate(*control);
    }
}

RECT Surface::pixels(const forms::Rect& place) const noexcept {
    const Scale& scale = context_.scale();
    const int left = scale.x(origin_.x);
    const int top = scale.y(origin_.y);
    return {scale.x(origin_.x + place.left) - left, scale.y(origin_.y + place.top) - top,
            scale.x(origin_.x + place.left + place.width) - left, scale.y(origin_.y + place.top + place.height) - top};
}

void Surface::paint(HDC dc) const noexcept {
    RECT area;
    GetClientRect(window(), &area);
    FillRect(dc, &area, brush(dc));
    for (const forms::Control* drawing : drawings_) {
        if (!drawing->visible()) continue;
        const RECT at = pixels(drawing->place());
        if (drawing->kind() == forms::ControlKind::shape) {
            paint_shape(dc, static_cast<const forms::Shape&>(*drawing), at);
        } else {
            paint_line(dc, static_cast<const forms::Line&>(*drawing), at);
        }
    }
}

void Surface::invalidate(const forms::Control& drawing) {
    RECT at = pixels(drawing.place());
    if (drawing.kind() == forms::ControlKind::shape) {
        const std::u16string property = shape_property(drawing);
        if (drawing.visible()) {
            const LPARAM inside = MAKELPARAM((at.left + at.right) / 2, (at.top + at.bottom) / 2);
            SetPropW(window(), wide(property), reinterpret_cast<HANDLE>(inside));
        } else {
            RemovePropW(window(), wide(property));
        }
    }
    InflateRect(&at, 2, 2);
    InvalidateRect(window(), &at, TRUE);
}

HBRUSH Surface::brush(HDC dc) const noexcept {
    const auto color = container_ == nullptr ? std::nullopt : container_->back_color();
    if (!color) return GetSysColorBrush(COLOR_3DFACE);
    SetDCBrushColor(dc, *color);
    return static_cast<HBRUSH>(GetStockObject(DC_BRUSH));
}

void Surface::color_child(HDC dc, HWND child) const noexcept {
    SetBkMode(dc, TRANSPARENT);
    if (const ControlWindow* control = ControlWindow::from(child)) {
        SetTextColor(dc, text_color(control->control().fore_color(), COLOR_BTNTEXT));
    }
}

std::optional<LRESULT> Surface::handle(UINT message, WPARAM /*wide_parameter*/, LPARAM long_parameter) {
    if (container_ == nullptr || container_->kind() != forms::ControlKind::panel) return std::nullopt;
    const auto button = pressed_button(message);
    if (!button) return std::nullopt;
    raise_mouse_down(context_, *container_, *button, long_parameter);
    return 0;
}

std::optional<LRESULT> Surface::handle_any(UINT message, WPARAM wide_parameter, LPARAM long_parameter) {
    switch (message) {
        case WM_ERASEBKGND:
            paint(reinterpret_cast<HDC>(wide_parameter));
            return 1;
        case WM_COMMAND:
            // Keyboard commands without a control behind them mean nothing here.
            if (ControlWindow* source = ControlWindow::from(reinterpret_cast<HWND>(long_parameter))) {
                if (!context_.updating()) source->command(HIWORD(wide_parameter));
            }
            return 0;
        case WM_NOTIFY: {
            auto& header = *reinterpret_cast<NMHDR*>(long_parameter);
            ControlWindow* source = ControlWindow::from(header.hwndFrom);
            return source == nullptr ? std::nullopt : source->notify(header);
        }
        case WM_DESTROY: {
            const auto result = handle(message, wide_parameter, long_parameter);
            window_.release();
            return result;
        }
        default:
            return handle(message, wide_parameter, long_parameter);
    }
}

INT_PTR CALLBACK Surface::dialog_procedure(HWND window, UINT message, WPARAM wide_parameter,
                                           LPARAM long_parameter) noexcept {
    if (message == WM_INITDIALOG) {
        SetWindowLongPtrW(window, DWLP_USER, long_parameter);
        // The focus is given when the form is shown.
        return FALSE;
    }
    auto* surface = reinterpret_cast<Surface*>(GetWindowLongPtrW(window, DWLP_USER));
    if (surface == nullptr || surface->window() != window) return FALSE;
    if (message == WM_CTLCOLORDLG)
        return reinterpret_cast<INT_PTR>(surface->brush(reinterpret_cast<HDC>(wide_parameter)));
    if (message == WM_CTLCOLORSTATIC || message == WM_CTLCOLORBTN) {
        auto* const dc = reinterpret_cast<HDC>(wide_parameter);
        surface->color_child(dc, reinterpret_cast<HWND>(long_parameter));
        return reinterpret_cast<INT_PTR>(surface->brush(dc));
    }
    const auto result = surface->context_.guarded(
        [&] { return surface->handle_any(message, wide_parameter, long_parameter); }, std::optional<LRESULT>(0));
    if (!result) return FALSE;
    SetWindowLongPtrW(window, DWLP_MSGRESULT, *result);
    return TRUE;
}

}  // namespace vex::platform::win32
