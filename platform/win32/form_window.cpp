// The window of a form while it is shown.
#include "platform/win32/form_window.h"

#include <algorithm>
#include <limits>

#include "platform/win32/control_site.h"
#include "platform/win32/controls_context.h"
#include "platform/win32/list_window.h"
#include "platform/win32/module_icon.h"
#include "platform/win32/plain_windows.h"

namespace vex::platform::win32 {
namespace {

constexpr DWORD kFrameStyle = WS_POPUP | WS_CAPTION | WS_SYSMENU;
/// Below it are the numbers that the system uses itself, among them that of the cancel key.
constexpr int kFirstControlId = 1000;

/// A frame of dialogs shows no icon unless it has one.
DWORD frame_extended_style(const forms::Form& form) noexcept {
    return form.icon().empty() ? WS_EX_CONTROLPARENT | WS_EX_DLGMODALFRAME : WS_EX_CONTROLPARENT;
}

bool is_container(const forms::Control& control) noexcept {
    return control.kind() == forms::ControlKind::panel || control.kind() == forms::ControlKind::tab_pages;
}

bool is_button(const forms::Control& control) noexcept { return control.kind() == forms::ControlKind::button; }

/// The number of a control's window: the button of the Esc key has the one by which the system finds it.
int control_id(const forms::Control& control, std::size_t index) noexcept {
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

}  // namespace

std::unique_ptr<ControlWindow> ControlWindow::make(Surface& parent, forms::Control& control, int id) {
    using forms::ControlKind;
    switch (control.kind()) {
        case ControlKind::label:
            return std::make_unique<LabelWindow>(parent, static_cast<forms::Label&>(control), id);
        case ControlKind::button:
        case ControlKind::option_button:
        case ControlKind::check_box:
            return std::make_unique<ButtonWindow>(parent, control, id);
        case ControlKind::text_box:
            return std::make_unique<TextBoxWindow>(parent, static_cast<forms::TextBox&>(control), id);
        case ControlKind::panel:
            return std::make_unique<PanelWindow>(parent, static_cast<forms::Panel&>(control));
        case ControlKind::tab_pages:
            return std::make_unique<PagesWindow>(parent, static_cast<forms::TabPages&>(control));
        case ControlKind::list_view:
            return std::make_unique<ListWindow>(parent, static_cast<forms::ListView&>(control), id);
        case ControlKind::host_control: {
            auto& hosted = static_cast<forms::HostControl&>(control);
            return hosted.object == nullptr ? nullptr : std::make_unique<HostControlWindow>(parent, hosted, id);
        }
        case ControlKind::shape:
        case ControlKind::line:
            return nullptr;
    }
    return nullptr;
}

FormWindow::FormWindow(forms::Form& form, HWND owner) : context_(form), root_(*this) {
    const ControlsContext modern_controls;
    root_.create(owner, kFrameStyle, frame_extended_style(form));
    name_ = WindowName(window(), form.name());
    set_frame();
    make_controls(root_);
}

FormWindow::~FormWindow() {
    // Children first: a container takes their windows with it.
    while (!controls_.empty()) controls_.pop_back();
}

void FormWindow::set_frame() {
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

    const HWND owner = GetWindow(window(), GW_OWNER);
    const RECT area = work_area(owner);
    RECT middle = area;
    if (owner != nullptr && IsWindowVisible(owner) && !IsIconic(owner)) GetWindowRect(owner, &middle);
    const auto within = [](LONG place, LONG size, LONG first, LONG last) {
        return std::max(first, std::min(place, last - size));
    };
    SetWindowPos(window(), nullptr, within((middle.left + middle.right - width) / 2, width, area.left, area.right),
                 within((middle.top + middle.bottom - height) / 2, height, area.top, area.bottom), width, height,
                 SWP_NOZORDER | SWP_NOACTIVATE);
}

void FormWindow::make_controls(Surface& surface) {
    surface.adopt_drawings();
    const auto& controls = context_.form().controls();
    std::vector<std::size_t> order;
    for (std::size_t index = 0; index < controls.size(); ++index) {
        if (controls[index]->parent() == surface.container() && controls[index]->page() == surface.page()) {
            order.push_back(index);
        }
    }
    // The system's keyboard order is the order of the windows.
    std::stable_sort(order.begin(), order.end(), [this](std::size_t left, std::size_t right) {
        return keyboard_position(left) < keyboard_position(right);
    });
    for (const std::size_t index : order) make_control(surface, index);
}

void FormWindow::make_control(Surface& surface, std::size_t index) {
    forms::Control& control = *context_.form().controls()[index];
    const int id = control_id(control, index);
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

int FormWindow::keyboard_position(std::size_t index) const noexcept {
    constexpr int kLast = std::numeric_limits<int>::max();
    const auto& controls = context_.form().controls();
    const forms::Control& control = *controls[index];
    if (control.tab_index() >= 0) return control.tab_index();
    int position = kLast;
    if (is_container(control)) {
        // A container stands where its first control does.
        for (std::size_t other = 0; other < controls.size(); ++other) {
            if (controls[other]->parent() == &control) position = std::min(position, keyboard_position(other));
        }
        return position;
    }
    // What takes no focus stands before the next control that does: a label before its field.
    for (std::size_t next = index + 1; next < controls.size(); ++next) {
        const forms::Control& other = *controls[next];
        const bool beside = other.parent() == control.parent() && other.page() == control.page();
        if (beside && other.tab_index() >= 0) return other.tab_index();
    }
    return position;
}

void FormWindow::show() {
    ShowWindow(window(), SW_SHOW);
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

std::optional<LRESULT> FormWindow::Root::handle(UINT message, WPARAM wide_parameter, LPARAM /*long_parameter*/) {
    forms::Form& form = context().form();
    switch (message) {
        case WM_ACTIVATE:
            if (LOWORD(wide_parameter) != WA_INACTIVE) form_window_.activated_ = true;
            return std::nullopt;
        case WM_CLOSE:
            // Under a modal form or message box the form takes no requests, whoever sends them.
            if (IsWindowEnabled(window())) form.raise_close_request(forms::UnloadMode::control_menu);
            return 0;
        case WM_ENDSESSION:
            if (wide_parameter != FALSE) form.raise_close_request(forms::UnloadMode::system);
            return 0;
        case WM_DESTROY:
            // Somebody else destroys it, with its owner.
            form.hide();
            return std::nullopt;
        default:
            return std::nullopt;
    }
}

}  // namespace vex::platform::win32
