// Forms and controls under a scripted user: modal life, refused closing, errors of handlers, mouse targets.
#include <gtest/gtest.h>

#include <deque>
#include <functional>
#include <string>
#include <vector>

#include "core/runtime_error.h"
#include "forms/common_dialog.h"
#include "forms/form.h"
#include "forms/scripted_toolkit.h"

namespace vex::forms {
namespace {

/// Does what the test queued, and notes what it sees.
class User final : public ScriptedUser {
public:
    std::deque<std::function<void(Form&)>> acts;
    std::deque<std::function<void(Form&)>> during_pump;
    std::vector<std::string> seen;
    std::optional<std::u16string> file;
    const char* menu_choice = nullptr;

    void form_opened(Form& form) override { seen.push_back("open " + form.name()); }
    void form_closed(Form& form) override { seen.push_back("close " + form.name()); }
    bool act(Form& form) override {
        if (acts.empty()) return false;
        const auto next = acts.front();
        acts.pop_front();
        next(form);
        return true;
    }
    void pumped(Form& form) override {
        if (during_pump.empty()) return;
        const auto next = during_pump.front();
        during_pump.pop_front();
        next(form);
    }
    MessageAnswer answer(const MessageBox&) override { return MessageAnswer::yes; }
    std::optional<std::u16string> choose_file(const OpenFileRequest&) override { return file; }
    const MenuItem* choose(const Menu& menu) override {
        for (const MenuItem& item : menu.items) {
            if (menu_choice != nullptr && item.name == menu_choice) return &item;
        }
        return nullptr;
    }
    void beep() override {}
};

class Dialog : public Form {
public:
    Dialog(Toolkit& toolkit, std::string_view name) : Form(toolkit, {.name = name, .width = 3000, .height = 2000}) {
        pages.captions = {u"One", u"Two"};
        list.columns = {{u"Name", 900}, {u"Status", 900}};
        list.small_icons = &icons;
        lay_out({
            {.control = panel, .name = "panel", .at = {0, 0, 1000, 1000}},
            {.control = node, .name = "node", .parent = &panel, .at = {100, 100, 200, 200}},
            {.control = label, .name = "label", .parent = &panel, .at = {400, 100, 200, 200}},
            {.control = pages, .name = "pages"},
            {.control = first, .name = "first", .parent = &pages, .page = 0},
            {.control = second, .name = "second", .parent = &pages, .page = 0},
            {.control = elsewhere, .name = "elsewhere", .parent = &pages, .page = 1},
            {.control = button, .name = "button"},
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
    ImageList icons{{u"Good", "GOOD"}};
    ListView list;
    std::function<void()> on_load, on_activate;
    std::function<bool(UnloadMode)> refuses;
    int unloads = 0;

protected:
    void Form_Load() override {
        if (on_load) on_load();
    }
    void Form_Activate() override {
        if (on_activate) on_activate();
    }
    void Form_QueryUnload(bool& cancel, UnloadMode mode) override { cancel = refuses && refuses(mode); }
    void Form_Unload() override { ++unloads; }
};

class FormsTest : public ::testing::Test {
protected:
    User user;
    ScriptedToolkit toolkit{user};
    Dialog dialog{toolkit, "outer"};
};

TEST_F(FormsTest, HidingEndsTheDisplayAndKeepsTheFormLoaded) {
    dialog.button.on_click = [this] { dialog.hide(); };
    int loads = 0;
    dialog.on_load = [&] { ++loads; };
    for (int round = 0; round < 2; ++round) {
        user.acts.push_back([this](Form& form) { form.raise_click(dialog.button); });
        dialog.show_modal();
        EXPECT_TRUE(dialog.loaded());
    }
    EXPECT_EQ(loads, 1);
    EXPECT_TRUE(dialog.unload());
    EXPECT_TRUE(dialog.unload()) << "unloading what is not loaded does nothing";
    EXPECT_EQ(dialog.unloads, 1);
}

TEST_F(FormsTest, CloseRequestsCanBeRefusedByTheirMode) {
    std::vector<UnloadMode> asked;
    dialog.refuses = [&](UnloadMode mode) {
        asked.push_back(mode);
        return mode == UnloadMode::control_menu && asked.size() == 1;
    };
    user.acts.push_back([&](Form& form) {
        form.raise_close_request();
        EXPECT_TRUE(form.running());
        form.raise_close_request();
        EXPECT_FALSE(form.running());
    });
    dialog.show_modal();
    EXPECT_EQ(asked, (std::vector{UnloadMode::control_menu, UnloadMode::control_menu}));
    EXPECT_EQ(dialog.unloads, 1);
    EXPECT_FALSE(dialog.loaded());
}

TEST_F(FormsTest, AnErrorOfAHandlerEndsEveryModalLoopAboveTheCaller) {
    Dialog inner(toolkit, "inner");
    inner.on_activate = [] { throw RuntimeError(kOverflow); };
    dialog.button.on_click = [&] {
        inner.show_modal(&dialog);
        ADD_FAILURE() << "the error must pass here";
    };
    user.acts.push_back([&](Form& form) { form.raise_click(dialog.button); });
    try {
        dialog.show_modal();
        FAIL() << "no error";
    } catch (const RuntimeError& error) {
        EXPECT_EQ(error.number(), kOverflow);
    }
    EXPECT_EQ(user.seen, (std::vector<std::string>{"open outer", "open inner", "close inner", "close outer"}));
    EXPECT_EQ(toolkit.top(), nullptr);
}

TEST_F(FormsTest, AnErrorDuringAPumpSurfacesWhereTheFormWasShown) {
    bool routine_went_on = false;
    dialog.button.on_click = [] { throw RuntimeError(kTypeMismatch); };
    dialog.on_activate = [&] {
        toolkit.pump_messages();
        routine_went_on = true;
        throw RuntimeError(kOverflow);  // what follows is not the cause
    };
    user.during_pump.push_back([this](Form& form) { form.raise_click(dialog.button); });
    try {
        dialog.show_modal();
        FAIL() << "no error";
    } catch (const RuntimeError& error) {
        EXPECT_EQ(error.number(), kTypeMismatch);
    }
    EXPECT_TRUE(routine_went_on);
}

TEST_F(FormsTest, AnErrorWhileLoadingShowsNothing) {
    dialog.on_load = [] { throw RuntimeError(kSubscriptOutOfRange); };
    EXPECT_THROW(dialog.show_modal(), RuntimeError);
    EXPECT_TRUE(user.seen.empty());
    EXPECT_FALSE(dialog.loaded());

    int loads = 0;
    dialog.on_load = [&loads] { ++loads; };
    dialog.show_modal();
    EXPECT_EQ(loads, 1) << "it is loaded again, from the start";
    EXPECT_FALSE(user.seen.empty());
}

TEST_F(FormsTest, ClicksReachOnlyWhatAUserCouldClick) {
    int clicks = 0;
    dialog.button.on_click = [&] { ++clicks; };
    dialog.button.set_enabled(false);
    dialog.raise_click(dialog.button);
    dialog.button.set_enabled(true);
    dialog.button.set_visible(false);
    dialog.raise_click(dialog.button);
    dialog.button.set_visible(true);
    dialog.raise_click(dialog.button);
    EXPECT_EQ(clicks, 1);

    dialog.raise_click(dialog.elsewhere);
    EXPECT_FALSE(dialog.elsewhere.value()) << "its page is not shown";
    dialog.raise_click(dialog.second);
    EXPECT_TRUE(dialog.second.value());
    EXPECT_FALSE(dialog.first.value()) << "one of a group";
    dialog.pages.set_tab(1);
    dialog.raise_click(dialog.elsewhere);
    EXPECT_TRUE(dialog.elsewhere.value());
    EXPECT_TRUE(dialog.second.value()) << "another page is another group";
}

TEST_F(FormsTest, ShapesLetAPressThroughAndLabelsTakeIt) {
    std::vector<std::pair<float, float>> presses;
    dialog.panel.on_mouse_down = [&](MouseButton, float x, float y) { presses.emplace_back(x, y); };
    dialog.raise_mouse_down(dialog.panel, MouseButton::left, 150, 150);  // on the shape
    dialog.raise_mouse_down(dialog.panel, MouseButton::left, 450, 150);  // on the label
    dialog.raise_mouse_down(dialog.panel, MouseButton::left, 600, 150);  // just right of the label
    EXPECT_EQ(presses, (std::vector<std::pair<float, float>>{{150.F, 150.F}, {600.F, 150.F}}));
}

TEST_F(FormsTest, ListKeysAreUniqueAndIconsKnown) {
    dialog.list.add_row(u"A", u"A", u"Good");
    dialog.list.add_row({}, u"B");
    dialog.list.add_row({}, u"B");
    const auto number = [](const std::function<void()>& action) {
        try {
            action();
        } catch (const RuntimeError& error) {
            return error.number();
        }
        return 0;
    };
    EXPECT_EQ(number([&] { dialog.list.add_row(u"A", u"again"); }), kListKeyNotUnique);
    EXPECT_EQ(number([&] { dialog.list.set_icon(0, u"Bad"); }), kListElementNotFound);
    EXPECT_EQ(dialog.list.row_count(), 3U);
    dialog.list.clear();
    EXPECT_EQ(number([&] { dialog.list.add_row(u"A", u"A"); }), 0) << "clearing frees the keys";
}

TEST_F(FormsTest, TheFileDialogKeepsItsNameThroughACancel) {
    CommonDialog files(toolkit);
    user.file = u"D:\\fw\\a.SHX";
    files.ShowOpen();
    user.file.reset();
    files.ShowOpen();
    EXPECT_EQ(files.FileName, u"D:\\fw\\a.SHX");
}

}  // namespace
}  // namespace vex::forms
