// Writes down what dialogs do, in order: what the screen is told, what the host is asked and with which kinds of
// argument. A test compares the whole with a short text. Native only: elsewhere controls are asked for their events
// in another way.
#pragma once

#include <gtest/gtest.h>

#include <deque>
#include <functional>
#include <iostream>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "com/variant.h"
#include "core/unicode.h"
#include "forms/form.h"
#include "simulator/class_library.h"
#include "simulator/native/native_session.h"
#include "support/services.h"
#include "tests/registry/observed_registry.h"
#include "tests/registry/test_key.h"

namespace vex::test {

/// The lines of one test.
class Notebook {
public:
    /// `who`: the form or the class that it is about.
    void line(const std::string& who, const std::string& what);
    /// The same for a part of something: behind the last line where that was about the same part.
    void part(const std::string& who, const std::string& of, const std::string& what);
    void end_part() { part_.clear(); }
    /// What has been written since the last call, a line each.
    std::string take() { return std::exchange(text_, {}); }

    /// Of these nothing is written.
    std::set<std::string> omitted;

private:
    std::string text_;
    /// The part that the last line is about.
    std::string part_;
};

/// A screen with a user who does what the test says.
class Screen final : public forms::Toolkit, public forms::FormView {
public:
    explicit Screen(Notebook& notebook) noexcept : notebook_(notebook) {}

    void run_modal(forms::Form& form, forms::Form* owner) override;
    void pump_messages() override {
        notebook_.line(top().name(), "pump");
        if (const auto act = std::exchange(at_pump, nullptr)) act(top());
    }
    forms::MessageAnswer message_box(const forms::MessageBox& box) override;
    std::optional<std::u16string> open_file(const forms::OpenFileRequest& request) override;
    void pop_up_menu(forms::Form& form, forms::Menu& menu) override {
        notebook_.line(form.name(), "menu " + menu.name + ": " + to_utf8(menu.items.at(0).caption));
        form.raise_menu_click(menu.items[0]);
    }
    void beep() override { notebook_.line("", "beep"); }

    void changed(forms::Control& control, forms::Change change) override;
    void refresh(forms::Control& control) override { notebook_.line(top().name(), "redraw " + control.name()); }
    forms::Twips row_top(const forms::ListView&, std::size_t row) const override {
        return 270 + 255 * static_cast<forms::Twips>(row);
    }

    forms::Form& top() const { return *forms_.back(); }
    /// The form that was opened first.
    forms::Form& bottom() const { return *forms_.front(); }

    /// What the user does, one after the other, to a form that waits for input. Then he closes it.
    std::deque<std::function<void(forms::Form&)>> acts;
    /// What he does while messages are pumped; once.
    std::function<void(forms::Form&)> at_pump;
    forms::MessageAnswer answer = forms::MessageAnswer::yes;
    std::optional<std::u16string> file;
    /// What happens as a form's windows go.
    std::function<void(forms::Form&)> at_close;

private:
    Notebook& notebook_;
    std::vector<forms::Form*> forms_;
    /// The rows as they were written down last.
    std::map<const forms::ListView*, std::vector<forms::ListRow>> rows_;
};

/// The host's side: every class of the simulated host, with answers by "Class.Member".
class RecordedHost {
public:
    explicit RecordedHost(Notebook& notebook);
    ~RecordedHost();

    /// True where none is given for an operation of the transmission control, else empty.
    std::map<std::string, com::Variant> answers;
    /// What happens during a call, before it answers.
    std::map<std::string, std::function<void(DISPPARAMS&)>> during;
    /// An event of the control with a text: a status message, or a box found.
    HRESULT raise(const char* control, std::u16string_view text, DISPID event = 9, UINT arguments = 1) {
        com::Bstr place(text);
        return raise(control, com::Variant::text_reference(place.put_reference()), event, arguments);
    }
    HRESULT raise(const char* control, const com::Variant& argument, DISPID event = 9, UINT arguments = 1);
    void forget_sinks() { sinks_.clear(); }
    com::ComPtr<IDispatch> make(const char16_t* name);

private:
    com::Variant answer(const sim::ObjectCall& call, const std::function<com::Variant()>& make_it);

    Notebook& notebook_;
    /// Who listens or has listened to each control. A control may go on calling one that has gone.
    std::map<std::string, com::ComPtr<IDispatch>> sinks_;
    int listeners_ = 0;
    sim::Trace trace_{std::cerr, true};
    sim::NativeMachine machine_;
    sim::Host host_{trace_, machine_};
    std::optional<sim::HostClasses> classes_;
};

/// What the system answers in the place of the real one: whether each file exists, and whether each program starts.
inline bool files_exist, programs_start;
/// The lines of the test that runs.
inline Notebook* current_notebook;

/// Dialogs on a recorded screen and host, with a registry that is empty at first.
class RecordedFixture : public ::testing::Test {
protected:
    RecordedFixture() {
        current_notebook = &notebook;
        files_exist = programs_start = true;
        for (const std::int32_t root : {platform::kHkeyLocalMachine, platform::kHkeyCurrentUser}) {
            for (const char* branch : {"Norvan", "Tarvex", "BrivolaLite", "Microsoft", "Values"})
                delete_tree(platform::registry_key(root), std::string("Software\\") + branch);
        }
    }
    ~RecordedFixture() override {
        host.forget_sinks();
        EXPECT_TRUE(registry.open_keys.empty()) << "a key was left open";
        EXPECT_EQ(module.objects(), 0) << "an object of the plug-in was left";
    }

    /// What the display list tells of its current display.
    void display(const std::map<std::string, std::u16string>& fields) {
        for (const auto& [name, text] : fields) host.answers["HostDisplayList." + name] = com::Variant::text(text);
    }

    static Key machine_key(const std::string& path) {
        return Key::created(platform::registry_key(platform::kHkeyLocalMachine), path);
    }

    Notebook notebook;
    Screen screen{notebook};
    RecordedHost host{notebook};
    ObservedRegistry registry;
    com::ModuleLifetime module;
    Services services{screen, registry, module, u"C:\\Plugin"};
};

/// An expected text that begins with a line break of its own, without it.
inline std::string log(const char* text) { return text + 1; }

}  // namespace vex::test
