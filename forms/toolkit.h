// The Toolkit seam: everything that a dialog asks of the windowing system. Implementations: Win32 windows,
// a terminal, and a scripted user for tests and scenarios.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "forms/controls.h"

namespace vex::forms {

class Form;

enum class MessageButtons { ok, yes_no };
enum class MessageAnswer { ok, yes, no };

/// A message box without an icon. The first button is the default. Closing an OK box answers ok. Both texts outlive
/// the box and end with a null, as literals do: a question can still be asked when memory has ended.
struct MessageBox {
    std::u16string_view title;
    std::u16string_view text;
    MessageButtons buttons = MessageButtons::ok;
};

/// What the Open dialog is given.
struct OpenFileRequest {
    std::u16string initial_folder;
    /// The name shown at first; empty: none.
    std::u16string file_name;
    /// Description, bar, pattern.
    std::u16string filter;
    /// 0x80000 Explorer style, 0x1000 the file must exist.
    std::uint32_t flags = 0;
};

/// The screen's side of one form while it is shown. Told of every change of its controls.
class FormView {
public:
    virtual ~FormView() = default;
    virtual void changed(Control& control, Change change) = 0;
    /// Draws the control at once.
    virtual void refresh(Control& control) = 0;
    /// Where the top of a row stands in twips of the list view.
    virtual Twips row_top(const ListView& list, std::size_t row) const = 0;
};

/// One per apartment; used on its thread only. Outlives every form.
class Toolkit {
public:
    virtual ~Toolkit() = default;
    /// Shows a loaded form over `owner` (null: none), which takes no input meanwhile; sets the form's view
    /// for that time; raises its activation once it is on the screen and at each later activation; returns
    /// as soon as `form.running()` is false. Throws RuntimeError when the form cannot be shown.
    virtual void run_modal(Form& form, Form* owner) = 0;
    /// Handles the messages that wait, and returns.
    virtual void pump_messages() = 0;
    virtual MessageAnswer message_box(const MessageBox& box) = 0;
    /// The full path chosen, or nothing when the user cancelled.
    virtual std::optional<std::u16string> open_file(const OpenFileRequest& request) = 0;
    /// Shows a context menu at the pointer and raises the click of the item chosen before it returns.
    virtual void pop_up_menu(Form& form, Menu& menu) = 0;
    virtual void beep() = 0;
};

}  // namespace vex::forms
