// Draws what the user of a screen looks at, as text.
#include "simulator/native/pictured_screen.h"

#include "platform/native/terminal/terminal_toolkit.h"
#include "simulator/native/icon_characters.h"

namespace vex::sim {
namespace {

namespace terminal = platform::native::terminal;

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

Pictures::Pictures(std::ostream& out) : out_(out), icons_(icon_characters()) {}

void Pictures::sees(forms::Form& form) { print(terminal::picture_of(form, icons_)); }

void Pictures::sees(const forms::MessageBox& box) {
    print(photograph(icons_, [&box](terminal::TerminalToolkit& toolkit) { toolkit.message_box(box); }));
}

void Pictures::sees(const forms::OpenFileRequest& request) {
    print(photograph(icons_, [&request](terminal::TerminalToolkit& toolkit) { toolkit.open_file(request); }));
}

void Pictures::print(const std::string& picture) {
    if (picture == last_) return;
    last_ = picture;
    out_ << picture << '\n';
}

}  // namespace vex::sim
