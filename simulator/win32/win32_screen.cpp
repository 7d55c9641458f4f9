// The screen of real windows.
#include "simulator/win32/win32_screen.h"

#include <algorithm>
#include <list>
#include <stdexcept>
#include <utility>
#include <vector>

#include "platform/win32/form_context.h"
#include "platform/win32/window_name.h"
#include "simulator/win32/import_hook.h"

namespace vex::sim {

using namespace platform::win32;

namespace {

using Kind = forms::ControlKind;
using OwnedHook = Owned<HHOOK, UnhookWindowsHookEx>;

// ---- What a user reads --------------------------------------------------------------------------------

bool has_style(HWND window, LONG_PTR style) noexcept { return (GetWindowLongPtrW(window, GWL_STYLE) & style) == style; }

bool has_class(HWND window, LPCWSTR name) noexcept {
    constexpr int kLongestName = 256;
    WCHAR text[kLongestName] = {};
    GetClassNameW(window, text, kLongestName);
    return lstrcmpiW(text, name) == 0;
}

/// Calls `visit` for each window until it answers false.
template <class Visit>
BOOL CALLBACK visit_window(HWND window, LPARAM visit) noexcept {
    return (*reinterpret_cast<Visit*>(visit))(window) ? TRUE : FALSE;
}

/// The topmost dialog. Raises `std::invalid_argument`.
HWND dialog() {
    const HWND top = top_form_window();
    if (top == nullptr) throw std::invalid_argument("no dialog is open");
    return top;
}

HWND window_of(const std::u16string& control) { return control_window(dialog(), control); }

/// Where a shape stands on the window that it is drawn on; null: it is none of that window's.
LPARAM shape_on(HWND window, std::u16string_view shape) {
    return reinterpret_cast<LPARAM>(GetPropW(window, wide(kShapePrefix + std::u16string(shape))));
}

/// The kind of a control that has a window, as far as a user can tell: pages are containers in a container that have
/// no names of their own.
Kind kind_of(HWND window) {
    if (has_class(window, WC_EDITW)) return Kind::text_box;
    if (has_class(window, WC_LISTVIEWW)) return Kind::list_view;
    if (has_class(window, WC_BUTTONW)) {
        const LONG_PTR style = GetWindowLongPtrW(window, GWL_STYLE) & BS_TYPEMASK;
        if (style == BS_RADIOBUTTON || style == BS_AUTORADIOBUTTON) return Kind::option_button;
        return style == BS_CHECKBOX || style == BS_AUTOCHECKBOX ? Kind::check_box : Kind::button;
    }
    const HWND inside = GetWindow(window, GW_CHILD);
    const bool pages = inside != nullptr && has_class(inside, L"#32770") && window_name(inside).empty();
    return pages ? Kind::tab_pages : Kind::label;
}

/// The page that shows, from 0.
int shown_page(HWND pages) {
    int page = 0;
    for (HWND inside = GetWindow(pages, GW_CHILD); inside != nullptr; inside = GetWindow(inside, GW_HWNDNEXT)) {
        if (has_style(inside, WS_VISIBLE)) return page;
        ++page;
    }
    return -1;
}

/// The colour on the screen at a point inside a shape.
std::optional<forms::Color> color_at(HWND window, LPARAM point) {
    UpdateWindow(window);
    const WindowContext context(window);
    const COLORREF color = GetPixel(context.dc(), static_cast<short>(LOWORD(point)), static_cast<short>(HIWORD(point)));
    return color == CLR_INVALID ? std::nullopt : std::optional<forms::Color>(color);
}

std::u16string shown_cell(HWND list, std::size_t row, int column) {
    constexpr std::size_t kLongest = 1024;
    std::u16string text(kLongest, u'\0');
    LVITEMW item = {};
    item.iSubItem = column;
    item.pszText = wide(text);
    item.cchTextMax = kLongest;
    text.resize(static_cast<std::size_t>(SendMessageW(list, LVM_GETITEMTEXTW, row, reinterpret_cast<LPARAM>(&item))));
    return text;
}

ShownRow shown_row_of(HWND list, std::size_t row) {
    const auto header = reinterpret_cast<HWND>(SendMessageW(list, LVM_GETHEADER, 0, 0));
    const auto columns = static_cast<int>(SendMessageW(header, HDM_GETITEMCOUNT, 0, 0));
    ShownRow shown;
    for (int column = 0; column < columns; ++column) shown.cells.push_back(shown_cell(list, row, column));
    // As the list asks its owner before it draws a row. A pixel would not do: smoothed letters have none that
    // is sure to be of their own colour.
    NMLVCUSTOMDRAW draw = {};
    draw.nmcd.hdr = {list, static_cast<UINT_PTR>(GetDlgCtrlID(list)), static_cast<UINT>(NM_CUSTOMDRAW)};
    draw.nmcd.dwDrawStage = CDDS_ITEMPREPAINT;
    draw.nmcd.dwItemSpec = row;
    SendMessageW(GetParent(list), WM_NOTIFY, draw.nmcd.hdr.idFrom, reinterpret_cast<LPARAM>(&draw));
    shown.color = draw.clrText;
    return shown;
}

/// The text of a message box, by the number that the system gives it.
HWND message_text(HWND box) noexcept { return GetDlgItem(box, 0xFFFF); }

bool is_message_box(HWND window) noexcept {
    return has_class(window, L"#32770") && GetPropW(window, kNameProperty) == nullptr &&
           message_text(window) != nullptr;
}

// ---- What a user does ---------------------------------------------------------------------------------

void post_key(HWND window, WPARAM key) noexcept {
    PostMessageW(window, WM_KEYDOWN, key, 1);
    PostMessageW(window, WM_KEYUP, key, static_cast<LPARAM>(0xC0000001));
}

void press_at(HWND window, forms::MouseButton button, POINT place) noexcept {
    const bool left = button == forms::MouseButton::left;
    const LPARAM position = MAKELPARAM(place.x, place.y);
    // The release comes first: some windows wait for it inside the press.
    PostMessageW(window, left ? WM_LBUTTONUP : WM_RBUTTONUP, 0, position);
    SendMessageW(window, left ? WM_LBUTTONDOWN : WM_RBUTTONDOWN, left ? MK_LBUTTON : MK_RBUTTON, position);
}

void close_form(HWND form) noexcept { SendMessageW(form, WM_SYSCOMMAND, SC_CLOSE, 0); }

/// The system's own. To be called once before it is replaced, as it is found by itself.
FARPROC system_get_proc_address(HMODULE library, LPCSTR name) noexcept {
    static auto* const system_get = system_function<decltype(GetProcAddress)>(L"kernel32.dll", "GetProcAddress");
    return system_get(library, name);
}

}  // namespace

// ---- What the module's loops do -----------------------------------------------------------------------

/// Stands between the module and the system, and tells the user what the windows do.
class Win32Screen::Driver {
public:
    Driver(const std::u16string& module, ScreenUser& user) : user_(user) {
        const HMODULE watched = module.empty() ? module_instance() : GetModuleHandleW(wide(module));
        if (watched == nullptr) throw last_error(u"The module is not loaded");
        system_get_proc_address(watched, "");
        import_hooks_.emplace_back(watched, "PeekMessageW", &Driver::peek_message);
        import_hooks_.emplace_back(watched, "WaitMessage", &Driver::wait_message);
        import_hooks_.emplace_back(watched, "GetProcAddress", &Driver::get_proc_address);
        import_hooks_.emplace_back(watched, "MessageBeep", &Driver::message_beep);
        activity_hook_ = OwnedHook(SetWindowsHookExW(WH_CBT, activity_hook, nullptr, GetCurrentThreadId()));
        message_hook_ = OwnedHook(SetWindowsHookExW(WH_CALLWNDPROC, message_hook, nullptr, GetCurrentThreadId()));
        current_ = this;
    }
    ~Driver() { current_ = nullptr; }

    /// What to choose from the next menu.
    std::optional<std::u16string> menu_item;

private:
    static BOOL WINAPI peek_message(MSG* message, HWND window, UINT first, UINT last, UINT flags) noexcept {
        static auto* const system_peek = system_function<decltype(PeekMessageW)>(L"user32.dll", "PeekMessageW");
        if (system_peek(message, window, first, last, flags)) return TRUE;
        Driver* const driver = current_;
        // Each pumping ends dry twice: the user acts after the first, and what that has caused is handled too.
        if (driver == nullptr || std::exchange(driver->pumped_, false)) return FALSE;
        driver->user_.messages_handled();
        driver->pumped_ = system_peek(message, window, first, last, flags) != FALSE;
        return driver->pumped_;
    }

    static BOOL WINAPI wait_message() noexcept {
        static auto* const system_wait = system_function<decltype(WaitMessage)>(L"user32.dll", "WaitMessage");
        const HWND form = current_ == nullptr ? nullptr : top_form_window();
        if (form == nullptr) return system_wait();
        if (current_->user_.act()) return TRUE;
        // A form that will not close would keep the program for ever.
        constexpr int kPatience = 3;
        if (++current_->refused_closes_ > kPatience) {
            PostQuitMessage(0);
        } else {
            close_form(form);
        }
        return TRUE;
    }

    /// The module finds the Open dialog by this.
    static FARPROC WINAPI get_proc_address(HMODULE library, LPCSTR name) noexcept {
        const bool open_file = !IS_INTRESOURCE(name) && std::string_view(name) == "GetOpenFileNameW";
        return open_file ? reinterpret_cast<FARPROC>(reinterpret_cast<void*>(get_open_file_name))
                         : system_get_proc_address(library, name);
    }

    static BOOL WINAPI get_open_file_name(OPENFILENAMEW* dialog) noexcept {
        if (current_ == nullptr) return FALSE;
        const auto text = [](LPCWSTR given) {
            return given == nullptr ? std::u16string() : std::u16string(reinterpret_cast<const char16_t*>(given));
        };
        // One description and one pattern, each ended by a null.
        const std::u16string description = text(dialog->lpstrFilter);
        const std::u16string filter = description + u"|" + text(dialog->lpstrFilter + description.size() + 1);
        const auto chosen = current_->user_.choose_file(
            {text(dialog->lpstrInitialDir), text(dialog->lpstrFile), filter, dialog->Flags & ~DWORD{OFN_NOCHANGEDIR}});
        if (!chosen || chosen->size() >= dialog->nMaxFile) return FALSE;
        chosen->copy(reinterpret_cast<char16_t*>(dialog->lpstrFile), chosen->size());
        dialog->lpstrFile[chosen->size()] = L'\0';
        return TRUE;
    }

    static BOOL WINAPI message_beep(UINT /*type*/) noexcept {
        if (current_ != nullptr) current_->user_.beeped();
        return TRUE;
    }

    static LRESULT CALLBACK activity_hook(int code, WPARAM wide_parameter, LPARAM long_parameter) noexcept {
        const auto window = reinterpret_cast<HWND>(wide_parameter);
        if (current_ != nullptr && code == HCBT_DESTROYWND) current_->destroyed(window);
        if (current_ != nullptr && code == HCBT_ACTIVATE && is_message_box(window))
            current_->answer_message_box(window);
        return CallNextHookEx(nullptr, code, wide_parameter, long_parameter);
    }

    static LRESULT CALLBACK message_hook(int code, WPARAM wide_parameter, LPARAM long_parameter) noexcept {
        if (code == HC_ACTION && current_ != nullptr) {
            const auto& sent = *reinterpret_cast<const CWPSTRUCT*>(long_parameter);
            if (sent.message == WM_SHOWWINDOW && sent.wParam != FALSE && sent.lParam == 0) current_->shown(sent.hwnd);
            if (sent.message == WM_INITMENUPOPUP)
                current_->choose_item(sent.hwnd, reinterpret_cast<HMENU>(sent.wParam));
        }
        return CallNextHookEx(nullptr, code, wide_parameter, long_parameter);
    }

    void shown(HWND window) {
        const std::u16string name = window_name(window);
        if (GetAncestor(window, GA_ROOT) != window || name.empty()) return;
        refused_closes_ = 0;
        open_.emplace_back(window, name);
        user_.form_opened(name);
    }

    void destroyed(HWND window) noexcept {
        if (answered_box_ == window) answered_box_ = nullptr;
        const auto form = std::ranges::find(open_, window, &std::pair<HWND, std::u16string>::first);
        if (form == open_.end()) return;
        const std::u16string name = std::move(form->second);
        open_.erase(form);
        user_.form_closed(name);
    }

    void answer_message_box(HWND box) {
        if (std::exchange(answered_box_, box) == box) return;
        const HWND yes = GetDlgItem(box, IDYES);
        const auto buttons = yes != nullptr ? forms::MessageButtons::yes_no : forms::MessageButtons::ok;
        const auto answer = user_.answer({shown_text(box), shown_text(message_text(box)), buttons});
        HWND pressed = yes == nullptr ? FindWindowExW(box, nullptr, WC_BUTTONW, nullptr) : yes;
        if (yes != nullptr && answer == forms::MessageAnswer::no) pressed = GetDlgItem(box, IDNO);
        PostMessageW(pressed, BM_CLICK, 0, 0);
    }

    void choose_item(HWND owner, HMENU menu) {
        const auto wanted = std::exchange(menu_item, std::nullopt);
        const int count = wanted ? GetMenuItemCount(menu) : 0;
        int steps = 0;
        for (int index = 0; index < count && steps == 0; ++index) {
            std::u16string text(wanted->size() + 2, u'\0');
            const int length = GetMenuStringW(menu, static_cast<UINT>(index), wide(text), static_cast<int>(text.size()),
                                              MF_BYPOSITION);
            if (text.substr(0, static_cast<std::size_t>(length)) == *wanted) steps = index + 1;
        }
        for (int step = 0; step < steps; ++step) post_key(owner, VK_DOWN);
        post_key(owner, steps > 0 ? VK_RETURN : VK_ESCAPE);
    }

    static thread_local Driver* current_;

    ScreenUser& user_;
    std::list<ImportHook> import_hooks_;
    OwnedHook activity_hook_;
    OwnedHook message_hook_;
    /// The open forms and their names.
    std::vector<std::pair<HWND, std::u16string>> open_;
    /// Whether the messages of the pumping in progress have been handled once.
    bool pumped_ = false;
    int refused_closes_ = 0;
    HWND answered_box_ = nullptr;
};

thread_local Win32Screen::Driver* Win32Screen::Driver::current_ = nullptr;

// ---- The screen ---------------------------------------------------------------------------------------

HWND top_form_window() {
    HWND top = nullptr;
    // A modal form keeps the ones below it from taking input.
    auto look = [&top](HWND window) {
        const bool form = GetPropW(window, kNameProperty) != nullptr;
        if (form && IsWindowVisible(window) && IsWindowEnabled(window)) top = window;
        return top == nullptr;
    };
    EnumThreadWindows(GetCurrentThreadId(), visit_window<decltype(look)>, reinterpret_cast<LPARAM>(&look));
    return top;
}

HWND control_window(HWND form, std::u16string_view control) {
    HWND found = find_named_window(form, control);
    auto look = [&](HWND window) {
        if (shape_on(window, control) != 0) found = window;
        return found == nullptr;
    };
    if (found == nullptr && look(form))
        EnumChildWindows(form, visit_window<decltype(look)>, reinterpret_cast<LPARAM>(&look));
    return found;
}

std::u16string shown_text(HWND window) {
    std::u16string text(static_cast<std::size_t>(SendMessageW(window, WM_GETTEXTLENGTH, 0, 0)) + 1, u'\0');
    text.resize(
        static_cast<std::size_t>(SendMessageW(window, WM_GETTEXT, text.size(), reinterpret_cast<LPARAM>(text.data()))));
    return text;
}

Win32Screen::Win32Screen(std::u16string module) noexcept : module_(std::move(module)) {}

Win32Screen::~Win32Screen() = default;

void Win32Screen::set_user(ScreenUser* user) noexcept {
    driver_.reset();
    // Without a driver nobody would ever act: a module whose loops cannot be watched ends the program.
    if (user != nullptr) driver_ = std::make_unique<Driver>(module_, *user);
}

std::optional<ShownControl> Win32Screen::find(const std::u16string& name) const {
    const HWND window = any_dialog() ? window_of(name) : nullptr;
    if (window == nullptr) return std::nullopt;
    ShownControl shown;
    shown.kind = window_name(window) == name ? kind_of(window) : Kind::shape;
    shown.caption = shown_text(window);
    shown.enabled = !has_style(window, WS_DISABLED);
    shown.visible = has_style(window, WS_VISIBLE);
    shown.takes_input =
        IsWindowVisible(window) && IsWindowEnabled(window) && IsWindowEnabled(GetAncestor(window, GA_ROOT));
    if (shown.kind == Kind::option_button || shown.kind == Kind::check_box)
        shown.checked = SendMessageW(window, BM_GETCHECK, 0, 0) == BST_CHECKED;
    if (shown.kind == Kind::shape) shown.fill_color = color_at(window, shape_on(window, name));
    if (shown.kind == Kind::tab_pages) shown.page = shown_page(window);
    const auto rows = shown.kind == Kind::list_view ? SendMessageW(window, LVM_GETITEMCOUNT, 0, 0) : 0;
    for (LRESULT row = 0; row < rows; ++row) shown.rows.push_back(shown_row_of(window, static_cast<std::size_t>(row)));
    return shown;
}

void Win32Screen::close() { close_form(dialog()); }

void Win32Screen::activate() {
    const HWND form = dialog();
    SendMessageW(form, WM_ACTIVATE, WA_INACTIVE, 0);
    SendMessageW(form, WM_ACTIVATE, WA_ACTIVE, 0);
}

std::u16string Win32Screen::dialog_name() const { return window_name(dialog()); }

std::u16string Win32Screen::dialog_caption() const { return shown_text(dialog()); }

void Win32Screen::do_click(const std::u16string& name) { SendMessageW(window_of(name), BM_CLICK, 0, 0); }

void Win32Screen::do_press(const std::u16string& name, forms::MouseButton button, float x, float y) {
    const HWND window = window_of(name);
    const WindowContext context(window);
    const Scale scale(GetDeviceCaps(context.dc(), LOGPIXELSX), GetDeviceCaps(context.dc(), LOGPIXELSY));
    press_at(window, button, {scale.x(static_cast<forms::Twips>(x)), scale.y(static_cast<forms::Twips>(y))});
}

void Win32Screen::do_type(const std::u16string& name, const std::u16string& text) {
    SendMessageW(window_of(name), WM_SETTEXT, 0, reinterpret_cast<LPARAM>(text.c_str()));
}

bool Win32Screen::do_choose(const std::u16string& name, std::size_t row, const std::u16string& item) {
    const HWND list = window_of(name);
    RECT bounds = {};
    bounds.left = LVIR_BOUNDS;
    SendMessageW(list, LVM_GETITEMRECT, row, reinterpret_cast<LPARAM>(&bounds));
    driver_->menu_item = item;
    press_at(list, forms::MouseButton::right, {1, (bounds.top + bounds.bottom) / 2});
    // Still there: no menu has come up to choose from.
    return !std::exchange(driver_->menu_item, std::nullopt).has_value();
}

}  // namespace vex::sim
