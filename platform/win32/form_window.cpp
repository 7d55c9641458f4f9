#include "platform/win32/form_window.h"

#include <algorithm>

#include "platform/win32/control_site.h"
#include "platform/win32/control_window.h"
#include "platform/win32/controls_context.h"
#include "platform/win32/list_window.h"
#include "platform/win32/pictures.h"
#include "platform/win32/windows_api.h"

namespace vex::platform::win32 {
namespace {

constexpr DWORD kFrameStyle = WS_POPUP | WS_CAPTION | WS_SYSMENU;
/// Below it are the numbers that the system uses itself, among them that of the cancel key.
constexpr int kFirstControlId = 1000;

/// A plain pointer: nothing has to be destroyed when the thread or the module ends.
thread_local FormWindow* top_form = nullptr;

/// A frame of dialogs shows no icon unless it has one.
DWORD frame_extended_style(const forms::Form& form) noexcept {
    return form.icon().empty() ? WS_EX_CONTROLPARENT | WS_EX_DLGMODALFRAME : WS_EX_CONTROLPARENT;
}

bool is_button(const forms::Control& control) noexcept { return control.kind() == forms::ControlKind::button; }

/// The number of a control's window: the button of the Esc key has the one by which the system finds it.
int control_id(const forms::Control& control, std::ptrdiff_t index) noexcept {
    if (is_button(control) && static_cast<const forms::Button&>(control).is_cancel) return IDCANCEL;
    return kFirstControlId + static_cast<int>(index);
}

/// The part of the screen that a window may use where `near_window` is, or where the pointer is.
RECT work_area(HWND near_window) noexcept {
    POINT pointer = {};
    GetCursorPos(&pointer);
    const HMONITOR monitor = near_window != nullptr ? MonitorFromWindow(near_window, MONITOR_DEFAULTTONEAREST)
                                                    : MonitorFromPoint(pointer, MONITOR_DEFAULTTONEAREST);
    MONITORINFO information = {};
    information.cbSize = sizeof information;
    GetMonitorInfoW(monitor, &information);
    return information.rcWork;
}

void bring_forward(HWND window) noexcept {
    BringWindowToTop(window);
    SetForegroundWindow(window);
}

/// Brings the topmost form, or the system's dialog over it, before what the user pressed in its place. The system
/// does so only where that is its owner.
void bring_top_forward() noexcept {
    const HWND front = top_form == nullptr ? nullptr : GetLastActivePopup(top_form->window());
    if (front != nullptr && IsWindowEnabled(front)) bring_forward(front);
}

/// What the system tells a user who ends the session while the window refuses; empty: it does not.
void set_refusal_reason(HWND window, const std::u16string& reason) {
    const LateLibrary user(u"user32.dll");
    if (reason.empty()) {
        auto* const destroy = user.try_function<decltype(ShutdownBlockReasonDestroy)>("ShutdownBlockReasonDestroy");
        if (destroy != nullptr) destroy(window);
    } else {
        auto* const create = user.try_function<decltype(ShutdownBlockReasonCreate)>("ShutdownBlockReasonCreate");
        if (create != nullptr) create(window, wide(reason));
    }
}

}  // namespace

std::unique_ptr<ControlWindow> ControlWindow::make(Surface& parent, forms::Control& control, int id) {
    using forms::ControlKind;
    switch (control.kind()) {
        case ControlKind::label: return std::make_unique<LabelWindow>(parent, static_cast<forms::Label&>(control), id);
        case ControlKind::button:
        case ControlKind::option_button:
        case ControlKind::check_box: return std::make_unique<ButtonWindow>(parent, control, id);
        case ControlKind::text_box:
            return std::make_unique<TextBoxWindow>(parent, static_cast<forms::TextBox&>(control), id);
        case ControlKind::panel: return std::make_unique<PanelWindow>(parent, static_cast<forms::Panel&>(control));
        case ControlKind::tab_pages:
            return std::make_unique<PagesWindow>(parent, static_cast<forms::TabPages&>(control));
        case ControlKind::list_view:
            return std::make_unique<ListWindow>(parent, static_cast<forms::ListView&>(control), id);
        case ControlKind::host_control: {
            auto& hosted = static_cast<forms::HostControl&>(control);
            return hosted.object == nullptr ? nullptr : std::make_unique<HostControlWindow>(parent, hosted, id);
        }
        case ControlKind::shape:
        case ControlKind::line: return nullptr;
    }
    return nullptr;
}

FormWindow::FormWindow(forms::Form& form, HWND owner, HWND below) : context_(form), root_(*this) {
    const ControlsContext modern_controls;
    root_.create(owner, kFrameStyle, frame_extended_style(form));
    name_ = WindowName(window(), form.name());
    set_frame(below);
    make_controls(root_);
    form.set_view(this);
    below_ = std::exchange(top_form, this);
}

FormWindow::~FormWindow() {
    top_form = below_;
    context_.form().set_view(nullptr);
    // Children first: a container takes their windows with it.
    while (!controls_.empty()) controls_.pop_back();
}

FormWindow* FormWindow::top() noexcept { return top_form; }

void FormWindow::set_frame(HWND below) {
    const forms::Form& form = context_.form();
    SetWindowTextW(window(), wide(form.caption()));
    SendMessageW(window(), WM_SETFONT, reinterpret_cast<WPARAM>(context_.font(form.font())), FALSE);
    small_icon_ = module_icon(form.icon(), GetSystemMetrics(SM_CXSMICON), GetSystemMetrics(SM_CYSMICON));
    large_icon_ = module_icon(form.icon(), GetSystemMetrics(SM_CXICON), GetSystemMetrics(SM_CYICON));
    if (small_icon_) SendMessageW(window(), WM_SETICON, ICON_SMALL, reinterpret_cast<LPARAM>(small_icon_.get()));
    if (large_icon_) SendMessageW(window(), WM_SETICON, ICON_BIG, reinterpret_cast<LPARAM>(large_icon_.get()));

    RECT frame = {0, 0, context_.scale().x(form.width()), context_.scale().y(form.height())};
    AdjustWindowRectEx(&frame, kFrameStyle, FALSE, frame_extended_style(form));
    const int width = frame.right - frame.left;
    const int height = frame.bottom - frame.top;

    const RECT area = work_area(below);
    RECT middle = area;
    if (below != nullptr && IsWindowVisible(below) && !IsIconic(below)) GetWindowRect(below, &middle);
    const auto within = [](LONG place, LONG size, LONG first, LONG last) {
        return std::max(first, std::min(place, last - size));
    };
    SetWindowPos(window(), nullptr, within((middle.left + middle.right - width) / 2, width, area.left, area.right),
                 within((middle.top + middle.bottom - height) / 2, height, area.top, area.bottom), width, height,
                 SWP_NOZORDER | SWP_NOACTIVATE);
}

void FormWindow::make_controls(Surface& surface) {
    surface.adopt_drawings();
    // The system's keyboard order is the order of the windows.
    for (forms::Control* control : context_.form().keyboard_order()) {
        if (control->parent() == surface.container() && control->page() == surface.page()) {
            make_control(surface, *control);
        }
    }
}

void FormWindow::make_control(Surface& surface, forms::Control& control) {
    const auto& controls = context_.form().controls();
    const int id = control_id(control, std::find(controls.begin(), controls.end(), &control) - controls.begin());
    auto made = ControlWindow::make(surface, control, id);
    if (made == nullptr) return;
    ControlWindow& window_of_control = *controls_.emplace_back(std::move(made));
    for (std::size_t page = 0; Surface* below = window_of_control.surface(page); ++page) {
        make_controls(*below);
        if (control.kind() == forms::ControlKind::panel) break;
    }
    if (is_button(control) && static_cast<const forms::Button&>(control).is_default) {
        SendMessageW(window(), DM_SETDEFID, static_cast<WPARAM>(id), 0);
    }
}

void FormWindow::show() {
    ShowWindow(window(), SW_SHOW);
    bring_forward(window());
    if (const HWND first = GetNextDlgTabItem(window(), nullptr, FALSE)) {
        SendMessageW(window(), WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(first), TRUE);
    }
    RedrawWindow(window(), nullptr, nullptr, RDW_UPDATENOW | RDW_ALLCHILDREN);
}

POINT FormWindow::menu_place() const noexcept {
    POINT place = {};
    GetCursorPos(&place);
    return context_.menu_place.value_or(place);
}

void FormWindow::changed(forms::Control& control, forms::Change change) {
    const FormContext::Update update(context_);
    if (ControlWindow* changed = find(control)) {
        const HWND focus = GetFocus();
        changed->update(change);
        move_focus_from(focus);
    } else if (Surface* surface = surface_below(control)) {
        surface->invalidate(control);
    }
}

void FormWindow::move_focus_from(HWND focus) noexcept {
    if (focus == nullptr || !IsChild(window(), focus) || (IsWindowEnabled(focus) && IsWindowVisible(focus))) return;
    // A window that can no longer be used would swallow the keyboard.
    HWND next = GetNextDlgTabItem(window(), focus, FALSE);
    if (next == nullptr || next == focus) next = GetNextDlgTabItem(window(), nullptr, FALSE);
    if (next != nullptr && next != focus) {
        SendMessageW(window(), WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(next), TRUE);
    } else {
        SetFocus(window());
    }
}

void FormWindow::refresh(forms::Control& control) {
    const ControlWindow* shown = find(control);
    const Surface* surface = shown == nullptr ? surface_below(control) : nullptr;
    const HWND target = shown != nullptr ? shown->window() : surface != nullptr ? surface->window() : nullptr;
    if (target != nullptr) RedrawWindow(target, nullptr, nullptr, RDW_UPDATENOW | RDW_ALLCHILDREN);
}

forms::Twips FormWindow::row_top(const forms::ListView& list, std::size_t row) const {
    const auto* shown = static_cast<const ListWindow*>(find(list));
    return shown == nullptr ? 0 : shown->row_top(row);
}

ControlWindow* FormWindow::find(const forms::Control& control) const noexcept {
    for (const auto& candidate : controls_) {
        if (&candidate->control() == &control) return candidate.get();
    }
    return nullptr;
}

Surface* FormWindow::surface_below(const forms::Control& control) noexcept {
    if (control.parent() == nullptr) return &root_;
    ControlWindow* container = find(*control.parent());
    const auto page = static_cast<std::size_t>(std::max(control.page(), 0));
    return container == nullptr ? nullptr : container->surface(page);
}

bool FormWindow::may_end_session() const {
    bool may = true;
    for (const FormWindow* open = top_form; open != nullptr; open = open->below_) {
        forms::Form& form = open->context_.form();
        if (form.may_unload(forms::UnloadMode::system)) continue;
        may = false;
        set_refusal_reason(window(), form.caption() + u" has not finished its work.");
    }
    if (may) set_refusal_reason(window(), {});
    return may;
}

std::optional<LRESULT> FormWindow::Root::handle(UINT message, WPARAM wide_parameter, LPARAM long_parameter) {
    forms::Form& form = context().form();
    switch (message) {
        case WM_ACTIVATE:
            if (LOWORD(wide_parameter) != WA_INACTIVE) form_window_.activated_ = true;
            return std::nullopt;
        case WM_CLOSE:
            // Under a modal form or message box the form takes no requests, whoever sends them.
            if (IsWindowEnabled(window())) form.raise_close_request(forms::UnloadMode::control_menu);
            return 0;
        case WM_SETCURSOR:
            // How a window that takes no input is told of a press.
            if (static_cast<short>(LOWORD(long_parameter)) == HTERROR && pressed_button(HIWORD(long_parameter))) {
                bring_top_forward();
            }
            return std::nullopt;
        case WM_QUERYENDSESSION: return form_window_.may_end_session();
        case WM_ENDSESSION:
            if (wide_parameter != FALSE) form.raise_close_request(forms::UnloadMode::system);
            return 0;
        case WM_DESTROY:
            // Somebody else destroys it, with its owner.
            form.hide();
            return std::nullopt;
        default: return std::nullopt;
    }
}

}  // namespace vex::platform::win32
