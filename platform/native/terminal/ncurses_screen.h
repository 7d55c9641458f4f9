// The terminal as a screen, by ncurses.
#pragma once

#include <memory>

#include "platform/native/terminal/screen.h"

namespace vex::platform::native::terminal {

/// Takes the terminal for its lifetime and gives it back as it was, also when a signal kills the process.
/// At most one at a time. Without colours where the terminal has none or NO_COLOR is set.
class NcursesScreen final : public Screen {
public:
    /// Throws RuntimeError when the terminal cannot be used.
    NcursesScreen();
    NcursesScreen(const NcursesScreen&) = delete;
    NcursesScreen& operator=(const NcursesScreen&) = delete;
    ~NcursesScreen() override;

    Size size() const override;
    void show(const Canvas& canvas, std::optional<Point> cursor) override;
    std::optional<Input> read(bool wait) override;
    void beep() override;

private:
    // Keeps ncurses' header, which is full of macros, out of this one.
    class Terminal;
    std::unique_ptr<Terminal> terminal_;
};

}  // namespace vex::platform::native::terminal
