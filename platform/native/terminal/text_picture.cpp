// Text pictures.
#include "platform/native/terminal/text_picture.h"

#include <algorithm>
#include <cstdio>
#include <map>
#include <tuple>
#include <utility>
#include <vector>

#include "platform/native/terminal/form_window.h"
#include "platform/native/terminal/text.h"

namespace vex::platform::native::terminal {
namespace {

constexpr std::string_view kLetters = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ";

class NobodyAround final : public WindowOwner {
public:
    void beep() override {}
    void invalidate() override {}
    void draw_now() override {}
};

std::string hexadecimal(forms::Color color) {
    char text[8];
    // As people write colours: red first.
    std::snprintf(text, sizeof text, "#%02x%02x%02x", color & 0xFF, color >> 8 & 0xFF, color >> 16 & 0xFF);
    return text;
}

std::string describe(const Style& style) {
    std::string text = hexadecimal(style.fore) + " on " + hexadecimal(style.back);
    if (style.bold) text += ", bold";
    if (style.underline) text += ", underlined";
    if (style.standout) text += ", standing out";
    return text;
}

/// The style that is seen: of a blank, the fore colour is not.
Style seen_style(const Cell& cell) noexcept {
    Style style = cell.style;
    if (cell.character == U' ' && !style.underline) {
        style.fore = style.back;
        style.bold = false;
    }
    return style;
}

auto order(const Style& style) noexcept {
    return std::tuple(style.back, style.fore, style.bold, style.underline, style.standout);
}

}  // namespace

std::string text_picture(const Canvas& canvas) {
    std::string picture;
    for (int row = 0; row < canvas.size().rows; ++row) {
        std::u32string line;
        for (int column = 0; column < canvas.size().columns; ++column) {
            const Cell& cell = canvas.cell({column, row});
            if (cell.tail) continue;
            line.push_back(cell.character);
            for (const char32_t mark : cell.marks) {
                if (mark != 0) line.push_back(mark);
            }
        }
        line.erase(line.find_last_not_of(U' ') + 1);
        picture += to_utf8(line) + "\n";
    }
    return picture;
}

std::string style_picture(const Canvas& canvas) {
    std::map<decltype(order({})), std::pair<Style, int>> uses;
    const Size size = canvas.size();
    for (int row = 0; row < size.rows; ++row) {
        for (int column = 0; column < size.columns; ++column) {
            const Style style = seen_style(canvas.cell({column, row}));
            auto& [kept, count] = uses[order(style)];
            kept = style;
            ++count;
        }
    }
    const auto commonest = std::max_element(uses.begin(), uses.end(), [](const auto& left, const auto& right) {
        return left.second.second < right.second.second;
    });
    std::map<decltype(order({})), char> letters;
    std::string meanings;
    for (const auto& [key, use] : uses) {
        const bool common = commonest != uses.end() && key == commonest->first;
        const char letter = common ? '.' : kLetters[std::min(letters.size(), kLetters.size() - 1)];
        letters[key] = letter;
        meanings += std::string(1, letter) + "  " + describe(use.first) + "\n";
    }
    std::string picture;
    for (int row = 0; row < size.rows; ++row) {
        for (int column = 0; column < size.columns; ++column) {
            picture.push_back(letters[order(seen_style(canvas.cell({column, row})))]);
        }
        picture.push_back('\n');
    }
    return picture + "\n" + meanings;
}

FormPicture picture_of(forms::Form& form, const IconCharacters& icons) {
    forms::FormView* const view = form.view();
    NobodyAround nobody;
    FormPicture picture = [&] {
        FormWindow window(form, nobody, icons);
        return window.draw(true);
    }();
    form.set_view(view);
    return picture;
}

}  // namespace vex::platform::native::terminal
