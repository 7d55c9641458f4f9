// A text box on the character grid.
#include "platform/native/terminal/text_pane.h"

#include <algorithm>

#include "platform/native/terminal/colors.h"
#include "platform/native/terminal/text.h"

namespace vex::platform::native::terminal {

TextPane::TextPane(const forms::TextBox& box, const Area& cells, TextCursor& cursor)
    : box_(box), cells_(cells), cursor_(cursor), text_(to_utf32(box.text())) {
    cursor_.at = std::min(cursor_.at, text_.size());
    cursor_.first = std::min(cursor_.first, cursor_.at);
    reveal();
}

void TextPane::reveal() {
    const std::u32string_view text = text_;
    // The cursor needs a cell of its own after the text.
    while (cursor_.first < cursor_.at &&
           text_width(text.substr(cursor_.first, cursor_.at - cursor_.first)) >= inside().width()) {
        ++cursor_.first;
    }
}

void TextPane::paint(Canvas& canvas, bool focused) const {
    const forms::Color fore = box_.enabled() ? box_.fore_color() : look::kFaint;
    const forms::Color back = box_.enabled() ? look::kField : look::kFace;
    canvas.fill(cells_, {fore, back, false, true, false});
    const std::u32string_view seen = beginning(std::u32string_view(text_).substr(cursor_.first), inside().width());
    canvas.text({inside().left, cells_.top}, seen, {.fore = fore, .underline = true});
    Ink edge{.fore = look::kText};
    if (focused) edge = {.fore = look::kFocusText, .back = look::kFocus, .standout = true};
    canvas.text({cells_.left, cells_.top}, focused ? U"▸" : U"[", edge);
    canvas.text({cells_.right - 1, cells_.top}, focused ? U"◂" : U"]", edge);
}

Point TextPane::cursor_place() const {
    const std::u32string_view before = std::u32string_view(text_).substr(cursor_.first, cursor_.at - cursor_.first);
    return {inside().left + text_width(before), cells_.top};
}

void TextPane::place_cursor(int column) {
    const std::u32string_view seen = std::u32string_view(text_).substr(cursor_.first);
    cursor_.at = cursor_.first + beginning(seen, std::max(0, column - inside().left)).size();
}

bool TextPane::edit(const KeyPress& key, std::u32string& text) {
    text = text_;
    const auto at = static_cast<std::ptrdiff_t>(cursor_.at);
    switch (key.key) {
        case Key::character:
            text.insert(text.begin() + at, key.character);
            ++cursor_.at;
            break;
        case Key::backspace:
            if (cursor_.at == 0) return true;
            text.erase(text.begin() + at - 1);
            --cursor_.at;
            cursor_.first = std::min(cursor_.first, cursor_.at);
            break;
        case Key::remove:
            if (cursor_.at < text.size()) text.erase(text.begin() + at);
            break;
        case Key::left:
            cursor_.at -= cursor_.at > 0 ? 1 : 0;
            break;
        case Key::right:
            cursor_.at += cursor_.at < text.size() ? 1 : 0;
            break;
        case Key::home:
            cursor_.at = 0;
            break;
        case Key::end:
            cursor_.at = text.size();
            break;
        default:
            return false;
    }
    return true;
}

}  // namespace vex::platform::native::terminal
