// Forms and controls on a recorded screen: modal life, errors of handlers, mouse targets, what the view is told.
#include "forms/form.h"

#include "core/runtime_error.h"
#include "forms/common_dialog.h"
#include "tests/shared/error_of.h"
#include "tests/shared/notebook.h"

namespace vex::forms {
namespace {

using test::error_of;

class Dialog : public Form {
public:
    Dialog(Toolkit& toolkit, std::string_view name) : Form(toolkit, {.name = name, .width = 3000, .height = 2000}) {
        list.columns = {{u"Name", 900}, {u"Status", 900}};
        list.small_icons = &icons;
        lay_out({
            {.control = panel, .name = "panel", .at = {0, 0, 1000, 1000}},
            {.control = node, .name = "node", .parent = &panel, .at = {100, 100, 200, 200}},
            {.control = label, .name = "label", .parent = &panel, .at = {400, 200, 200, 200}},
            {.control = pages, .name = "pages"},
            {.control = first, .name = "first", .parent = &pages, .page = 0},
            {.control = second, .name = "second", .parent = &pages, .page = 0},
            {.control = elsewhere, .name = "elsewhere", .parent = &pages, .page = 1},
            {.control = button, .name = "button"},
            {.control = box, .name = "box"},
            {.control = list, .name = "list"},
        });
        first.set_value(true);
    }

    Panel panel;
    Shape node;
    Label label;
    TabPages pages;
    OptionButton first, second, elsewhere;
    Button button;
    TextBox box;
    ImageList icons{{u"Good", "GOOD"}};
    ListView list;
    std::function<void()> on_load, on_activate;

protected:
    void Form_Load() override {
        if (on_load) on_load();
    }
    void Form_Activate() override {
        if (on_activate) on_activate();
    }
};

class FormsTest : public ::testing::Test {
protected:
    /// What the view is told by the action, while the dialog is shown.
    std::string told_of(const std::function<void()>& action) {
        screen.acts = {[&](Form&) {
            notebook.take();
            action();
            told = notebook.take();
        }};
        dialog.show_modal();
        return told;
    }

    test::Notebook notebook;
    test::Screen screen{notebook};
    Dialog dialog{screen, "outer"};
    std::string told;
};

TEST_F(FormsTest, LoadsOnceUntilItIsUnloadedAndAgainAfterAFailure) {
    int loads = 0;
    dialog.on_load = [&] {
        if (++loads == 1) throw RuntimeError(kSubscriptOutOfRange);
    };
    EXPECT_EQ(error_of([this] { dialog.show_modal(); }), kSubscriptOutOfRange);
    EXPECT_FALSE(dialog.loaded());
    EXPECT_EQ(notebook.take(), "") << "nothing was shown";
    dialog.button.on_click = [this] { dialog.hide(); };
    for (int round = 0; round < 2; ++round) {
        screen.acts.push_back([this](Form& form) { form.raise_click(dialog.button); });
        dialog.show_modal();
        EXPECT_TRUE(dialog.loaded());
    }
    EXPECT_EQ(loads, 2);
    EXPECT_TRUE(dialog.unload());
    EXPECT_FALSE(dialog.loaded());
    EXPECT_TRUE(dialog.unload()) << "nothing happens";
    dialog.on_load = [this] { dialog.unload(); };
    notebook.take();
    dialog.show_modal();
    EXPECT_EQ(notebook.take(), "") << "unloaded while it loads";
}

TEST_F(FormsTest, TheFirstErrorEndsEveryModalLoopAboveTheCaller) {
    Dialog inner(screen, "inner");
    bool went_on = false;
    inner.button.on_click = [] { throw RuntimeError(kTypeMismatch); };
    inner.on_activate = [&] {
        screen.at_pump = [&](Form& form) { form.raise_click(inner.button); };
        screen.pump_messages();
        went_on = true;
        throw RuntimeError(kOverflow);  // what follows is not the cause
    };
    dialog.button.on_click = [&] {
        inner.show_modal(&dialog);
        ADD_FAILURE() << "the error must pass here";
    };
    screen.acts.push_back([this](Form& form) { form.raise_click(dialog.button); });
    EXPECT_EQ(error_of([this] { dialog.show_modal(); }), kTypeMismatch);
    EXPECT_TRUE(went_on);
    EXPECT_TRUE(notebook.take().ends_with("pump\nclose inner\nclose outer\n"));
    EXPECT_EQ(error_of([this] { dialog.show_modal(); }), 0) << "it is over";
}

TEST_F(FormsTest, PressesComeToTheTopmostControlInItsOwnTwips) {
    std::string presses;
    const auto note = [&presses](const char* name) {
        return [&presses, name](MouseButton, float x, float y) {
            presses += name + std::to_string(static_cast<int>(x)) + ',' + std::to_string(static_cast<int>(y)) + ' ';
        };
    };
    dialog.panel.on_mouse_down = note("panel ");
    dialog.node.on_mouse_down = note("node ");
    const auto press = [this](float x, float y) {
        dialog.raise_mouse_down(dialog.panel, MouseButton::left, x, y);
    };
    press(150, 150);
    press(450, 250);  // the label takes it and does nothing with it
    dialog.label.on_mouse_down = note("label ");
    for (const auto& [x, y] : {std::pair{400.F, 200.F}, {599.F, 399.F}, {399.F, 200.F}, {600.F, 200.F}, {400.F, 199.F},
                               {400.F, 400.F}})
        press(x, y);
    dialog.panel.set_enabled(false);
    press(150, 150);
    EXPECT_EQ(presses, "panel 150,150 label 0,0 label 199,199 panel 399,200 panel 600,200 panel 400,199 panel 400,400 ");
}

TEST_F(FormsTest, TheViewIsToldOfChangesAndOfNothingElse) {
    EXPECT_EQ(told_of([this] {
        for (int round = 0; round < 2; ++round) {
            dialog.label.set_caption(u"New");
            dialog.button.set_enabled(false);
            dialog.button.set_visible(false);
            dialog.node.set_fill_color(kGreen);
            dialog.pages.set_tab(1);
            dialog.list.select(std::nullopt);
        }
        dialog.list.add_row({}, u"A");
        dialog.list.select(0);
        dialog.label.refresh();
    }), test::log(R"(
label: New
set button=off button=hidden node=00FF00 pages=1
list[0] "A" key "" tag ""
set list=0
redraw label
)"));
    // What the user does is on the screen already.
    int changes = 0;
    dialog.box.on_change = [&changes] { ++changes; };
    EXPECT_EQ(told_of([this] {
        dialog.user_text(dialog.box, u"typed");
        dialog.user_text(dialog.box, u"typed");
        dialog.user_selection(dialog.list, std::nullopt);
    }), "");
    EXPECT_EQ(changes, 1);
    EXPECT_EQ(dialog.box.text(), u"typed");
    EXPECT_FALSE(dialog.list.selected());
}

TEST_F(FormsTest, ListKeysAreUniqueAndIconsKnown) {
    dialog.list.add_row(u"A", u"A", u"Good");
    dialog.list.add_row({}, u"B");
    dialog.list.add_row({}, u"B");
    EXPECT_EQ(error_of([this] { dialog.list.add_row(u"A", u"again"); }), kListKeyNotUnique);
    EXPECT_EQ(error_of([this] { dialog.list.set_icon(0, u"Bad"); }), kListElementNotFound);
    EXPECT_EQ(dialog.list.row_count(), 3U);
    dialog.list.select(1);
    dialog.list.clear();
    EXPECT_FALSE(dialog.list.selected());
    EXPECT_EQ(error_of([this] { dialog.list.add_row(u"A", u"A"); }), 0) << "clearing frees the keys";
}

TEST_F(FormsTest, TheFileDialogKeepsItsNameThroughACancel) {
    CommonDialog files(screen);
    screen.file = u"D:\\fw\\a.SHX";
    files.ShowOpen();
    screen.file.reset();
    files.ShowOpen();
    EXPECT_EQ(files.FileName, u"D:\\fw\\a.SHX");
    EXPECT_NE(notebook.take().find("named \"D:\\fw\\a.SHX\""), std::string::npos) << "the next use begins with it";
}

}  // namespace
}  // namespace vex::forms
