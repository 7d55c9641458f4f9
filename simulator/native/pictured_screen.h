// A screen that draws what its user sees, as text.
#pragma once

#include <ostream>
#include <string>

#include "platform/native/terminal/list_pane.h"
#include "simulator/native/native_screen.h"

namespace vex::sim {

/// Draws the topmost dialog whenever its user looks at it, where it looks different from what was drawn last;
/// message boxes; and dialogs at work, once each. The references must outlive it.
class PicturedScreen final : public Screen, private ScreenUser {
public:
    PicturedScreen(NativeScreen& screen, std::ostream& out);

    void set_user(ScreenUser* user) noexcept override;
    bool any_dialog() const noexcept override { return screen_.any_dialog(); }
    bool has_control(const std::u16string& control) const override { return screen_.has_control(control); }
    ActionResult click(const std::u16string& control) override { return screen_.click(control); }
    ActionResult press(const std::u16string& control, forms::MouseButton button, float x, float y) override {
        return screen_.press(control, button, x, y);
    }
    ActionResult set(const std::u16string& control, const std::u16string& value) override {
        return screen_.set(control, value);
    }
    ActionResult choose_from_menu(const std::u16string& list, std::size_t row, const std::u16string& item) override {
        return screen_.choose_from_menu(list, row, item);
    }
    void close() override { screen_.close(); }
    void activate() override { screen_.activate(); }
    std::u16string property(const std::u16string& control, const std::u16string& property) const override {
        return screen_.property(control, property);
    }
    std::vector<std::vector<std::u16string>> rows(const std::u16string& list) const override {
        return screen_.rows(list);
    }

private:
    void dialog_opened(const std::string& name) noexcept override;
    void dialog_closed(const std::string& name) noexcept override { user_->dialog_closed(name); }
    bool act() noexcept override;
    void messages_handled() noexcept override;
    forms::MessageAnswer answer(const forms::MessageBox& box) noexcept override;
    std::optional<std::u16string> choose_file(const forms::OpenFileRequest& request) noexcept override;
    void beeped() noexcept override { user_->beeped(); }

    void draw_dialog();
    void print(const std::string& picture);

    NativeScreen& screen_;
    std::ostream& out_;
    platform::native::terminal::IconCharacters icons_;
    ScreenUser* user_ = nullptr;
    std::string last_;
    /// How often the topmost dialog has handled messages at work.
    int pumped_ = 0;
};

}  // namespace vex::sim
