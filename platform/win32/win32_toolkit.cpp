// The Toolkit on user32 and the common controls.
#include <algorithm>
#include <vector>

#include "platform/system.h"
#include "platform/win32/form_window.h"
#include "platform/win32/window_name.h"

namespace vex::platform::win32 {
namespace {

/// Has no state of its own: what a thread shows is known to that thread.
class Win32Toolkit final : public forms::Toolkit {
public:
    void run_modal(forms::Form& form, forms::Form* owner) override;
    void pump_messages() override;
    forms::MessageAnswer message_box(const forms::MessageBox& box) override;
    std::optional<std::u16string> open_file(const forms::OpenFileRequest& request) override;
    void pop_up_menu(forms::Form& form, forms::Menu& menu) override;
    void beep() override;
};

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

/// Collects the windows that take input.
BOOL CALLBACK collect(HWND window, LPARAM windows) noexcept {
    if (!IsWindowVisible(window) || !IsWindowEnabled(window)) return TRUE;
    try {
        reinterpret_cast<std::vector<HWND>*>(windows)->push_back(window);
        return TRUE;
    } catch (...) {
        return FALSE;
    }
}

ModalScope::ModalScope(HWND modal, HWND below) : modal_(modal), below_(below), focus_(GetFocus()) {
    EnumThreadWindows(GetCurrentThreadId(), collect, reinterpret_cast<LPARAM>(&disabled_));
    std::erase(disabled_, modal);
    for (const HWND window : disabled_) EnableWindow(window, FALSE);
}

ModalScope::~ModalScope() {
    for (const HWND window : disabled_) {
        if (IsWindow(window)) EnableWindow(window, TRUE);
    }
    if (below_ == nullptr || !IsWindow(below_)) return;
    if (GetActiveWindow() == modal_) SetActiveWindow(below_);
    if (focus_ == nullptr || GetActiveWindow() != below_) return;
    if (IsWindow(focus_) && IsWindowEnabled(focus_) && IsWindowVisible(focus_)) SetFocus(focus_);
}

HWND top_window() noexcept {
    const FormWindow* const top = FormWindow::top();
    return top != nullptr ? top->window() : GetActiveWindow();
}

void dispatch(MSG& message) noexcept {
    const HWND form = message.hwnd == nullptr ? nullptr : GetAncestor(message.hwnd, GA_ROOT);
    const bool ours = form != nullptr && GetPropW(form, kNameProperty) != nullptr;
    if (ours && IsDialogMessageW(form, &message)) return;
    TranslateMessage(&message);
    DispatchMessageW(&message);
}

/// Takes the next waiting message. False when none waits, or when the thread is to quit: that message is left
/// for whoever runs the thread.
bool take_message(MSG& message, bool& quitting) noexcept {
    quitting = false;
    if (!PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) return false;
    quitting = message.message == WM_QUIT;
    if (quitting) PostQuitMessage(static_cast<int>(message.wParam));
    return !quitting;
}

void run_loop(forms::Form& form, FormWindow& window) {
    while (form.running()) {
        MSG message;
        bool quitting;
        if (take_message(message, quitting)) {
            dispatch(message);
        } else if (quitting) {
            form.raise_close_request(forms::UnloadMode::system);
            form.hide();
        } else if (window.take_activation()) {
            // Not from inside WM_ACTIVATE: the handler may take long, and the system waits there.
            form.raise_activate();
        } else {
            WaitMessage();
        }
    }
}

/// The filter as the system takes it: each part ends in a null, and an empty part ends the list.
std::u16string file_filter(std::u16string filter) {
    std::replace(filter.begin(), filter.end(), u'|', u'\0');
    return filter + u'\0';
}

}  // namespace

void Win32Toolkit::run_modal(forms::Form& form, forms::Form* owner) {
    const HWND below = top_window();
    const bool owned = owner != nullptr && owner->view() != nullptr;
    FormWindow window(form, owned ? static_cast<FormWindow*>(owner->view())->window() : nullptr, below);
    {
        const ModalScope modal(window.window(), below);
        window.show();
        run_loop(form, window);
    }
    window.rethrow_fault();
}

void Win32Toolkit::pump_messages() {
    MSG message;
    bool quitting;
    while (take_message(message, quitting)) dispatch(message);
}

forms::MessageAnswer Win32Toolkit::message_box(const forms::MessageBox& box) {
    const bool question = box.buttons == forms::MessageButtons::yes_no;
    const int answer =
        MessageBoxW(top_window(), wide(box.text.data()), wide(box.title.data()), question ? MB_YESNO : MB_OK);
    if (!question) return forms::MessageAnswer::ok;
    return answer == IDYES ? forms::MessageAnswer::yes : forms::MessageAnswer::no;
}

std::optional<std::u16string> Win32Toolkit::open_file(const forms::OpenFileRequest& request) {
    constexpr std::size_t kLongestPath = 32768;
    const std::u16string filter = file_filter(request.filter);
    std::u16string name = request.file_name;
    name.resize(kLongestPath, u'\0');
    name.back() = u'\0';

    OPENFILENAMEW dialog = {};
    dialog.lStructSize = sizeof dialog;
    dialog.hwndOwner = top_window();
    dialog.lpstrFilter = wide(filter);
    dialog.lpstrFile = wide(name);
    dialog.nMaxFile = static_cast<DWORD>(name.size());
    dialog.lpstrInitialDir = request.initial_folder.empty() ? nullptr : wide(request.initial_folder);
    // The host's current folder is none of the dialog's business.
    dialog.Flags = request.flags | OFN_NOCHANGEDIR;
    static const LateLibrary dialogs(u"comdlg32.dll");
    auto* const get_open_file_name = dialogs.function<decltype(GetOpenFileNameW)>("GetOpenFileNameW");
    auto* const last_dialog_error = dialogs.function<decltype(CommDlgExtendedError)>("CommDlgExtendedError");
    bool chosen = get_open_file_name(&dialog) != FALSE;
    if (!chosen && last_dialog_error() == FNERR_INVALIDFILENAME) {
        // A name that the dialog cannot even show is no reason to show no dialog.
        name[0] = u'\0';
        chosen = get_open_file_name(&dialog) != FALSE;
    }
    if (!chosen) return std::nullopt;
    name.resize(std::min(name.size(), name.find(u'\0')));
    return name;
}

void Win32Toolkit::pop_up_menu(forms::Form& form, forms::Menu& menu) {
    auto* const window = static_cast<FormWindow*>(form.view());
    if (window == nullptr) return;
    const OwnedMenu shown(CreatePopupMenu());
    if (!shown) throw last_error(u"A menu cannot be made");
    // Commands count from 1: 0 is the answer of a menu that was dismissed.
    for (std::size_t index = 0; index < menu.items.size(); ++index) {
        AppendMenuW(shown.get(), MF_STRING, index + 1, wide(menu.items[index].caption));
    }
    const POINT place = window->menu_place();
    const BOOL command =
        TrackPopupMenu(shown.get(), TPM_RETURNCMD | TPM_RIGHTBUTTON, place.x, place.y, 0, window->window(), nullptr);
    if (command > 0) form.raise_menu_click(menu.items.at(static_cast<std::size_t>(command) - 1));
}

void Win32Toolkit::beep() { MessageBeep(MB_OK); }

}  // namespace vex::platform::win32

namespace vex::platform {

forms::Toolkit& desktop() {
    static win32::Win32Toolkit toolkit;
    return toolkit;
}

}  // namespace vex::platform
