// A text box on the character grid: what of its text is seen, and where the cursor stands.
#pragma once

#include <cstddef>
#include <string>

#include "forms/controls.h"
#include "platform/native/terminal/canvas.h"
#include "platform/native/terminal/input.h"

namespace vex::platform::native::terminal {

/// Where the user is in a text box; in characters of its text.
struct TextCursor {
    std::size_t at = 0;
    /// The first character that is seen.
    std::size_t first = 0;
};

/// For one use: a pane must not outlive a change of the text.
class TextPane {
public:
    /// Brings `cursor` into the text's range and scrolls as little as it needs to show it.
    TextPane(const forms::TextBox& box, const Area& cells, TextCursor& cursor);

    void paint(Canvas& canvas, bool focused) const;
    Point cursor_place() const;
    void place_cursor(int column);
    /// Moves in the text or edits it; whether the key means anything here. `text` is then the new text.
    bool edit(const KeyPress& key, std::u32string& text);

private:
    Area inside() const noexcept { return {cells_.left + 1, cells_.top, cells_.right - 1, cells_.top + 1}; }
    void reveal();

    const forms::TextBox& box_;
    Area cells_;
    TextCursor& cursor_;
    std::u32string text_;
};

}  // namespace vex::platform::native::terminal
