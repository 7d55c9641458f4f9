// Who plays the user in front of a screen: asked and told in the midst of the modal loops.
#pragma once

#include <optional>
#include <string>

#include "forms/toolkit.h"

namespace vex::forms {

/// Called on the thread that shows the forms. Nothing may be thrown at the screen.
class ScreenUser {
public:
    virtual ~ScreenUser() = default;

    virtual void form_opened(const std::u16string& name) noexcept = 0;
    virtual void form_closed(const std::u16string& name) noexcept = 0;
    /// The topmost form waits for input: do the next thing. False: there is nothing left to do; the screen then
    /// closes the form by its close box.
    virtual bool act() noexcept = 0;
    /// The messages that waited have been handled in the midst of some work of the topmost form.
    virtual void messages_handled() noexcept = 0;
    virtual MessageAnswer answer(const MessageBox& box) noexcept = 0;
    /// Asked in place of the Open dialog. The path chosen, or nothing to cancel.
    virtual std::optional<std::u16string> choose_file(const OpenFileRequest& request) noexcept = 0;
    virtual void beeped() noexcept = 0;
};

}  // namespace vex::forms
