// A dialog as data with events: its frame, its controls by table, from load to unload.
#pragma once

#include <exception>
#include <functional>
#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

#include "forms/controls.h"
#include "forms/toolkit.h"

namespace vex::forms {

/// The frame of a dialog.
struct FormDesign {
    std::string_view name = {};
    std::u16string_view caption = {};
    /// The client area, in twips.
    Twips width = 0;
    Twips height = 0;
    Font font = {};
    /// Names the window icon among the module's resources; empty: none.
    std::string_view icon = {};
};

/// A line of a dialog's control table. What is not named keeps its default.
struct ControlDesign {
    Control& control;
    std::string_view name;
    Control* parent = nullptr;
    /// Page of a tab_pages parent.
    int page = -1;
    Rect at = {};
    std::u16string_view text = {};
    int tab_index = -1;
    Font font = {};
    Color fore = kBlack;
    std::optional<Color> back = std::nullopt;
    bool visible = true;
    std::u16string_view accessible_name = {};
};

/// Who asks a form to unload.
enum class UnloadMode {
    /// The user, through the close box or the system menu.
    control_menu,
    /// The program.
    code,
    /// The session or the host ends.
    system,
};

/// Base of every dialog. Used on one thread; must not outlive its toolkit.
///
/// Life: made, inputs set, shown (loads first), hidden or unloaded, destroyed. An error that a handler
/// raises is kept, ends the modal display, and is raised again by `show_modal`: it never unwinds through
/// the toolkit's own frames.
class Form {
public:
    Form(Toolkit& toolkit, const FormDesign& design);
    Form(const Form&) = delete;
    Form& operator=(const Form&) = delete;
    virtual ~Form();

    const std::string& name() const noexcept { return name_; }
    const std::u16string& caption() const noexcept { return caption_; }
    Twips width() const noexcept { return width_; }
    Twips height() const noexcept { return height_; }
    const Font& font() const noexcept { return font_; }
    const std::string& icon() const noexcept { return icon_; }
    /// In table order: later ones lie above earlier ones.
    const std::vector<Control*>& controls() const noexcept { return controls_; }
    Control* find(std::string_view name) const noexcept;
    /// All controls in the order of the keyboard: what lies in a container where the container stands, a label before
    /// what comes next in the table. Of two with one tab index the earlier in the table comes first.
    std::vector<Control*> keyboard_order() const;
    bool loaded() const noexcept { return loaded_; }
    /// Whether the modal display goes on.
    bool running() const noexcept { return shown_ && fault_ == nullptr; }

    /// Shows the form modally, loading it first where needed; returns when it was hidden or unloaded.
    /// Raises what `Form_Load` or a handler raised.
    void show_modal(Form* owner = nullptr);
    /// Ends the modal display; the form stays loaded.
    void hide() noexcept { shown_ = false; }
    /// Unloads by program; false when the dialog refused. Nothing happens when it is not loaded.
    bool unload();
    /// Whether the form agrees to be unloaded for that reason. Only asks: nothing is unloaded.
    bool may_unload(UnloadMode mode) noexcept;

    // For the toolkit: what the user did. Errors of the handlers are kept, see above.

    void raise_activate() noexcept;
    void raise_close_request(UnloadMode mode = UnloadMode::control_menu) noexcept;
    /// A click on a control that can be reached and is enabled; on others nothing happens. Sets option
    /// buttons and toggles check boxes first.
    void raise_click(Control& control) noexcept;
    /// A mouse press at twips of `control`. The topmost label or control under the point takes it; shapes
    /// and lines let it through to what they lie in.
    void raise_mouse_down(Control& control, MouseButton button, float x, float y) noexcept;
    void raise_menu_click(const MenuItem& item) noexcept;
    /// The user typed into a text box: its text is what he sees, and the view is not told again.
    void user_text(TextBox& box, std::u16string text) noexcept;
    void user_selection(ListView& list, std::optional<std::size_t> row) noexcept;

    FormView* view() const noexcept { return view_; }
    void set_view(FormView* view) noexcept { view_ = view; }

protected:
    Toolkit& toolkit() const noexcept { return toolkit_; }
    void set_form_caption(std::u16string caption) { caption_ = std::move(caption); }
    /// Declares the controls; the order of the lines is the order of drawing.
    void lay_out(std::initializer_list<ControlDesign> controls);

    virtual void Form_Load() {}
    virtual void Form_Activate() {}
    /// Sets `cancel` to refuse.
    virtual void Form_QueryUnload(bool& cancel, UnloadMode mode);
    virtual void Form_Unload() {}

private:
    friend class Control;
    friend class OptionButton;

    void add_in_keyboard_order(const Control* container, std::vector<Control*>& order) const;
    int keyboard_position(const Control& control) const noexcept;
    template <class Handler>
    void guarded(const Handler& handler) noexcept;
    bool unload_as(UnloadMode mode);
    void changed(Control& control, Change change);

    Toolkit& toolkit_;
    std::string name_;
    std::u16string caption_;
    Twips width_;
    Twips height_;
    Font font_;
    std::string icon_;
    std::vector<Control*> controls_;
    FormView* view_ = nullptr;
    std::exception_ptr fault_;
    bool loaded_ = false;
    bool shown_ = false;
};

}  // namespace vex::forms
