// Forms and controls on a recorded screen: modal life, errors of handlers, mouse targets, what the view is told.
#include "forms/form.h"

#include "core/runtime_error.h"
#include "forms/common_dialog.h"
#include "tests/shared/error_of.h"
#include "tests/shared/notebook.h"
#include "tests/toolkit/sample_form.h"

namespace vex::forms {
namespace {

using test::error_of;
using test::SampleForm;

class FormsTest : public ::testing::Test {
protected:
    /// What the view is told by the action, while the dialog is shown.
    std::string told_of(const std::function<void()>& action) {
        std::string told;
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
    SampleForm dialog{screen, "outer"};
};

TEST_F(FormsTest, LoadsAgainAfterAFailureAndUnloadsOnce) {
    int loads = 0;
    dialog.on_load = [&] {
        EXPECT_FALSE(dialog.running());
        if (++loads == 1) throw RuntimeError(kSubscriptOutOfRange);
    };
    EXPECT_EQ(error_of([this] { dialog.show_modal(); }), kSubscriptOutOfRange);
    EXPECT_FALSE(dialog.loaded());
    EXPECT_EQ(notebook.take(), "") << "nothing was shown";
    for (int times = 0; times < 2; ++times) {
        screen.acts = {[this](Form&) { dialog.hide(); }};
        dialog.show_modal();
    }
    EXPECT_EQ(loads, 2) << "not once more while it is loaded";
    EXPECT_FALSE(dialog.running());
    dialog.refuses_to_close = true;
    EXPECT_FALSE(dialog.may_unload(UnloadMode::system) || dialog.unload());
    dialog.refuses_to_close = false;
    EXPECT_TRUE(dialog.may_unload(UnloadMode::system));
    EXPECT_TRUE(dialog.unload());
    EXPECT_FALSE(dialog.loaded());
    EXPECT_TRUE(dialog.unload()) << "nothing happens";
    dialog.on_load = [this] { dialog.unload(); };
    notebook.take();
    dialog.show_modal();
    EXPECT_EQ(notebook.take(), "") << "unloaded while it loads";
}

TEST_F(FormsTest, TheKeyboardMeetsEachControlBehindItsLabelAndWithinItsContainer) {
    // The first index counts like any other; of equals the earlier in the table comes first.
    dialog.pages.set_tab_index(0);
    dialog.cmdOk.set_tab_index(-1);
    dialog.cmdCancel.set_tab_index(0);
    std::string order;
    for (const Control* control : dialog.keyboard_order()) order += control->name() + ' ';
    EXPECT_EQ(order, "pages label text option_a option_b check etched list lone_option cmdOk cmdCancel panel line shape "
                     "panel_label ");
}

TEST_F(FormsTest, TheFirstErrorEndsEveryModalLoopAboveTheCaller) {
    SampleForm inner(screen, "inner");
    inner.cmdOk.on_click = [] { throw RuntimeError(kTypeMismatch); };
    inner.on_activate = [&] {
        screen.at_pump = [&](Form& form) { form.raise_click(inner.cmdOk); };
        screen.pump_messages();
        throw RuntimeError(kOverflow);  // what follows is not the cause
    };
    dialog.cmdOk.on_click = [&] {
        inner.show_modal(&dialog);
        ADD_FAILURE() << "the error must pass here";
    };
    screen.acts.push_back([this](Form& form) { form.raise_click(dialog.cmdOk); });
    EXPECT_EQ(error_of([this] { dialog.show_modal(); }), kTypeMismatch);
    EXPECT_TRUE(notebook.take().ends_with("pump\nclose inner\nclose outer\n"));
}

TEST_F(FormsTest, PressesComeToTheTopmostControlInItsOwnTwips) {
    const auto press = [this](float x, float y) { dialog.raise_mouse_down(dialog.panel, MouseButton::left, x, y); };
    // The label's corners, and beside each of its edges.
    for (const auto& [x, y] : {std::pair{300.F, 900.F}, {1199.F, 1094.F}, {299.F, 900.F}, {1200.F, 900.F},
                               {300.F, 899.F}, {300.F, 1095.F}})
        press(x, y);
    dialog.panel_label.on_mouse_down = nullptr;
    press(450, 1000);  // it takes this and does nothing with it
    dialog.panel_label.set_visible(false);
    press(450, 1000);  // it is not there
    dialog.panel.set_enabled(false);
    press(150, 150);
    std::string presses;
    for (const auto& [control, button, x, y] : dialog.presses)
        presses += control + std::to_string(static_cast<int>(x)) + ',' + std::to_string(static_cast<int>(y)) + ' ';
    EXPECT_EQ(presses, "panel_label0,0 panel_label899,194 panel299,900 panel1200,900 panel300,899 panel300,1095 "
                       "panel450,1000 ");
}

TEST_F(FormsTest, TheViewIsToldOfChangesAndOfNothingElse) {
    EXPECT_EQ(told_of([this] {
        for (int round = 0; round < 2; ++round) {
            dialog.panel_label.set_caption(u"New");
            dialog.cmdOk.set_enabled(false);
            dialog.cmdOk.set_visible(false);
            dialog.shape.set_fill_color(kGreen);
            dialog.pages.set_tab(1);
            dialog.list.select(std::nullopt);
        }
        dialog.list.add_row({}, u"A");
        dialog.list.select(0);
        dialog.list.set_cell_color(0, 0, kRed);
        dialog.check.set_value(1);
        dialog.option_b.set_value(true);
        dialog.panel_label.refresh();
    }), test::log(R"(
panel_label: New
set cmdOk=off cmdOk=hidden shape=00FF00 pages=1
list[0] "A" key "" tag ""
set list=0
list[0] cell 0000FF
set check=changed option_b=changed
redraw panel_label
)"));
    // What the user does is on the screen already.
    int changes = 0;
    dialog.text.on_change = [&changes] { ++changes; };
    EXPECT_EQ(told_of([this] {
        dialog.user_text(dialog.text, u"typed");
        dialog.user_text(dialog.text, u"typed");
        dialog.user_selection(dialog.list, std::nullopt);
    }), "");
    EXPECT_EQ(changes, 1);
    EXPECT_EQ(dialog.text.text(), u"typed");
    EXPECT_FALSE(dialog.list.selected());
    // Without a view there is nobody to tell or to ask.
    dialog.panel_label.refresh();
    EXPECT_EQ(dialog.list.row_top(0), 0);
}

TEST_F(FormsTest, AListRefusesUnknownIconsAndClearingEndsItsSelection) {
    dialog.list.add_row(u"A", u"A", u"good");
    EXPECT_EQ(error_of([this] { dialog.list.set_icon(0, u"unknown"); }), kListElementNotFound);
    dialog.list.select(0);
    EXPECT_EQ(told_of([this] { dialog.list.clear(); }), "list cleared\n");
    EXPECT_FALSE(dialog.list.selected());
}

TEST_F(FormsTest, TheFileDialogKeepsItsNameThroughACancel) {
    CommonDialog files(screen);
    screen.file = u"D:\\fw\\a.SHX";
    files.ShowOpen();
    screen.file.reset();
    files.ShowOpen();
    EXPECT_EQ(files.FileName, u"D:\\fw\\a.SHX");
    EXPECT_NE(notebook.take().find("named \"D:\\fw\\a.SHX\" \"\" 000000"), std::string::npos) << "the next use begins with it";
}

}  // namespace
}  // namespace vex::forms
