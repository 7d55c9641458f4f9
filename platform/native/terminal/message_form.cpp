// A message box as a form of the terminal toolkit.
#include "platform/native/terminal/message_form.h"

#include <algorithm>

#include "platform/native/terminal/layout.h"
#include "platform/native/terminal/text.h"

namespace vex::platform::native::terminal {
namespace {

/// In cells of the coarsest scale.
constexpr int kNarrowest = 28;
constexpr int kWidest = 66;
constexpr Scale kScale;
constexpr forms::Twips kButtonWidth = 900;
constexpr forms::Twips kButtonStep = 1100;

/// As large as the text needs: a row above it, two between it and the buttons' row, one below.
forms::FormDesign design_for(const forms::MessageBox& box) {
    const std::u32string text = to_utf32(box.text);
    int width = std::max(kNarrowest, text_width(to_utf32(box.title)) + 8);
    for (const std::u32string& line : wrap(text, kWidest)) width = std::max(width, text_width(line));
    width = std::min(width, kWidest);
    const auto rows = static_cast<forms::Twips>(wrap(text, width).size()) + 4;
    return {
        .name = "MessageBox", .caption = box.title, .width = (width + 4) * kScale.column, .height = rows * kScale.row};
}

}  // namespace

MessageForm::MessageForm(forms::Toolkit& toolkit, const forms::MessageBox& box)
    : Form(toolkit, design_for(box)),
      question_(box.buttons == forms::MessageButtons::yes_no),
      answer_(question_ ? forms::MessageAnswer::no : forms::MessageAnswer::ok) {
    const forms::Twips text_height = height() - 4 * kScale.row;
    const forms::Twips buttons = question_ ? kButtonStep + kButtonWidth : kButtonWidth;
    const forms::Twips left = (width() - buttons) / 2;
    const forms::Twips top = height() - 2 * kScale.row;
    lay_out({
        {.control = text_,
         .name = "text",
         .at = {2 * kScale.column, kScale.row, width() - 4 * kScale.column, text_height},
         .text = box.text},
        {.control = first_,
         .name = "first",
         .at = {left, top, kButtonWidth, kScale.row},
         .text = question_ ? u"&Yes" : u"OK",
         .tab_index = 0},
        {.control = second_,
         .name = "second",
         .at = {left + kButtonStep, top, kButtonWidth, kScale.row},
         .text = u"&No",
         .tab_index = 1,
         .visible = question_},
    });
    first_.is_default = true;
    first_.is_cancel = !question_;
    first_.on_click = [this] { choose(question_ ? forms::MessageAnswer::yes : forms::MessageAnswer::ok); };
    second_.on_click = [this] { choose(forms::MessageAnswer::no); };
}

void MessageForm::choose(forms::MessageAnswer answer) {
    answer_ = answer;
    hide();
}

void MessageForm::Form_QueryUnload(bool& cancel, forms::UnloadMode mode) {
    cancel = question_ && mode == forms::UnloadMode::control_menu;
}

}  // namespace vex::platform::native::terminal
