// The screen and what a user does at it, as the terminal toolkit uses them.
#pragma once

#include <memory>
#include <ostream>
#include <variant>

#include "platform/native/terminal/canvas.h"

namespace vex::platform::native::terminal {

enum class Key {
    character, enter, escape, tab, back_tab, up, down, left, right, page_up, page_down, home, end, backspace, remove,
    /// Asks for the context menu.
    menu
};

struct KeyPress {
    Key key = Key::character;
    char32_t character = 0;
    bool alt = false;
};

/// Text that was pasted, as one piece.
struct Paste {
    std::u32string text;
};

enum class MouseAction { press, release, wheel_up, wheel_down };

struct MouseEvent {
    MouseAction action = MouseAction::press;
    forms::MouseButton button = forms::MouseButton::left;
    Point at;
};

/// The terminal has another size.
struct Resized {};

/// The process is to end.
struct Ended {
    /// The signal that asked for it; 0: the terminal is gone.
    int signal = 0;
};

using Input = std::variant<KeyPress, Paste, MouseEvent, Resized, Ended>;

/// Used on one thread.
class Screen {
public:
    virtual ~Screen() = default;
    virtual Size size() const = 0;
    /// Shows a picture of the screen's size and the cursor, where there is one to be seen.
    virtual void show(const Canvas& canvas, std::optional<Point> cursor) = 0;
    /// The next thing that the user did; without `wait`, nothing when there is none yet. After `Ended` it
    /// answers `Ended` again.
    virtual std::optional<Input> read(bool wait) = 0;
    virtual void beep() = 0;
};

/// Whether standard input and output are a terminal that can be drawn on. One whose description is not installed is
/// taken for a common one; that, and that one cannot be drawn on, is told to `notes`.
bool find_terminal(std::ostream& notes);

/// Takes the terminal for the life of the screen and gives it back as it was, also when a signal kills the
/// process. At most one at a time. Without colours where the terminal has none or NO_COLOR is set.
/// Throws RuntimeError when the terminal cannot be used.
std::unique_ptr<Screen> take_terminal();

}  // namespace vex::platform::native::terminal
