// A screen in memory with a user who has decided beforehand what to do.
#pragma once

#include <deque>
#include <functional>
#include <string>
#include <utility>

#include "platform/native/terminal/layout.h"
#include "platform/native/terminal/screen.h"

namespace vex::platform::native::terminal {

/// The signs of the keys that are no characters, in their order.
inline constexpr std::u32string_view kSigns = U"⏎⎋⇥⇤↑↓←→⇞⇟⇱⇲⌫⌦☰";

/// What a sign stands for; every other character is that character's key.
inline KeyPress key_of(char32_t sign) {
    const std::size_t at = kSigns.find(sign);
    return at == kSigns.npos ? KeyPress{Key::character, sign} : KeyPress{static_cast<Key>(at + 1)};
}

class FakeScreen : public Screen {
public:
    Size size_now = kSmallestTerminal;
    int beeps = 0;
    Canvas canvas{{0, 0}};

    void then(Input input) { steps_.emplace_back(std::move(input), nullptr); }
    void keys(std::u32string_view signs) {
        for (const char32_t sign : signs) then(key_of(sign));
    }
    void click(Point at, forms::MouseButton button = forms::MouseButton::left) {
        then(MouseEvent{MouseAction::press, button, at});
        then(MouseEvent{MouseAction::release, button, at});
    }
    /// Looks at the screen between two steps. What it adds is done before what was to follow.
    void look(std::function<void()> at_screen) { steps_.emplace_back(Resized{}, std::move(at_screen)); }

    bool shows(std::string_view text) const { return text_picture(canvas).find(text) != std::string::npos; }
    /// The first cell of a text on the screen.
    Point find(std::u32string_view text) const {
        for (int row = 0; row < canvas.size().rows; ++row) {
            std::u32string line;
            for (int i = 0; i < canvas.size().columns; ++i) line += canvas.cell({i, row}).character;
            if (line.find(text) != line.npos) return {static_cast<int>(line.find(text)), row};
        }
        return {-1, -1};
    }

    Size size() const override { return size_now; }
    void show(const Canvas& shown, std::optional<Point>) override { canvas = shown; }
    /// A user who has nothing left to do ends the process, so that no test waits for ever.
    std::optional<Input> read(bool wait) override {
        if (steps_.empty()) return wait ? std::optional<Input>(Ended{}) : std::nullopt;
        const auto [input, look] = std::move(steps_.front());
        steps_.pop_front();
        if (!look) return input;
        const auto later = std::exchange(steps_, {});
        look();
        steps_.insert(steps_.end(), later.begin(), later.end());
        return input;
    }
    void beep() override { ++beeps; }

private:
    std::deque<std::pair<Input, std::function<void()>>> steps_;
};

}  // namespace vex::platform::native::terminal
