// What every Toolkit owes the dialogs, seen from its screen. Runs unchanged against each side.
#include <gmock/gmock.h>

#include "tests/shared/error_of.h"
#include "tests/toolkit/sample_form.h"
#include "tests/toolkit/side.h"
#include "tests/toolkit/test_user.h"

namespace vex::test {
namespace {

using sim::ActionResult;
using testing::ElementsAre;
using testing::IsEmpty;

class ToolkitContract : public testing::Test {
protected:
    std::u16string shown(const char16_t* control, const char16_t* property) {
        return screen.property(control, property);
    }
    /// Shows the form until the user has nothing left to do.
    void show() {
        user.then([this] { screen.click(u"cmdCancel"); });
        form.show_modal();
        EXPECT_EQ(user.actions_left(), 0U);
    }
    void add_rows(std::size_t count) {
        for (std::size_t row = 0; row < count; ++row) {
            form.list.add_row({}, u"Row " + from_utf8(std::to_string(row + 1)), u"good");
        }
    }

    std::unique_ptr<Side> side = make_side();
    sim::Screen& screen = side->screen();
    TestUser user{screen};
    SampleForm form{side->toolkit()};
};

// ---- A form's life on the screen ----------------------------------------------------------------------

TEST_F(ToolkitContract, FormIsActivatedOnceBeforeTheUserActsAndWhenItIsBroughtToTheFront) {
    user.then([&] {
        EXPECT_THAT(form.log, ElementsAre("load", "activate"));
        screen.activate();
    });
    show();
    EXPECT_THAT(form.log, ElementsAre("load", "activate", "activate", "cmdCancel"));
    EXPECT_THAT(user.dialogs, ElementsAre("open dlgSample", "close dlgSample"));
    EXPECT_FALSE(screen.any_dialog());
    EXPECT_EQ(form.view(), nullptr);
}

TEST_F(ToolkitContract, HiddenFormStaysLoadedAndItsCloseBoxIsARequestThatItMayRefuse) {
    form.on_activate = [&] { form.hide(); };
    form.show_modal();
    EXPECT_TRUE(form.loaded());
    form.on_activate = nullptr;
    form.refuses_to_close = true;
    user.then([&] { screen.close(); }).then([&] {
        EXPECT_TRUE(form.loaded());
        form.refuses_to_close = false;
        screen.close();
    });
    form.show_modal();
    EXPECT_THAT(form.log, ElementsAre("load", "activate", "activate", "close box", "close box", "unloaded"));
}

TEST_F(ToolkitContract, ModalFormKeepsTheOneBelowFromTakingInput) {
    SampleForm inner(side->toolkit(), "dlgInner");
    form.on_any_click = [&](const std::string& control) {
        if (control != "cmdOk") return;
        inner.show_modal(&form);
        form.log.push_back("inner is gone");
    };
    user.then([&] { screen.click(u"cmdOk"); })
        .then([&] {
            EXPECT_EQ(shown(u"dlgInner", u"Caption"), u"Sample");
            inner.label.set_caption(u"inner");
            EXPECT_EQ(shown(u"label", u"Caption"), u"inner");
            screen.click(u"cmdCancel");
        })
        .then([&] { EXPECT_EQ(shown(u"label", u"Caption"), u"Label & text"); });
    show();
    // Real windows activate the form again when the one above it is gone.
    std::erase(form.log, "activate");
    EXPECT_THAT(form.log, ElementsAre("load", "cmdOk", "inner is gone", "cmdCancel"));
    EXPECT_THAT(user.dialogs, ElementsAre("open dlgSample", "open dlgInner", "close dlgInner", "close dlgSample"));
}

// ---- Errors -------------------------------------------------------------------------------------------

TEST_F(ToolkitContract, ErrorOfAHandlerEndsTheDisplayAndIsRaisedWhereTheFormWasShown) {
    form.on_any_click = [](const std::string&) { throw RuntimeError(kTypeMismatch); };
    form.on_press = [](const SampleForm::Press&) { throw RuntimeError(kSubscriptOutOfRange); };
    user.then([&] { screen.click(u"cmdOk"); });
    EXPECT_EQ(error_of([&] { form.show_modal(); }), kTypeMismatch);
    EXPECT_FALSE(screen.any_dialog());
    user.then([&] { screen.press(u"panel", forms::MouseButton::left, 15, 15); });
    EXPECT_EQ(error_of([&] { form.show_modal(); }), kSubscriptOutOfRange);
}

TEST_F(ToolkitContract, FormShownInsideAnActivationSendsItsErrorUpThroughAllModalForms) {
    SampleForm inner(side->toolkit(), "dlgInner");
    inner.on_activate = [] { throw RuntimeError(kOverflow); };
    form.on_activate = [&] { inner.show_modal(); };
    EXPECT_EQ(error_of([&] { form.show_modal(); }), kOverflow);
    EXPECT_THAT(user.dialogs, ElementsAre("open dlgSample", "open dlgInner", "close dlgInner", "close dlgSample"));
}

// ---- Controls -----------------------------------------------------------------------------------------

TEST_F(ToolkitContract, WhatTheProgramChangesIsSeenWhetherTheFormIsShownAlreadyOrNot) {
    const auto change = [&] {
        form.label.set_caption(u"A & B");
        form.text.set_text(u"C:\\a b");
        form.cmdOk.set_enabled(!form.cmdOk.enabled());
        form.check.set_visible(false);
        form.check.set_value(1);
        form.option_b.set_value(true);
        form.shape.set_fill_color(forms::kGrey);
        add_rows(2);
        form.list.select(1);
    };
    const auto expect_seen = [&](const char16_t* enabled, const char16_t* rows) {
        EXPECT_EQ(shown(u"label", u"Caption"), u"A & B");
        EXPECT_EQ(shown(u"text", u"Text"), u"C:\\a b");
        EXPECT_EQ(shown(u"cmdOk", u"Enabled"), enabled);
        EXPECT_EQ(shown(u"check", u"Visible"), u"False");
        EXPECT_EQ(shown(u"check", u"Value"), u"1");
        EXPECT_EQ(shown(u"option_b", u"Value"), u"True");
        EXPECT_EQ(shown(u"option_a", u"Value"), u"False");
        EXPECT_EQ(shown(u"shape", u"FillColor"), u"0x00808080");
        form.pages.set_tab(1);
        EXPECT_EQ(shown(u"pages", u"Tab"), u"1");
        EXPECT_EQ(shown(u"list", u"Rows"), rows);
        EXPECT_EQ(form.list.selected(), 1U);
    };
    form.on_load = change;
    user.then([&] {
        expect_seen(u"False", u"2");
        form.label.set_caption(u"other");
        form.shape.set_fill_color(forms::kGreen);
        change();
        expect_seen(u"True", u"4");
    });
    show();
}

TEST_F(ToolkitContract, OptionsOfOneContainerExcludeEachOther) {
    user.then([&] {
        EXPECT_EQ(screen.set(u"option_a", u"on"), ActionResult::done);
        EXPECT_TRUE(form.option_a.value());
        EXPECT_EQ(screen.click(u"option_b"), ActionResult::done);
        EXPECT_EQ(shown(u"option_a", u"Value"), u"False");
        EXPECT_EQ(shown(u"option_b", u"Value"), u"True");
        EXPECT_EQ(screen.click(u"option_b"), ActionResult::done);
        EXPECT_TRUE(form.option_b.value());
        form.pages.set_tab(1);
        EXPECT_EQ(screen.set(u"lone_option", u"on"), ActionResult::done);
        EXPECT_TRUE(form.option_b.value());
    });
    show();
    EXPECT_THAT(form.log, ElementsAre("load", "activate", "option_b", "option_b", "cmdCancel"));
}

TEST_F(ToolkitContract, CheckBoxTogglesBeforeItsHandlerRunsAndWhatIsTypedIsTheText) {
    std::vector<int> values;
    form.on_any_click = [&](const std::string&) { values.push_back(form.check.value()); };
    user.then([&] {
        screen.click(u"check");
        screen.set(u"check", u"on");
        screen.set(u"check", u"off");
        for (const std::u16string text : {u"D:\\fw\\\u00FCber.shx", u""}) {
            EXPECT_EQ(screen.set(u"text", text), ActionResult::done);
            EXPECT_EQ(form.text.text(), text);
        }
    });
    show();
    EXPECT_THAT(values, ElementsAre(1, 0, 0));
}

TEST_F(ToolkitContract, DisabledHiddenAndPagedAwayControlsTakeNothing) {
    user.then([&] {
        form.cmdOk.set_enabled(false);
        EXPECT_EQ(screen.click(u"cmdOk"), ActionResult::not_possible);
        form.check.set_visible(false);
        EXPECT_EQ(screen.click(u"check"), ActionResult::not_possible);
        form.pages.set_tab(1);
        EXPECT_EQ(screen.click(u"option_b"), ActionResult::not_possible);
        EXPECT_EQ(shown(u"option_b", u"Visible"), u"True");
        form.panel.set_visible(false);
        EXPECT_EQ(screen.press(u"panel_label", forms::MouseButton::left, 15, 15), ActionResult::not_possible);
    });
    show();
    EXPECT_THAT(form.log, ElementsAre("load", "activate", "cmdCancel"));
    EXPECT_THAT(form.presses, IsEmpty());
}

TEST_F(ToolkitContract, PressesOnAPanelComeInItsTwips) {
    // On the background, on a shape (which lets it through), on the label (which takes it itself).
    const SampleForm::Press presses[] = {{"panel", forms::MouseButton::left, 30, 2700},
                                         {"panel", forms::MouseButton::right, 450, 450},
                                         {"panel_label", forms::MouseButton::left, 45, 60}};
    for (const SampleForm::Press& each : presses) {
        user.then([&] {
            screen.press(from_utf8(each.control), each.button, each.x, each.y);
            const SampleForm::Press& got = form.presses.back();
            EXPECT_TRUE(got.control == each.control && got.button == each.button) << got.control;
            EXPECT_NEAR(got.x, each.x, side->coarseness() + 0.01F);
            EXPECT_NEAR(got.y, each.y, side->coarseness() + 0.01F);
        });
    }
    show();
    EXPECT_EQ(form.presses.size(), std::size(presses));
}

// ---- Lists --------------------------------------------------------------------------------------------

TEST_F(ToolkitContract, RowsAreShownWithTheirCellsAndColors) {
    form.pages.set_tab(1);
    user.then([&] {
        add_rows(2);
        form.list.set_sub_item(1, 0, u"Updated - ");
        form.list.set_row_color(1, forms::rgb(100, 255, 100));
        form.list.set_icon(1, u"bad");
        EXPECT_EQ(screen.rows(u"list"),
                  (std::vector<std::vector<std::u16string>>{{u"Row 1", u""}, {u"Row 2", u"Updated - "}}));
        EXPECT_EQ(shown(u"list", u"Row2.ForeColor"), u"0x0064FF64");
        EXPECT_EQ(shown(u"list", u"Row1.ForeColor"), u"0x00000000");
        form.list.clear();
        EXPECT_EQ(shown(u"list", u"Rows"), u"0");
        add_rows(1'000);
        EXPECT_EQ(shown(u"list", u"Rows"), u"1000");
        EXPECT_EQ(shown(u"list", u"Row1000"), u"\"Row 1000\" | \"\"");
    });
    show();
}

TEST_F(ToolkitContract, PressOnARowComesInTheTwipsThatRowsStandAtInEvenSteps) {
    form.pages.set_tab(1);
    form.on_press = [&](const SampleForm::Press& press) {
        for (std::size_t row = 0; row < form.list.row_count(); ++row) {
            if (static_cast<float>(form.list.row_top(row)) < press.y) form.list.select(row);
        }
    };
    user.then([&] {
        add_rows(4);
        const forms::Twips step = form.list.row_top(1) - form.list.row_top(0);
        EXPECT_GE(form.list.row_top(0), 0);
        EXPECT_GT(step, 0);
        EXPECT_EQ(form.list.row_top(3) - form.list.row_top(2), step);
        screen.choose_from_menu(u"list", 3, u"none");
        EXPECT_EQ(form.list.selected(), 2U);
        const auto below = static_cast<float>(form.list.row_top(3) * 2 - form.list.row_top(2) + 150);
        screen.press(u"list", forms::MouseButton::left, 15, below);
        EXPECT_EQ(form.list.selected(), 3U);
    });
    show();
    ASSERT_EQ(form.presses.size(), 2U);
    EXPECT_EQ(form.presses[0].button, forms::MouseButton::right);
    EXPECT_EQ(form.presses[1].button, forms::MouseButton::left);
}

TEST_F(ToolkitContract, ContextMenuRaisesTheItemChosenOrNothing) {
    form.pages.set_tab(1);
    form.on_press = [&](const SampleForm::Press&) { side->toolkit().pop_up_menu(form, form.list_menu); };
    user.then([&] {
        add_rows(2);
        EXPECT_EQ(screen.choose_from_menu(u"list", 2, u"Second!"), ActionResult::done);
        EXPECT_EQ(form.log.back(), "mnuSecond");
        screen.choose_from_menu(u"list", 1, u"No such item");
        EXPECT_EQ(form.log.back(), "mnuSecond");
        form.on_press = nullptr;
        EXPECT_EQ(screen.choose_from_menu(u"list", 1, u"First!"), ActionResult::not_possible);
    });
    show();
}

// ---- In the midst of work -----------------------------------------------------------------------------

TEST_F(ToolkitContract, PumpingServesTheUserInTheMidstOfWorkAndAHiddenFormEndsAfterIt) {
    for (const char16_t* clicked : {u"check", u"cmdCancel"}) {
        SampleForm busy(side->toolkit());
        busy.on_any_click = [&](const std::string& control) {
            if (control != "cmdOk") return;
            side->toolkit().pump_messages();
            busy.log.push_back("pumped");
        };
        user.on_messages_handled = [&, pumpings = 0]() mutable {
            if (busy.log.back() == "cmdOk" && pumpings++ == 0) screen.click(clicked);
        };
        user.then([&] { screen.click(u"cmdOk"); });
        busy.show_modal();
        busy.log.resize(5);
        EXPECT_THAT(busy.log, ElementsAre("load", "activate", "cmdOk", to_utf8(clicked), "pumped"));
    }
}

TEST_F(ToolkitContract, MessageBoxShowsItsTextsAndTellsTheAnswer) {
    using forms::MessageAnswer;
    using forms::MessageButtons;
    std::vector<MessageAnswer> given;
    form.on_any_click = [&](const std::string& control) {
        if (control != "cmdOk") return;
        for (const MessageButtons buttons : {MessageButtons::ok, MessageButtons::yes_no, MessageButtons::yes_no}) {
            given.push_back(side->toolkit().message_box({u"Title", u"Not a valid SHX file!", buttons}));
        }
    };
    user.answers = {MessageAnswer::ok, MessageAnswer::no, MessageAnswer::yes};
    user.then([&] { screen.click(u"cmdOk"); });
    show();
    EXPECT_THAT(given, ElementsAre(MessageAnswer::ok, MessageAnswer::no, MessageAnswer::yes));
    const std::u16string shown = u"Title: Not a valid SHX file!";
    EXPECT_THAT(user.boxes, ElementsAre(shown, shown + u" ?", shown + u" ?"));
}

}  // namespace
}  // namespace vex::test
