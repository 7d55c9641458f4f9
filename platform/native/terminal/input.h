// What a user does at a terminal.
#pragma once

#include <variant>

#include "forms/controls.h"
#include "platform/native/terminal/geometry.h"

namespace vex::platform::native::terminal {

enum class Key {
    character,
    enter,
    escape,
    tab,
    back_tab,
    up,
    down,
    left,
    right,
    page_up,
    page_down,
    home,
    end,
    backspace,
    remove,
    /// Asks for the context menu.
    menu,
};

struct KeyPress {
    Key key = Key::character;
    char32_t character = 0;
    bool alt = false;
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

using Input = std::variant<KeyPress, MouseEvent, Resized, Ended>;

}  // namespace vex::platform::native::terminal
