#include "simulator/win32/window_driver.h"

#include <algorithm>
#include <string_view>

#include "platform/win32/form_context.h"
#include "platform/win32/window_name.h"
#include "platform/win32/windows_api.h"

namespace vex::sim {

using namespace platform::win32;

namespace {

HWND handle(WindowHandle window) noexcept { return static_cast<HWND>(window); }

HMODULE module_named(const std::u16string& name) {
    if (name.empty()) return module_instance();
    const HMODULE module = GetModuleHandleW(wide(name));
    if (module == nullptr) throw last_error(u"The module is not loaded");
    return module;
}

/// The text of a message box, by the number that the system gives it.
HWND message_text(HWND box) noexcept {
    constexpr int kTextId = 0xFFFF;
    return GetDlgItem(box, kTextId);
}

bool is_message_box(HWND window) noexcept {
    WCHAR name[16] = {};
    GetClassNameW(window, name, 16);
    return lstrcmpW(name, L"#32770") == 0 && GetPropW(window, kNameProperty) == nullptr &&
           message_text(window) != nullptr;
}

void post_key(HWND window, WPARAM key) noexcept {
    PostMessageW(window, WM_KEYDOWN, key, 1);
    PostMessageW(window, WM_KEYUP, key, static_cast<LPARAM>(0xC0000001));
}

/// The system's own. To be called once before it is replaced, as it is found by itself.
FARPROC system_get_proc_address(HMODULE library, LPCSTR name) noexcept {
    static auto* const system_get = system_function<decltype(GetProcAddress)>(L"kernel32.dll", "GetProcAddress");
    return system_get(library, name);
}

}  // namespace

thread_local WindowDriver* WindowDriver::current_ = nullptr;

WindowDriver::WindowDriver(const std::u16string& module, ScreenUser& user) : user_(user) {
    const HMODULE watched = module_named(module);
    import_hooks_.emplace_back(watched, "PeekMessageW", &WindowDriver::peek_message);
    import_hooks_.emplace_back(watched, "WaitMessage", &WindowDriver::wait_message);
    system_get_proc_address(watched, "");
    import_hooks_.emplace_back(watched, "GetProcAddress", &WindowDriver::get_proc_address);
    import_hooks_.emplace_back(watched, "MessageBeep", &WindowDriver::message_beep);
    activity_hook_ = SetWindowsHookExW(WH_CBT, activity_hook, nullptr, GetCurrentThreadId());
    message_hook_ = SetWindowsHookExW(WH_CALLWNDPROC, message_hook, nullptr, GetCurrentThreadId());
    current_ = this;
}

WindowDriver::~WindowDriver() {
    current_ = nullptr;
    UnhookWindowsHookEx(message_hook_);
    UnhookWindowsHookEx(activity_hook_);
}

// ---- What the module's loops do -----------------------------------------------------------------------

BOOL WINAPI WindowDriver::peek_message(MSG* message, HWND window, UINT first, UINT last, UINT flags) noexcept {
    static auto* const system_peek = system_function<decltype(PeekMessageW)>(L"user32.dll", "PeekMessageW");
    if (system_peek(message, window, first, last, flags)) return TRUE;
    WindowDriver* const driver = current_;
    // Each pumping ends dry twice: the user acts after the first, and what that has caused is handled too.
    if (driver == nullptr || std::exchange(driver->pumped_, false)) return FALSE;
    driver->user_.messages_handled();
    driver->pumped_ = system_peek(message, window, first, last, flags) != FALSE;
    return driver->pumped_;
}

BOOL WINAPI WindowDriver::wait_message() noexcept {
    static auto* const system_wait = system_function<decltype(WaitMessage)>(L"user32.dll", "WaitMessage");
    WindowDriver* const driver = current_;
    return driver != nullptr && driver->idle() ? TRUE : system_wait();
}

bool WindowDriver::idle() noexcept {
    const HWND form = handle(top_form_window());
    if (form == nullptr) return false;
    if (user_.act()) return true;
    // A form that will not close would keep the program for ever.
    constexpr int kPatience = 3;
    if (++refused_closes_ > kPatience) {
        PostQuitMessage(0);
    } else {
        close(form);
    }
    return true;
}

FARPROC WINAPI WindowDriver::get_proc_address(HMODULE library, LPCSTR name) noexcept {
    const bool open_file = !IS_INTRESOURCE(name) && std::string_view(name) == "GetOpenFileNameW";
    return open_file ? reinterpret_cast<FARPROC>(reinterpret_cast<void*>(get_open_file_name))
                     : system_get_proc_address(library, name);
}

BOOL WINAPI WindowDriver::get_open_file_name(OPENFILENAMEW* dialog) noexcept {
    if (current_ == nullptr) return FALSE;
    const auto text = [](LPCWSTR given) {
        return given == nullptr ? std::u16string() : std::u16string(reinterpret_cast<const char16_t*>(given));
    };
    // One description and one pattern, each ended by a null.
    const std::u16string description = text(dialog->lpstrFilter);
    const std::u16string pattern = text(dialog->lpstrFilter + description.size() + 1);
    const auto chosen =
        current_->user_.choose_file({text(dialog->lpstrInitialDir), text(dialog->lpstrFile),
                                     description + u"|" + pattern, dialog->Flags & ~DWORD{OFN_NOCHANGEDIR}});
    if (!chosen || chosen->size() >= dialog->nMaxFile) return FALSE;
    chosen->copy(reinterpret_cast<char16_t*>(dialog->lpstrFile), chosen->size());
    dialog->lpstrFile[chosen->size()] = L'\0';
    return TRUE;
}

BOOL WINAPI WindowDriver::message_beep(UINT /*type*/) noexcept {
    if (current_ != nullptr) current_->user_.beeped();
    return TRUE;
}

LRESULT CALLBACK WindowDriver::activity_hook(int code, WPARAM wide_parameter, LPARAM long_parameter) noexcept {
    const auto window = reinterpret_cast<HWND>(wide_parameter);
    if (current_ != nullptr) {
        if (code == HCBT_DESTROYWND) current_->destroyed(window);
        if (code == HCBT_ACTIVATE && is_message_box(window)) current_->answer_message_box(window);
    }
    return CallNextHookEx(nullptr, code, wide_parameter, long_parameter);
}

LRESULT CALLBACK WindowDriver::message_hook(int code, WPARAM wide_parameter, LPARAM long_parameter) noexcept {
    if (code == HC_ACTION && current_ != nullptr) {
        const auto& sent = *reinterpret_cast<const CWPSTRUCT*>(long_parameter);
        if (sent.message == WM_SHOWWINDOW && sent.wParam != FALSE && sent.lParam == 0) current_->shown(sent.hwnd);
        if (sent.message == WM_INITMENUPOPUP) current_->choose_item(sent.hwnd, reinterpret_cast<HMENU>(sent.wParam));
    }
    return CallNextHookEx(nullptr, code, wide_parameter, long_parameter);
}

void WindowDriver::shown(HWND window) {
    if (GetAncestor(window, GA_ROOT) != window) return;
    std::u16string name = window_name(window);
    if (name.empty()) return;
    refused_closes_ = 0;
    open_.push_back({window, name});
    user_.form_opened(name);
}

void WindowDriver::destroyed(HWND window) noexcept {
    if (answered_box_ == window) answered_box_ = nullptr;
    const auto form =
        std::find_if(open_.begin(), open_.end(), [window](const OpenForm& open) { return open.window == window; });
    if (form == open_.end()) return;
    const std::u16string name = std::move(form->name);
    open_.erase(form);
    user_.form_closed(name);
}

void WindowDriver::answer_message_box(HWND box) {
    if (std::exchange(answered_box_, box) == box) return;
    const HWND yes = GetDlgItem(box, IDYES);
    const auto buttons = yes != nullptr ? forms::MessageButtons::yes_no : forms::MessageButtons::ok;
    const auto answer = user_.answer({shown_text(box), shown_text(message_text(box)), buttons});
    HWND pressed = yes == nullptr ? FindWindowExW(box, nullptr, WC_BUTTONW, nullptr) : yes;
    if (yes != nullptr && answer == forms::MessageAnswer::no) pressed = GetDlgItem(box, IDNO);
    PostMessageW(pressed, BM_CLICK, 0, 0);
}

void WindowDriver::choose_item(HWND owner, HMENU menu) {
    const auto wanted = std::exchange(menu_item_, std::nullopt);
    const int count = GetMenuItemCount(menu);
    int steps = 0;
    for (int index = 0; wanted && index < count && steps == 0; ++index) {
        std::u16string text(
            static_cast<std::size_t>(GetMenuStringW(menu, static_cast<UINT>(index), nullptr, 0, MF_BYPOSITION)) + 1,
            u'\0');
        text.resize(static_cast<std::size_t>(
            GetMenuStringW(menu, static_cast<UINT>(index), wide(text), static_cast<int>(text.size()), MF_BYPOSITION)));
        if (text == *wanted) steps = index + 1;
    }
    for (int step = 0; step < steps; ++step) post_key(owner, VK_DOWN);
    post_key(owner, steps > 0 ? VK_RETURN : VK_ESCAPE);
}

// ---- What a user does ---------------------------------------------------------------------------------

void WindowDriver::click(WindowHandle button) { SendMessageW(handle(button), BM_CLICK, 0, 0); }

void WindowDriver::press(WindowHandle control, forms::MouseButton button, float x, float y) {
    const WindowContext context(handle(control));
    const Scale scale(GetDeviceCaps(context.dc(), LOGPIXELSX), GetDeviceCaps(context.dc(), LOGPIXELSY));
    press_at(handle(control), button, {scale.x(static_cast<forms::Twips>(x)), scale.y(static_cast<forms::Twips>(y))});
}

void WindowDriver::press_at(HWND window, forms::MouseButton button, POINT place) noexcept {
    const bool left = button == forms::MouseButton::left;
    const LPARAM position = MAKELPARAM(place.x, place.y);
    // The release comes first: some windows wait for it inside the press.
    PostMessageW(window, left ? WM_LBUTTONUP : WM_RBUTTONUP, 0, position);
    SendMessageW(window, left ? WM_LBUTTONDOWN : WM_RBUTTONDOWN, left ? MK_LBUTTON : MK_RBUTTON, position);
}

void WindowDriver::set_text(WindowHandle box, const std::u16string& text) {
    SendMessageW(handle(box), WM_SETTEXT, 0, reinterpret_cast<LPARAM>(text.c_str()));
}

bool WindowDriver::choose_from_menu(WindowHandle list, std::size_t row, const std::u16string& item) {
    RECT bounds = {};
    bounds.left = LVIR_BOUNDS;
    SendMessageW(handle(list), LVM_GETITEMRECT, row, reinterpret_cast<LPARAM>(&bounds));
    menu_item_ = item;
    press_at(handle(list), forms::MouseButton::right, {1, (bounds.top + bounds.bottom) / 2});
    // Still there: no menu has come up to choose from.
    return !std::exchange(menu_item_, std::nullopt).has_value();
}

void WindowDriver::close(WindowHandle form) { SendMessageW(handle(form), WM_SYSCOMMAND, SC_CLOSE, 0); }

void WindowDriver::activate(WindowHandle form) {
    SendMessageW(handle(form), WM_ACTIVATE, WA_INACTIVE, 0);
    SendMessageW(handle(form), WM_ACTIVATE, WA_ACTIVE, 0);
}

}  // namespace vex::sim
