// A form with every kind of control, for the tests of the toolkits.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "forms/form.h"

namespace vex::test {

/// Keeps a log of what happens to it; tests hook into its events.
class SampleForm final : public forms::Form {
public:
    explicit SampleForm(forms::Toolkit& toolkit, std::string_view name = "dlgSample")
        : Form(toolkit, {.name = name, .caption = u"Sample", .width = 6000, .height = 4500, .icon = "WIZARD"}) {
        pages.captions = {u"First", u"Second"};
        list.columns = {{u"Name", 1500}, {u"Status", 2000}};
        list.small_icons = &icons;
        cmdOk.is_default = true;
        cmdCancel.is_cancel = true;
        lay_out({
            {.control = panel, .name = "panel", .at = {0, 0, 1500, 3000}, .back = forms::kDarkGrey},
            {.control = line, .name = "line", .parent = &panel, .at = {150, 150, 0, 1200}, .fore = forms::kWhite},
            {shape, "shape", &panel, -1, {300, 300, 450, 300}},
            {.control = panel_label, .name = "panel_label", .parent = &panel, .at = {300, 900, 900, 195},
             .text = u"On the panel", .fore = forms::kWhite},
            {.control = pages, .name = "pages", .at = {1500, -330, 4500, 4080}, .tab_index = 2},
            {label, "label", &pages, 0, {150, 450, 4200, 450}, u"Label & text"},
            {text, "text", &pages, 0, {150, 900, 3000, 330}, u"", 3},
            {option_a, "option_a", &pages, 0, {150, 1350, 3000, 285}, u"Option &A", 4},
            {option_b, "option_b", &pages, 0, {150, 1650, 3000, 285}, u"Option &B", 5},
            {check, "check", &pages, 0, {150, 2100, 3000, 285}, u"Check", 6},
            {etched, "etched", &pages, 0, {150, 2550, 4200, 0}},
            {list, "list", &pages, 1, {150, 450, 4200, 2400}, u"", 7},
            {lone_option, "lone_option", &pages, 1, {150, 3000, 3000, 285}, u"Alone", 8},
            {cmdOk, "cmdOk", nullptr, -1, {3000, 3900, 1200, 375}, u"OK", 0},
            {cmdCancel, "cmdCancel", nullptr, -1, {4500, 3900, 1200, 375}, u"Cancel", 1},
        });
        etched.etched = true;
        cmdOk.on_click = [this] { clicked("cmdOk"); };
        cmdCancel.on_click = [this] {
            clicked("cmdCancel");
            hide();
        };
        check.on_click = [this] { clicked("check"); };
        option_b.on_click = [this] { clicked("option_b"); };
        for (forms::Control* pressed : std::initializer_list<forms::Control*>{&panel, &panel_label, &list}) {
            pressed->on_mouse_down = [this, pressed](forms::MouseButton button, float x, float y) {
                presses.push_back({pressed->name(), button, x, y});
                if (on_press) on_press(presses.back());
            };
        }
        list_menu.items = {{.name = "mnuFirst", .caption = u"First!", .on_click = [this] { clicked("mnuFirst"); }},
                           {.name = "mnuSecond", .caption = u"Second!", .on_click = [this] { clicked("mnuSecond"); }}};
    }

    struct Press {
        std::string control;
        forms::MouseButton button;
        float x;
        float y;
    };

    /// What happened, in order.
    std::vector<std::string> log;
    std::vector<Press> presses;
    std::function<void()> on_load, on_activate;
    std::function<void(const std::string& control)> on_any_click;
    std::function<void(const Press& press)> on_press;
    bool refuses_to_close = false;

    forms::ImageList icons{{u"good", "UPDATED"}, {u"bad", "FAILED"}};
    forms::Menu list_menu;
    forms::Panel panel;
    forms::Line line, etched;
    forms::Shape shape;
    forms::Label panel_label, label;
    forms::TabPages pages;
    forms::TextBox text;
    forms::OptionButton option_a, option_b, lone_option;
    forms::CheckBox check;
    forms::ListView list;
    forms::Button cmdOk, cmdCancel;

private:
    void Form_Load() override {
        log.push_back("load");
        if (on_load) on_load();
    }
    void Form_Activate() override {
        log.push_back("activate");
        if (on_activate) on_activate();
    }
    void Form_QueryUnload(bool& cancel, forms::UnloadMode mode) override {
        log.push_back(mode == forms::UnloadMode::control_menu ? "close box" : "unload");
        if (refuses_to_close) cancel = true;
    }
    void Form_Unload() override { log.push_back("unloaded"); }
    void clicked(const std::string& control) {
        log.push_back(control);
        if (on_any_click) on_any_click(control);
    }
};

}  // namespace vex::test
