// A screen that draws what its user sees, as text.
#include "simulator/native/pictured_screen.h"

#include "platform/native/terminal/terminal_toolkit.h"
#include "simulator/native/icon_characters.h"

namespace vex::sim {
namespace {

namespace terminal = platform::native::terminal;

/// A control handles messages before and after it shows what it says: the second time there is something to see.
constexpr int kFirstWordsShown = 2;

/// Keeps what is shown on it and presses Esc, or Enter where that does not help.
class Photograph final : public terminal::Screen {
public:
    terminal::Size size() const override { return terminal::kSmallestTerminal; }
    void show(const terminal::Canvas& canvas, std::optional<terminal::Point> /*cursor*/) override {
        if (picture_.empty()) picture_ = terminal::text_picture(canvas);
    }
    std::optional<terminal::Input> read(bool wait) override {
        if (!wait) return std::nullopt;
        escaped_ = !escaped_;
        return terminal::KeyPress{escaped_ ? terminal::Key::escape : terminal::Key::enter};
    }
    void beep() override {}

    /// Without the empty lines around it.
    std::string picture() const {
        std::string kept;
        std::string blank;
        std::size_t start = 0;
        while (start < picture_.size()) {
            const std::size_t end = picture_.find('\n', start) + 1;
            const std::string line = picture_.substr(start, end - start);
            if (line.find_first_not_of(" \n") == std::string::npos) {
                blank += line;
            } else {
                if (!kept.empty()) kept += blank;
                blank.clear();
                kept += line;
            }
            start = end;
        }
        return kept;
    }

private:
    std::string picture_;
    bool escaped_ = false;
};

/// What a toolkit's own dialog looks like.
template <class Show>
std::string photograph(const terminal::IconCharacters& icons, Show show) {
    Photograph screen;
    terminal::TerminalToolkit toolkit(screen, icons, [](auto&, auto&) { return std::nullopt; });
    show(toolkit);
    return screen.picture();
}

}  // namespace

PicturedScreen::PicturedScreen(NativeScreen& screen, std::ostream& out)
    : screen_(screen), out_(out), icons_(icon_characters()) {}

void PicturedScreen::set_user(ScreenUser* user) noexcept {
    user_ = user;
    screen_.set_user(user == nullptr ? nullptr : this);
}

void PicturedScreen::dialog_opened(const std::string& name) noexcept {
    pumped_ = 0;
    user_->dialog_opened(name);
}

bool PicturedScreen::act() noexcept {
    draw_dialog();
    return user_->act();
}

void PicturedScreen::messages_handled() noexcept {
    if (++pumped_ == kFirstWordsShown) draw_dialog();
    user_->messages_handled();
}

forms::MessageAnswer PicturedScreen::answer(const forms::MessageBox& box) noexcept {
    print(photograph(icons_, [&box](terminal::TerminalToolkit& toolkit) { toolkit.message_box(box); }));
    return user_->answer(box);
}

std::optional<std::u16string> PicturedScreen::choose_file(const forms::OpenFileRequest& request) noexcept {
    print(photograph(icons_, [&request](terminal::TerminalToolkit& toolkit) { toolkit.open_file(request); }));
    return user_->choose_file(request);
}

void PicturedScreen::draw_dialog() {
    forms::Form* const form = screen_.top();
    if (form != nullptr) print(terminal::picture_of(*form, icons_));
}

void PicturedScreen::print(const std::string& picture) {
    if (picture == last_) return;
    last_ = picture;
    out_ << picture << '\n';
}

}  // namespace vex::sim
