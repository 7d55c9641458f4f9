// A whole update in one process.
#include "tests/proof/rig.h"

#include <gtest/gtest.h>

#include <deque>
#include <filesystem>
#include <iostream>
#include <map>
#include <utility>

#include "core/runtime_error.h"
#include "platform/native/machine.h"
#include "platform/registry.h"
#include "simulator/class_library.h"
#include "simulator/firmware_image.h"
#include "simulator/native/native_session.h"
#include "support/text.h"
#include "tests/shared/temporary_folder.h"
#include "wizard/dlg_firmware_wizard.h"

namespace vex::proof {
namespace {

using platform::native::real_path;

/// The machine of all plans: there before the first test, gone after the last while the runtime still stands.
class Machine final : public ::testing::Environment {
    void SetUp() override {
        folder_.emplace();
        platform::native::use_machine_folder(*folder_ / "machine");
        folder_->write("machine/drive_d/fw/new.SHX",
                       "S00600004844521B\nS1130000285F245F2212226A000424290008237C2A\nS9030000FC\n");
        folder_->write("machine/drive_d/fw/new.BIN", "image");
        folder_->write("machine/drive_c/Host/BIN/FIRMWARE/SL-RCM2000B.BIN", sim::make_loader_image());
        folder_->write("machine/drive_c/Host/BIN/FIRMWARE/nvSerDownload.exe", "tool");
        CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
    }
    void TearDown() override {
        CoUninitialize();
        folder_.reset();
    }

    std::optional<test::TemporaryFolder> folder_;
};

[[maybe_unused]] auto* const environment = ::testing::AddGlobalTestEnvironment(new Machine);

std::vector<std::vector<std::u16string>> unit_contents(const sim::Host& host) {
    std::vector<std::vector<std::u16string>> contents;
    for (std::size_t i = 0; i < host.displays.size(); ++i) {
        const sim::Display& display = host.displays.at(i);
        auto& units = contents.emplace_back();
        for (const std::int16_t id : host.units.ids(display)) {
            units.push_back(host.units.content(display.name, id));
        }
    }
    return contents;
}

/// Drives the wizard to its end and looks at the run.
class User final : public forms::ScriptedUser {
public:
    User(const Plan& plan, sim::Host& host, Outcome& outcome, bool& interrupting) noexcept
        : plan_(plan), host_(host), outcome_(outcome), interrupting_(interrupting) {
        const bool loads = plan.mode != Mode::reset;
        clicks_ = {"cmdAbout", "cmdNext"};
        if (loads) clicks_.push_back("opLoadFirmware");
        clicks_.insert(clicks_.end(), {"cmdNext", "cmdChooseDisplay", "cmdNext"});
        if (plan.mode == Mode::external_tool) clicks_.push_back("chkUseExternalApp");
        if (loads) clicks_.insert(clicks_.end(), {"cmdFirmwareBrowse", "cmdNext"});
        clicks_.push_back("cmdFinish");
    }

    void form_closed(forms::Form& form) override {
        const Side side(Side::host);
        if (form.name() == "dlgHandleSignOption") cancelled_ = false;
        if (form.name() == "dlgDispUpdater") look_at_rows(form);
    }

    bool act(forms::Form& form) override {
        const Side side(Side::host);
        if (form.name() == "frmAbout") return click(form, "cmdOK");
        if (form.name() == "dlgFirmwareWizard") {
            if (clicks_.empty()) return false;
            const char* const button = clicks_.front();
            clicks_.pop_front();
            return click(form, button);
        }
        return form.name() == "dlgDispUpdater" && look_at_run(form);
    }

    void pumped(forms::Form& form) override {
        const Side side(Side::host);
        const forms::Control* const status = form.find("lblStatus");
        const sim::ScriptedMessage* const message = status == nullptr ? nullptr : host_.read_message(status->caption());
        if (message != nullptr && message->reaction && plan_.moment->cancel) click(form, "cmdCancel");
    }

    forms::MessageAnswer answer(const forms::MessageBox&) override {
        const Side side(Side::host);
        const auto answer = plan_.moment->cancel.value_or(forms::MessageAnswer::ok);
        if (answer == forms::MessageAnswer::yes) {
            cancelled_ = true;
            outcome_.calls_before_cancel = outcome_.calls.size();
        }
        return answer;
    }
    std::optional<std::u16string> choose_file(const forms::OpenFileRequest&) override {
        return plan_.mode == Mode::firmware ? u"D:\\fw\\new.SHX" : u"D:\\fw\\new.BIN";
    }
    const forms::MenuItem* choose(const forms::Menu& menu) override { return &menu.items.front(); }

    bool cancelled() const noexcept { return cancelled_; }

private:
    static std::vector<std::u16string> status_column(const forms::ListView& list) {
        std::vector<std::u16string> words;
        for (std::size_t row = 0; row < list.row_count(); ++row) words.push_back(list.sub_item(row, 0));
        return words;
    }

    static bool click(forms::Form& form, const char* button) {
        const Side side(Side::plugin);
        form.raise_click(*form.find(button));
        return true;
    }

    forms::ListView& look_at_rows(forms::Form& form) {
        auto& list = static_cast<forms::ListView&>(*form.find("lstvDisplayStatus"));
        if (outcome_.rows.empty()) {
            outcome_.rows = status_column(list);
            outcome_.units = unit_contents(host_);
            interrupting_ = false;
        }
        return list;
    }

    bool look_at_run(forms::Form& form) {
        forms::ListView& list = look_at_rows(form);
        for (; plan_.retry && next_retry_ < list.row_count(); ++next_retry_) {
            if (outcome_.rows[next_retry_] == u"Updated - ") continue;
            const auto y = static_cast<float>(list.row_top(next_retry_)) + 1;
            const Side side(Side::plugin);
            form.raise_mouse_down(list, forms::MouseButton::right, 1, y);
            if (!form.running()) return true;
        }
        outcome_.rows_after_retry = status_column(list);
        return click(form, "cmdClose");
    }

    const Plan& plan_;
    sim::Host& host_;
    Outcome& outcome_;
    bool& interrupting_;
    std::deque<const char*> clicks_;
    std::size_t next_retry_ = 0;
    bool cancelled_ = false;
};

void equip(sim::Host& host, const Plan& plan) {
    const bool tq1 = plan.mode == Mode::flash_loader || plan.mode == Mode::external_tool;
    std::u16string names;
    for (std::size_t i = 0; i < plan.displays; ++i) {
        const std::u16string number = decimal_text(static_cast<std::int32_t>(i + 1));
        sim::Display display;
        display.name = u"Display " + number;
        display.type = tq1 ? u"TQ-1 - Street" : u"Z180 Sign";
        display.code = tq1 ? u"165" : u"12";
        display.port = u"COM" + number;
        display.version = u"1.50";
        display.ids = i % 3 == 0 ? u"1,20" : u"7";
        if (i % 3 == 1) {
            display.connection = sim::kNetwork;
            display.address = u"10.0.0.7";
        }
        const std::u16string name = display.name;
        names += (i == 0 ? u"" : u",") + name;
        host.put_display(std::move(display));
        if (i % 3 == 0) host.units.set_slaves(name, 1, {0, 2});
        if (i % 3 == 1) host.units.add_box(name, u"UDS-10");
    }
    host.choose_displays = [names] { return names; };
}

}  // namespace

const char* name_of(Mode mode) noexcept {
    constexpr const char* kNames[] = {"reset", "firmware", "flash loader", "external tool"};
    return kNames[static_cast<std::size_t>(mode)];
}

std::vector<std::pair<std::size_t, Moment>> moments(const std::vector<std::u16string>& calls) {
    constexpr std::u16string_view kControl = u"vexDispTrans.";
    std::vector<std::pair<std::size_t, Moment>> result;
    std::map<std::u16string, std::int64_t> seen;
    for (std::size_t k = 0; k < calls.size(); ++k) {
        if (!calls[k].starts_with(kControl)) continue;
        result.push_back({k, {sim::parse_operation(calls[k].substr(kControl.size())), ++seen[calls[k]], {}}});
    }
    return result;
}

Outcome play(const Plan& plan) {
    Outcome outcome;
    sim::Trace trace(std::cerr, true);
    com::ModuleLifetime module;
    sim::NativeMachine machine;
    {
        sim::Host host(trace, machine);
        host.display_file = real_path(u"C:\\Brivola\\Displays.dat");
        std::filesystem::create_directories(host.display_file.parent_path());
        equip(host, plan);
        platform::native::on_program_started([&](const std::u16string& path) { outcome.programs.push_back(path); });

        bool interrupting = true;
        User user(plan, host, outcome, interrupting);
        host.around_call = [&](const sim::ObjectCall& made, const std::function<com::Variant()>& answer) {
            const Side side(Side::host);
            if (!interrupting) return answer();
            const std::u16string call = made.name();
            outcome.calls.push_back(call);
            const bool is_controls = call.starts_with(u"vexDispTrans.");
            if (user.cancelled() && is_controls) outcome.calls_after_cancel.push_back(call);
            const auto given = plan.meddle ? plan.meddle(call) : std::nullopt;
            // A value that is put has no answer.
            com::Variant value = given && made.member != nullptr && made.member->kind != sim::kPut ? *given : answer();
            if (plan.heedless && is_controls && value.type() == VT_BOOL) return com::Variant::boolean(true);
            return value;
        };
        if (plan.moment) {
            host.script.push_back({.pattern = {std::nullopt, std::nullopt, plan.moment->operation, plan.moment->at},
                                   .message = sim::ScriptedMessage{u"Just a moment", [] {}}});
        }
        const sim::HostClasses classes(host);
        const long factories = host.lifetime.objects();
        forms::ScriptedToolkit toolkit(user);
        const Services services{toolkit, platform::registry(), module, u"C:\\Host"};
        try {
            if (plan.start) {
                plan.start(toolkit);
            } else {
                dlgFirmwareWizard wizard(services, [](forms::Form&) {});
                wizard.show_modal();
            }
        } catch (const RuntimeError& error) {
            outcome.error = error.number();
            if (outcome.units.empty()) outcome.units = unit_contents(host);
        }
        platform::native::on_program_started(nullptr);
        outcome.host_objects = host.lifetime.objects() - factories;
    }
    outcome.plugin_objects = module.objects();
    return outcome;
}

}  // namespace vex::proof
