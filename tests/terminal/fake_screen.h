// A screen in memory with a user who has decided beforehand what to do.
#pragma once

#include <deque>
#include <functional>
#include <string>
#include <utility>

#include "platform/native/terminal/drives.h"
#include "platform/native/terminal/layout.h"
#include "platform/native/terminal/screen.h"
#include "platform/native/terminal/text_picture.h"

namespace vex::platform::native::terminal {

class FakeScreen final : public Screen {
public:
    /// A thing to do, and what to look at before it is done.
    struct Step {
        Input input;
        std::function<void()> before;
    };

    Size size_now = kSmallestTerminal;
    std::deque<Step> steps;
    int beeps = 0;
    int frames = 0;
    Canvas canvas{{0, 0}};
    std::optional<Point> cursor;

    void key(Key key, std::function<void()> before = {}) { steps.push_back({KeyPress{key}, std::move(before)}); }
    void keys(std::initializer_list<Key> pressed) {
        for (const Key each : pressed) key(each);
    }
    void type(std::u32string_view text) {
        for (const char32_t character : text) steps.push_back({KeyPress{Key::character, character}, {}});
    }
    void alt(char32_t character) { steps.push_back({KeyPress{Key::character, character, true}, {}}); }
    void mouse(MouseAction action, Point at, forms::MouseButton button = forms::MouseButton::left) {
        steps.push_back({MouseEvent{action, button, at}, {}});
    }
    void click(Point at) {
        mouse(MouseAction::press, at);
        mouse(MouseAction::release, at);
    }
    /// Looks at the screen between two steps; the terminal has not changed.
    void look(std::function<void()> before) { steps.push_back({Resized{}, std::move(before)}); }

    std::string picture() const { return text_picture(canvas); }
    bool shows(std::string_view text) const { return picture().find(text) != std::string::npos; }
    /// The first cell of a text on the screen; it must be there.
    Point find(std::u32string_view text) const {
        for (int row = 0; row < canvas.size().rows; ++row) {
            std::u32string line;
            for (int column = 0; column < canvas.size().columns; ++column) {
                line.push_back(canvas.cell({column, row}).character);
            }
            const std::size_t found = line.find(text);
            if (found != std::u32string::npos) return {static_cast<int>(found), row};
        }
        return {-1, -1};
    }

    Size size() const override { return size_now; }
    void show(const Canvas& shown, std::optional<Point> place) override {
        canvas = shown;
        cursor = place;
        ++frames;
    }
    /// A user who has nothing left to do ends the process, so that no test waits for ever.
    std::optional<Input> read(bool wait) override {
        if (steps.empty()) return wait ? std::optional<Input>(Ended{}) : std::nullopt;
        Step step = std::move(steps.front());
        steps.pop_front();
        if (step.before) step.before();
        return step.input;
    }
    void beep() override { ++beeps; }
};

class NoDrives final : public Drives {
public:
    std::vector<std::u16string> letters() const override { return {}; }
    std::optional<std::vector<FolderEntry>> entries(const std::u16string&) const override { return std::nullopt; }
    bool file_exists(const std::u16string&) const override { return false; }
};

}  // namespace vex::platform::native::terminal
