// A screen in memory with a user who has decided beforehand what to do.
#pragma once

#include <deque>
#include <functional>
#include <string>
#include <utility>

#include "platform/native/terminal/layout.h"
#include "platform/native/terminal/screen.h"

namespace vex::platform::native::terminal {

class FakeScreen final : public Screen {
public:
    Size size_now = kSmallestTerminal;
    int beeps = 0;
    Canvas canvas{{0, 0}};
    std::optional<Point> cursor;

    void keys(std::initializer_list<Key> pressed) {
        for (const Key key : pressed) steps_.push_back({KeyPress{key}, {}});
    }
    void type(std::u32string_view text) {
        for (const char32_t character : text) steps_.push_back({KeyPress{Key::character, character}, {}});
    }
    void alt(char32_t character) { steps_.push_back({KeyPress{Key::character, character, true}, {}}); }
    void paste(std::u32string text) { steps_.push_back({Paste{std::move(text)}, {}}); }
    void mouse(MouseAction action, Point at, forms::MouseButton button = forms::MouseButton::left) {
        steps_.push_back({MouseEvent{action, button, at}, {}});
    }
    void click(Point at) {
        mouse(MouseAction::press, at);
        mouse(MouseAction::release, at);
    }
    /// Looks at the screen between two steps. What it adds is done before what was to follow.
    void look(std::function<void()> at_screen) { steps_.push_back({Resized{}, std::move(at_screen)}); }

    bool shows(std::string_view text) const { return text_picture(canvas).find(text) != std::string::npos; }
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
    /// The last row, where the keys are told.
    std::string last_line() const {
        const std::string picture = text_picture(canvas);
        return picture.substr(picture.rfind('\n', picture.size() - 2) + 1);
    }

    Size size() const override { return size_now; }
    void show(const Canvas& shown, std::optional<Point> place) override {
        canvas = shown;
        cursor = place;
    }
    /// A user who has nothing left to do ends the process, so that no test waits for ever.
    std::optional<Input> read(bool wait) override {
        if (steps_.empty()) return wait ? std::optional<Input>(Ended{}) : std::nullopt;
        const Step step = std::move(steps_.front());
        steps_.pop_front();
        if (step.look) {
            std::deque<Step> later = std::exchange(steps_, {});
            step.look();
            steps_.insert(steps_.end(), later.begin(), later.end());
        }
        return step.input;
    }
    void beep() override { ++beeps; }

private:
    struct Step {
        Input input;
        std::function<void()> look;
    };
    std::deque<Step> steps_;
};

}  // namespace vex::platform::native::terminal
