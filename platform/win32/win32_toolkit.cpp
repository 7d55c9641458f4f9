// The Toolkit on user32 and the common controls.
#include "platform/win32/win32_toolkit.h"

#include <algorithm>

#include "platform/win32/form_window.h"
#include "platform/win32/late_library.h"
#include "platform/win32/modal_scope.h"
#include "platform/win32/system.h"
#include "platform/win32/window_name.h"

namespace vex::platform::win32 {
namespace {

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

forms::Toolkit& desktop() {
    static Win32Toolkit toolkit;
    return toolkit;
}

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
    const int answer = MessageBoxW(top_window(), wide(box.text), wide(box.title), question ? MB_YESNO : MB_OK);
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
