// The screen of the machine that the simulated host runs on: what a user sees and does. Its sides work on dialogs
// as data, and on real windows.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "forms/toolkit.h"

namespace vex::sim {

/// The user in front of a screen. Called on the thread that shows the forms, in the midst of their modal loops.
/// Nothing may be thrown at the screen.
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
    virtual forms::MessageAnswer answer(const forms::MessageBox& box) noexcept = 0;
    /// Asked in place of the Open dialog. The path chosen, or nothing to cancel.
    virtual std::optional<std::u16string> choose_file(const forms::OpenFileRequest& request) noexcept = 0;
    virtual void beeped() noexcept = 0;
};

/// Where an action went. A user may well press a button that is disabled; it does nothing.
enum class ActionResult { done, not_possible };

struct ShownRow {
    std::vector<std::u16string> cells;
    forms::Color color = forms::kBlack;
};

/// What a user sees of a control; of its own kind only.
struct ShownControl {
    /// As far as it can be told.
    forms::ControlKind kind = forms::ControlKind::label;
    /// Of a text box its text.
    std::u16string caption;
    bool enabled = false;
    bool visible = false;
    /// Whether a user could press there.
    bool takes_input = false;
    /// Of option buttons and check boxes.
    bool checked = false;
    /// Nothing while it cannot be seen.
    std::optional<forms::Color> fill_color;
    int page = 0;
    std::vector<ShownRow> rows;
};

/// Controls are named as the dialogs name them and looked for on the topmost dialog only. A name, property or
/// row that does not exist there, and every action without a dialog, raise `std::invalid_argument`.
class Screen {
public:
    virtual ~Screen() = default;

    /// Not owned; null for nobody. Before anything is shown.
    virtual void set_user(ScreenUser* user) noexcept = 0;
    virtual bool any_dialog() const noexcept = 0;
    /// The topmost dialog's control, if it has one of that name.
    virtual std::optional<ShownControl> find(const std::u16string& name) const = 0;
    /// The topmost dialog is what its user looks at now.
    virtual void look() {}

    ActionResult click(const std::u16string& name);
    /// x and y in twips of the control.
    ActionResult press(const std::u16string& name, forms::MouseButton button, float x, float y);
    /// The text of a text box; "on" or "off" of an option button or a check box. Raises
    /// `std::invalid_argument` for other controls and values.
    ActionResult set(const std::u16string& name, const std::u16string& value);
    /// Right press on a row (from 1), then the item of the menu that pops up, by its caption.
    ActionResult choose_from_menu(const std::u16string& name, std::size_t row, const std::u16string& item);
    /// The close box of the topmost dialog, which may refuse.
    virtual void close() = 0;
    /// The topmost dialog is brought to the front again.
    virtual void activate() = 0;

    /// Caption, Text, Enabled, Visible; Value; FillColor; Tab; Rows, RowN, RowN.ForeColor.
    std::u16string property(const std::u16string& name, const std::u16string& property) const;
    /// All columns of all rows.
    std::vector<std::vector<std::u16string>> rows(const std::u16string& name) const;

protected:
    // Of the topmost dialog, which there is, and its controls, which take input.

    virtual std::u16string dialog_name() const = 0;
    virtual std::u16string dialog_caption() const = 0;
    /// Of its controls; none where a side cannot tell.
    virtual std::vector<std::u16string> control_names() const { return {}; }
    virtual void do_click(const std::u16string& control) = 0;
    virtual void do_press(const std::u16string& name, forms::MouseButton button, float x, float y) = 0;
    virtual void do_type(const std::u16string& text_box, const std::u16string& text) = 0;
    /// `row` from 0. False when no menu came up, or it has no such item.
    virtual bool do_choose(const std::u16string& list, std::size_t row, const std::u16string& item) = 0;

private:
    ShownControl control(const std::u16string& name) const;
};

/// The cells of a row, quoted, with bars between.
std::u16string shown_row(const std::vector<std::u16string>& cells);

}  // namespace vex::sim
