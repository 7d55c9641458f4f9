// Plays the user of a module's windows, on the thread that shows them: acts when they wait for input, and does
// it as a user does, by clicks, presses, keys and texts.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "simulator/screen.h"
#include "simulator/win32/import_hook.h"
#include "simulator/win32/window_reader.h"

namespace vex::sim {

/// One at a time on a thread.
class WindowDriver {
public:
    /// `module`: the file name of a loaded module whose message loops are watched; empty: this one.
    /// `user` outlives the driver. Throws RuntimeError.
    WindowDriver(const std::u16string& module, ScreenUser& user);
    WindowDriver(const WindowDriver&) = delete;
    WindowDriver& operator=(const WindowDriver&) = delete;
    ~WindowDriver();

    // What a user does. Each returns when the form has handled it.

    void click(WindowHandle button);
    /// x and y in twips of the control.
    void press(WindowHandle control, forms::MouseButton button, float x, float y);
    void set_text(WindowHandle box, const std::u16string& text);
    /// Right press in the middle of a row, then the item of the menu that pops up. False when none came up.
    bool choose_from_menu(WindowHandle list, std::size_t row, const std::u16string& item);
    void close(WindowHandle form);
    /// Brings the form to the front again.
    void activate(WindowHandle form);

private:
    struct OpenForm {
        HWND window;
        std::u16string name;
    };

    static BOOL WINAPI peek_message(MSG* message, HWND window, UINT first, UINT last, UINT flags) noexcept;
    static BOOL WINAPI wait_message() noexcept;
    /// The module finds the Open dialog by this.
    static FARPROC WINAPI get_proc_address(HMODULE library, LPCSTR name) noexcept;
    static BOOL WINAPI get_open_file_name(OPENFILENAMEW* dialog) noexcept;
    static BOOL WINAPI message_beep(UINT type) noexcept;
    static LRESULT CALLBACK activity_hook(int code, WPARAM wide_parameter, LPARAM long_parameter) noexcept;
    static LRESULT CALLBACK message_hook(int code, WPARAM wide_parameter, LPARAM long_parameter) noexcept;

    bool idle() noexcept;
    void press_at(HWND window, forms::MouseButton button, POINT place) noexcept;
    void shown(HWND window);
    void destroyed(HWND window) noexcept;
    void answer_message_box(HWND box);
    void choose_item(HWND owner, HMENU menu);

    static thread_local WindowDriver* current_;

    ScreenUser& user_;
    std::vector<ImportHook> import_hooks_;
    HHOOK activity_hook_ = nullptr;
    HHOOK message_hook_ = nullptr;
    std::vector<OpenForm> open_;
    /// Whether the messages of the pumping in progress have been handled once.
    bool pumped_ = false;
    int refused_closes_ = 0;
    HWND answered_box_ = nullptr;
    /// What to choose from the next menu.
    std::optional<std::u16string> menu_item_;
};

}  // namespace vex::sim
