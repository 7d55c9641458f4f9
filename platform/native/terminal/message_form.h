// A message box as a form of the terminal toolkit.
#pragma once

#include "forms/form.h"

namespace vex::platform::native::terminal {

class MessageForm final : public forms::Form {
public:
    MessageForm(forms::Toolkit& toolkit, const forms::MessageBox& box);

    /// The answer given; of a question that the end of the process closed: no.
    forms::MessageAnswer answer() const noexcept { return answer_; }

protected:
    /// A question is answered, not closed.
    void Form_QueryUnload(bool& cancel, forms::UnloadMode mode) override;

private:
    void choose(forms::MessageAnswer answer);

    bool question_;
    forms::MessageAnswer answer_;
    forms::Label text_;
    forms::Button first_;
    forms::Button second_;
};

}  // namespace vex::platform::native::terminal
