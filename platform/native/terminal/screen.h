// The screen and its keyboard and mouse, as the terminal toolkit uses them.
#pragma once

#include <optional>

#include "platform/native/terminal/canvas.h"
#include "platform/native/terminal/input.h"

namespace vex::platform::native::terminal {

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

}  // namespace vex::platform::native::terminal
