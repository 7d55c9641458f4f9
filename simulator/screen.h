// The screen of the computer that the simulated host runs on: what a user sees and does. A seam: one side
// works on dialogs as data, the other on real windows.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "forms/toolkit.h"

namespace vex::sim {

/// The user in front of the screen. Called on the host's thread, in the middle of the plug-in's modal loops.
/// Nothing may be thrown at the screen.
class ScreenUser {
public:
    virtual ~ScreenUser() = default;

    virtual void dialog_opened(const std::string& name) noexcept = 0;
    virtual void dialog_closed(const std::string& name) noexcept = 0;
    /// The topmost dialog waits for input: do the next thing. False: there is nothing left to do; the
    /// screen then closes the dialog by its close box.
    virtual bool act() noexcept = 0;
    /// The topmost dialog handles messages in the midst of its work.
    virtual void messages_handled() noexcept = 0;
    virtual forms::MessageAnswer answer(const forms::MessageBox& box) noexcept = 0;
    /// The path chosen, or nothing to cancel.
    virtual std::optional<std::u16string> choose_file(const forms::OpenFileRequest& request) noexcept = 0;
    virtual void beeped() noexcept = 0;
};

/// Where an action went. A user may well press a button that is disabled; it does nothing.
enum class ActionResult { done, not_possible };

/// Controls are named as the dialogs name them and looked for on the topmost dialog only. A name, property or
/// row that does not exist there, and every action without a dialog, raise `std::invalid_argument`.
class Screen {
public:
    virtual ~Screen() = default;

    /// Not owned; null for nobody. Before anything is shown.
    virtual void set_user(ScreenUser* user) noexcept = 0;
    virtual bool any_dialog() const noexcept = 0;
    /// Whether the topmost dialog has the control.
    virtual bool has_control(const std::u16string& control) const = 0;

    virtual ActionResult click(const std::u16string& control) = 0;
    /// x and y in twips of the control.
    virtual ActionResult press(const std::u16string& control, forms::MouseButton button, float x, float y) = 0;
    /// The text of a text box; "on" or "off" of an option button or a check box. Raises
    /// `std::invalid_argument` for other controls and values.
    virtual ActionResult set(const std::u16string& control, const std::u16string& value) = 0;
    /// Right press on a row (from 1), then the item of the menu that pops up, by its caption.
    virtual ActionResult choose_from_menu(const std::u16string& list, std::size_t row, const std::u16string& item) = 0;
    /// The close box of the topmost dialog, which may refuse.
    virtual void close() = 0;
    /// The topmost dialog is brought to the front again.
    virtual void activate() = 0;

    /// Caption, Text, Enabled, Visible; Value; FillColor; Tab; Rows, RowN, RowN.ForeColor.
    virtual std::u16string property(const std::u16string& control, const std::u16string& property) const = 0;
    /// All columns of all rows.
    virtual std::vector<std::vector<std::u16string>> rows(const std::u16string& list) const = 0;
};

/// "True" or "False".
std::u16string shown_boolean(bool value);
/// "0x00BBGGRR".
std::u16string shown_color(forms::Color color);
/// The cells of a row, quoted, with bars between.
std::u16string shown_row(const std::vector<std::u16string>& cells);

}  // namespace vex::sim
