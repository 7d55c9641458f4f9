// Dialog controls as plain data: place, texts, colours, state, and the events that their dialog handles.
// Controls hold no window handle; changes reach the screen through the view of their form.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

struct IUnknown;

namespace vex::forms {

class Form;

/// 1/1440 inch.
using Twips = std::int32_t;

/// 0x00BBGGRR.
using Color = std::uint32_t;

constexpr Color rgb(std::uint8_t red, std::uint8_t green, std::uint8_t blue) noexcept {
    return static_cast<Color>(red) | static_cast<Color>(green) << 8 | static_cast<Color>(blue) << 16;
}
constexpr Color kBlack = 0x000000;
constexpr Color kWhite = 0xFFFFFF;
constexpr Color kRed = 0x0000FF;
constexpr Color kBlue = 0xFF0000;
constexpr Color kGreen = 0x00FF00;
constexpr Color kGrey = 0x808080;
constexpr Color kDarkGrey = 0x404040;

/// A place in the coordinates of the parent, in twips.
struct Rect {
    Twips left = 0;
    Twips top = 0;
    Twips width = 0;
    Twips height = 0;
};

/// A font by face name and size in points.
struct Font {
    std::u16string_view face = u"MS Sans Serif";
    double points = 8.25;
    bool bold = false;
};

enum class MouseButton : std::int16_t { left = 1, right, middle };

/// What a change concerns, so that a view redraws no more than it must.
enum class Change { caption, enabled, visible, value, color, tab, rows, row, selection };

enum class ControlKind {
    label,
    button,
    option_button,
    check_box,
    text_box,
    panel,
    tab_pages,
    list_view,
    shape,
    line,
    host_control,
};

/// What all controls share. Owned by their dialog, usually as members; used on the dialog's thread only.
class Control {
public:
    explicit Control(ControlKind kind) noexcept : kind_(kind) {}
    Control(const Control&) = delete;
    Control& operator=(const Control&) = delete;
    virtual ~Control() = default;

    ControlKind kind() const noexcept { return kind_; }
    const std::string& name() const noexcept { return name_; }
    /// The control that this one lies in; null: the form itself.
    Control* parent() const noexcept { return parent_; }
    /// The page (from 0) of a tab_pages parent, or -1.
    int page() const noexcept { return page_; }
    const Rect& place() const noexcept { return place_; }
    const Font& font() const noexcept { return font_; }
    Color fore_color() const noexcept { return fore_color_; }
    /// The background, where it is not the dialog's own.
    std::optional<Color> back_color() const noexcept { return back_color_; }
    /// Position in the keyboard order; -1: takes no focus.
    int tab_index() const noexcept { return tab_index_; }
    /// The name for screen readers of a control whose caption does not say what it is.
    std::u16string_view accessible_name() const noexcept { return accessible_name_; }

    /// The caption; of a text box its text. "&" marks the mnemonic of buttons.
    const std::u16string& caption() const noexcept { return caption_; }
    void set_caption(std::u16string caption);
    bool enabled() const noexcept { return enabled_; }
    void set_enabled(bool enabled);
    /// The control's own flag, whatever page or panel it lies in.
    bool visible() const noexcept { return visible_; }
    void set_visible(bool visible);
    void set_tab_index(int index) noexcept { tab_index_ = index; }
    /// Whether the control can be seen and its parents, the page it lies on included, too.
    bool reachable() const noexcept;
    /// Draws the control at once, without waiting for the message loop.
    void refresh();

    std::function<void()> on_click;
    /// Button and position in twips of the control.
    std::function<void(MouseButton, float x, float y)> on_mouse_down;

protected:
    void changed(Change change);
    Form* form() const noexcept { return form_; }

private:
    friend class Form;

    ControlKind kind_;
    Form* form_ = nullptr;
    std::string name_;
    Control* parent_ = nullptr;
    int page_ = -1;
    Rect place_;
    std::u16string caption_;
    bool enabled_ = true;
    bool visible_ = true;
    Color fore_color_ = kBlack;
    std::optional<Color> back_color_;
    Font font_;
    int tab_index_ = -1;
    std::u16string accessible_name_;
};

class Label final : public Control {
public:
    Label() noexcept : Control(ControlKind::label) {}
};

class Button final : public Control {
public:
    Button() noexcept : Control(ControlKind::button) {}
    /// Pressed by Enter / by Esc, wherever the focus is.
    bool is_default = false;
    bool is_cancel = false;
};

/// One of the option buttons that share a parent and page: setting one clears the others.
class OptionButton final : public Control {
public:
    OptionButton() noexcept : Control(ControlKind::option_button) {}
    bool value() const noexcept { return value_; }
    void set_value(bool value);

private:
    bool value_ = false;
};

class CheckBox final : public Control {
public:
    CheckBox() noexcept : Control(ControlKind::check_box) {}
    /// 1 checked, 0 not.
    int value() const noexcept { return value_; }
    void set_value(int value);

private:
    int value_ = 0;
};

class TextBox final : public Control {
public:
    TextBox() noexcept : Control(ControlKind::text_box) {}
    const std::u16string& text() const noexcept { return caption(); }
    void set_text(std::u16string text) { set_caption(std::move(text)); }
    /// The user changed the text.
    std::function<void()> on_change;
};

/// A plain area that holds other controls.
class Panel final : public Control {
public:
    Panel() noexcept : Control(ControlKind::panel) {}
};

/// A tab control that is used as a container of pages.
class TabPages final : public Control {
public:
    TabPages() noexcept : Control(ControlKind::tab_pages) {}
    std::vector<std::u16string> captions;
    /// The page shown, from 0.
    std::int16_t tab() const noexcept { return tab_; }
    void set_tab(std::int16_t tab);

private:
    std::int16_t tab_ = 0;
};

/// A filled rectangle; takes no mouse.
class Shape final : public Control {
public:
    Shape() noexcept : Control(ControlKind::shape) {}
    Color fill_color() const noexcept { return fill_color_; }
    void set_fill_color(Color color);

private:
    Color fill_color_ = kWhite;
};

/// A line from the left top corner of its place by its width and height; takes no mouse.
class Line final : public Control {
public:
    Line() noexcept : Control(ControlKind::line) {}
    /// Drawn as a groove instead of in the fore colour.
    bool etched = false;
};

/// A named picture of an image list. `icon` names the icon among the module's resources.
struct Image {
    std::u16string key;
    std::string icon;
};

/// Small icons by key, in stored order.
class ImageList {
public:
    ImageList(std::initializer_list<Image> images) : images_(images) {}
    const std::vector<Image>& images() const noexcept { return images_; }
    std::optional<std::size_t> find(std::u16string_view key) const noexcept;

private:
    std::vector<Image> images_;
};

struct ListColumn {
    std::u16string header;
    Twips width = 0;
};

struct ListCell {
    std::u16string text;
    Color fore_color = kBlack;
};

/// A row of a list view: its text and its sub-items, one for every column after the first.
struct ListRow {
    std::u16string key;
    std::u16string text;
    std::u16string tag;
    Color fore_color = kBlack;
    /// Index into the small-icon list.
    std::optional<std::size_t> icon;
    std::vector<ListCell> sub_items;
};

/// A list in report view. Rows and sub-items count from 0 here.
class ListView final : public Control {
public:
    ListView() noexcept : Control(ControlKind::list_view) {}
    std::vector<ListColumn> columns;
    /// Not owned; may be null. Outlives the list view.
    const ImageList* small_icons = nullptr;

    const std::vector<ListRow>& rows() const noexcept { return rows_; }
    std::size_t row_count() const noexcept { return rows_.size(); }
    const std::u16string& sub_item(std::size_t row, std::size_t index) const {
        return rows_.at(row).sub_items.at(index).text;
    }

    void clear();
    /// Adds a row at the end and answers its position. An empty key is none; any other must be new (exact
    /// comparison): raises 35602. `icon`: a key of the small-icon list or empty; raises 35601 when it is unknown.
    std::size_t add_row(std::u16string key, std::u16string text, std::u16string_view icon = {});
    void set_sub_item(std::size_t row, std::size_t index, std::u16string text);
    void set_tag(std::size_t row, std::u16string tag);
    void set_row_color(std::size_t row, Color color);
    void set_cell_color(std::size_t row, std::size_t index, Color color);
    /// Raises 35601 when the small-icon list has no such key.
    void set_icon(std::size_t row, std::u16string_view key);

    std::optional<std::size_t> selected() const noexcept { return selected_; }
    void select(std::optional<std::size_t> row);
    /// Where the top of a row stands, in twips of the list; only while the form is shown.
    Twips row_top(std::size_t row) const;
    /// The row that the last Change::row is about.
    std::size_t changed_row() const noexcept { return changed_row_; }

private:
    std::size_t icon_index(std::u16string_view key) const;
    void row_changed(std::size_t row);

    std::vector<ListRow> rows_;
    std::unordered_map<std::u16string, std::size_t> keys_;
    std::optional<std::size_t> selected_;
    std::size_t changed_row_ = 0;
};

/// A control of the host on the form, invisible at run time.
class HostControl final : public Control {
public:
    HostControl() noexcept : Control(ControlKind::host_control) {}
    /// The live object, or null; not owned. Whoever shows the form gives it its place there.
    IUnknown* object = nullptr;
};

/// An item of a context menu.
struct MenuItem {
    std::string name;
    std::u16string caption;
    std::function<void()> on_click;
};

/// A context menu; shown by the toolkit.
struct Menu {
    std::string name;
    std::u16string caption;
    std::vector<MenuItem> items;
};

}  // namespace vex::forms
