// The terminal: a screen in memory, where the user has nothing but keys and mouse.
#include <utility>

#include "core/unicode.h"
#include "platform/native/terminal/terminal_toolkit.h"
#include "simulator/native/native_screen.h"
#include "tests/terminal/fake_screen.h"
#include "tests/toolkit/side.h"

namespace vex::test {
namespace {

using namespace platform::native::terminal;

class TerminalSide final : public Side, private sim::NativeScreen, private FakeScreen {
public:
    TerminalSide() { size_now = {120, 40}; }
    forms::Toolkit& toolkit() override { return toolkit_; }
    sim::Screen& screen() override { return *this; }
    float coarseness() const override { return 100; }

private:
    /// Tells of the dialogs that come and go.
    class WatchedToolkit final : public TerminalToolkit {
    public:
        explicit WatchedToolkit(TerminalSide& side) : TerminalToolkit(side), side_(side) {}
        void run_modal(forms::Form& shown, forms::Form* owner) override {
            const bool own = shown.name() == "MessageBox" || shown.name() == "Menu";
            if (!own) side_.user_->form_opened(from_utf8(shown.name()));
            TerminalToolkit::run_modal(shown, owner);
            if (!own) side_.user_->form_closed(from_utf8(shown.name()));
        }

    private:
        TerminalSide& side_;
    };

    // What the tests ask of a screen.

    void set_user(sim::ScreenUser* user) noexcept override { user_ = user; }
    bool any_dialog() const noexcept override { return toolkit_.top() != nullptr; }
    forms::Form& form() const override { return *toolkit_.top(); }
    void do_click(const std::u16string& name) override { press_on(name, forms::MouseButton::left, {1, 0}); }
    void do_press(const std::u16string& name, forms::MouseButton button, float x, float y) override {
        const Scale scale = scale_for(size());
        press_on(name, button, {static_cast<int>(x) / scale.column, static_cast<int>(y) / scale.row});
    }
    void do_type(const std::u16string& name, const std::u16string& value) override {
        do_click(name);
        keys(U"⇲" + std::u32string(form_control(name).caption().size(), U'⌫') + to_utf32(value));
        toolkit_.pump_messages();
    }
    bool do_choose(const std::u16string& name, std::size_t row, const std::u16string& item) override {
        menu_item_ = item;
        const auto& list = static_cast<const forms::ListView&>(form_control(name));
        do_press(name, forms::MouseButton::right, 100, static_cast<float>(list.row_top(row)));
        return !std::exchange(menu_item_, std::nullopt);
    }
    void close() override {
        press_at({toolkit_.top_window().picture().size().columns - 4, 0}, forms::MouseButton::left);
    }

    void press_on(const std::u16string& name, forms::MouseButton button, Point within) {
        // Where it is drawn by now.
        toolkit_.pump_messages();
        const auto placed =
            std::ranges::find(toolkit_.top_window().controls(), &form_control(name), &PlacedControl::control);
        press_at({placed->cells.left + within.column, placed->cells.top + within.row}, button);
    }
    void press_at(Point at, forms::MouseButton button) {
        FakeScreen::click({at.column + toolkit_.top_place().column, at.row + toolkit_.top_place().row}, button);
        toolkit_.pump_messages();
    }

    // What the toolkit asks of a screen.

    void beep() override { user_->beeped(); }
    std::optional<Input> read(bool wait) override {
        if (auto input = FakeScreen::read(false)) return input;
        if (!wait) {
            user_->messages_handled();
        } else if (form().name() == "Menu") {
            const std::u32string item = to_utf32(*std::exchange(menu_item_, std::nullopt));
            for (const forms::Control* choice : form().controls()) {
                if (parse_caption(choice->caption()).text == item) return KeyPress{Key::character, item.front()};
            }
            return KeyPress{Key::escape};
        } else if (form().name() == "MessageBox") {
            const bool question = form().controls().size() > 2;
            const auto answer = user_->answer({form().caption(), form().find("text")->caption(),
                                               question ? forms::MessageButtons::yes_no : forms::MessageButtons::ok});
            if (!question) return KeyPress{Key::enter};
            return KeyPress{Key::character, answer == forms::MessageAnswer::yes ? U'y' : U'n'};
        } else if (!user_->act()) {
            close();
            if (any_dialog()) form().hide();
        }
        return std::nullopt;
    }

    sim::ScreenUser* user_ = nullptr;
    /// What to choose from the menu that pops up next.
    std::optional<std::u16string> menu_item_;
    WatchedToolkit toolkit_{*this};
};

}  // namespace

std::unique_ptr<Side> make_side() { return std::make_unique<TerminalSide>(); }

}  // namespace vex::test
