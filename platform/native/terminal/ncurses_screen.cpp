// The terminal as a screen, by ncurses.
#include "platform/native/terminal/ncurses_screen.h"

#include <cerrno>
#include <clocale>
#include <cstdlib>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include <langinfo.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include "core/runtime_error.h"
#include "platform/native/terminal/colors.h"
#include "platform/native/terminal/signal_watch.h"
#include "platform/native/terminal/terminal_description.h"

#define NCURSES_NOMACROS 1
#include <ncurses.h>

namespace vex::platform::native::terminal {
namespace {

constexpr int kEscape = 27;
/// How long an escape character may stand alone before it is the Esc key, in milliseconds.
constexpr int kEscapeDelay = 25;
constexpr mmask_t kMouseEvents = BUTTON1_PRESSED | BUTTON1_RELEASED | BUTTON2_PRESSED | BUTTON2_RELEASED |
                                 BUTTON3_PRESSED | BUTTON3_RELEASED | BUTTON4_PRESSED | BUTTON5_PRESSED;

bool is_set(const char* variable) {
    const char* value = std::getenv(variable);
    return value != nullptr && *value != '\0';
}

/// The process's character locale, in which ncurses writes; UTF-8 for the lifetime.
class Utf8Locale {
public:
    Utf8Locale() : before_(setlocale(LC_CTYPE, nullptr)) {
        // Where the environment says nothing, as in many containers, the terminal is most likely UTF-8.
        if (setlocale(LC_CTYPE, "") == nullptr || std::string_view(nl_langinfo(CODESET)) != "UTF-8") {
            setlocale(LC_CTYPE, "C.UTF-8");
        }
    }
    Utf8Locale(const Utf8Locale&) = delete;
    Utf8Locale& operator=(const Utf8Locale&) = delete;
    ~Utf8Locale() { setlocale(LC_CTYPE, before_.c_str()); }

private:
    std::string before_;
};

std::optional<KeyPress> function_key(wint_t code) {
    switch (code) {
        case KEY_UP:
            return KeyPress{Key::up};
        case KEY_DOWN:
            return KeyPress{Key::down};
        case KEY_LEFT:
            return KeyPress{Key::left};
        case KEY_RIGHT:
            return KeyPress{Key::right};
        case KEY_PPAGE:
            return KeyPress{Key::page_up};
        case KEY_NPAGE:
            return KeyPress{Key::page_down};
        case KEY_HOME:
            return KeyPress{Key::home};
        case KEY_END:
            return KeyPress{Key::end};
        case KEY_BACKSPACE:
            return KeyPress{Key::backspace};
        case KEY_DC:
            return KeyPress{Key::remove};
        case KEY_BTAB:
            return KeyPress{Key::back_tab};
        case KEY_ENTER:
            return KeyPress{Key::enter};
        case KEY_F(10):
        case KEY_F(16):  // the menu key of xterm
        case KEY_F(22):  // F10 with Shift
            return KeyPress{Key::menu};
        default:
            return std::nullopt;
    }
}

std::optional<KeyPress> character_key(wint_t code) {
    switch (code) {
        case L'\r':
        case L'\n':
            return KeyPress{Key::enter};
        case L'\t':
            return KeyPress{Key::tab};
        case 8:
        case 127:
            return KeyPress{Key::backspace};
        default:
            break;
    }
    if (code < L' ') return std::nullopt;
    return KeyPress{Key::character, static_cast<char32_t>(code)};
}

std::optional<MouseEvent> mouse_event() {
    MEVENT event;
    if (getmouse(&event) != OK) return std::nullopt;
    const Point at{event.x, event.y};
    using forms::MouseButton;
    if (event.bstate & BUTTON4_PRESSED) return MouseEvent{MouseAction::wheel_up, MouseButton::left, at};
    if (event.bstate & BUTTON5_PRESSED) return MouseEvent{MouseAction::wheel_down, MouseButton::left, at};
    if (event.bstate & BUTTON1_PRESSED) return MouseEvent{MouseAction::press, MouseButton::left, at};
    if (event.bstate & BUTTON2_PRESSED) return MouseEvent{MouseAction::press, MouseButton::middle, at};
    if (event.bstate & BUTTON3_PRESSED) return MouseEvent{MouseAction::press, MouseButton::right, at};
    if (event.bstate & BUTTON1_RELEASED) return MouseEvent{MouseAction::release, MouseButton::left, at};
    if (event.bstate & BUTTON2_RELEASED) return MouseEvent{MouseAction::release, MouseButton::middle, at};
    if (event.bstate & BUTTON3_RELEASED) return MouseEvent{MouseAction::release, MouseButton::right, at};
    return std::nullopt;
}

}  // namespace

/// ncurses from its start to its end.
class NcursesScreen::Terminal {
public:
    Terminal() : screen_(newterm(nullptr, stdout, stdin)) {
        if (screen_ == nullptr) throw RuntimeError(kCannotCreateObject, u"The terminal cannot be used");
        set_term(screen_);
        cbreak();
        noecho();
        nonl();
        intrflush(stdscr, FALSE);
        keypad(stdscr, TRUE);
        nodelay(stdscr, TRUE);
        set_escdelay(kEscapeDelay);
        mousemask(kMouseEvents, nullptr);
        mouseinterval(0);
        if (!is_set("NO_COLOR") && has_colors() && start_color() == OK) colors_ = COLORS;
        signals_.set_farewell(terminal_capability("rmkx") + "\033[?1000l\033[?1002l\033[?1003l\033[?1006l" +
                              terminal_capability("sgr0") + terminal_capability("cnorm") +
                              terminal_capability("rmcup"));
    }
    Terminal(const Terminal&) = delete;
    Terminal& operator=(const Terminal&) = delete;
    ~Terminal() {
        mousemask(0, nullptr);
        endwin();
        delscreen(screen_);
    }

    void show(const Canvas& canvas, std::optional<Point> cursor) {
        const Size size = canvas.size();
        for (int row = 0; row < size.rows; ++row) {
            line_.clear();
            for (int column = 0; column < size.columns; ++column) {
                const Cell& cell = canvas.cell({column, row});
                if (!cell.tail) line_.push_back(screen_cell(cell));
            }
            mvadd_wchnstr(row, 0, line_.data(), static_cast<int>(line_.size()));
        }
        // A terminal that cannot hide its cursor shows it in the corner.
        curs_set(cursor ? 1 : 0);
        move(cursor ? cursor->row : size.rows - 1, cursor ? cursor->column : size.columns - 1);
        refresh();
    }

    std::optional<Input> read(bool wait) {
        bool hung_up = false;
        while (!ended_) {
            switch (signals_.next()) {
                case SignalWatch::Event::resized:
                    follow_size();
                    return Resized{};
                case SignalWatch::Event::ended:
                    ended_ = true;
                    continue;
                case SignalWatch::Event::none:
                    break;
            }
            wint_t code = 0;
            const int kind = get_wch(&code);
            if (kind != ERR) {
                if (const auto input = translate(kind, code)) return input;
                continue;
            }
            if (hung_up) ended_ = true;
            if (ended_) break;
            pollfd sources[2] = {{STDIN_FILENO, POLLIN, 0}, {signals_.descriptor(), POLLIN, 0}};
            if (poll(sources, 2, wait ? -1 : 0) == 0) return std::nullopt;
            hung_up = (sources[0].revents & (POLLHUP | POLLERR | POLLNVAL)) != 0;
            if (!wait && sources[0].revents == 0 && sources[1].revents == 0) return std::nullopt;
        }
        return Ended{signals_.ending_signal()};
    }

private:
    std::optional<Input> translate(int kind, wint_t code) {
        if (kind == KEY_CODE_YES) {
            if (code == KEY_RESIZE) return Resized{};
            if (code == KEY_MOUSE) {
                const auto event = mouse_event();
                return event ? std::optional<Input>(*event) : std::nullopt;
            }
            const auto key = function_key(code);
            return key ? std::optional<Input>(*key) : std::nullopt;
        }
        if (code == kEscape) {
            // Alt sends an escape character first.
            wint_t next = 0;
            const int next_kind = get_wch(&next);
            if (next_kind == OK && next >= L' ') return KeyPress{Key::character, static_cast<char32_t>(next), true};
            return KeyPress{Key::escape};
        }
        const auto key = character_key(code);
        return key ? std::optional<Input>(*key) : std::nullopt;
    }

    static void follow_size() {
        winsize size{};
        if (ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) != 0 || size.ws_row == 0 || size.ws_col == 0) return;
        resize_term(size.ws_row, size.ws_col);
        // What the terminal made of the old picture is not known.
        clearok(stdscr, TRUE);
    }

    cchar_t screen_cell(const Cell& cell) {
        const wchar_t text[] = {static_cast<wchar_t>(cell.character), static_cast<wchar_t>(cell.marks[0]),
                                static_cast<wchar_t>(cell.marks[1]), L'\0'};
        attr_t attributes = WA_NORMAL;
        if (cell.style.bold) attributes |= WA_BOLD;
        if (cell.style.underline) attributes |= WA_UNDERLINE;
        int pair = 0;
        if (colors_ > 0) {
            pair = color_pair(cell.style);
        } else if (cell.style.standout) {
            attributes |= WA_REVERSE;
        }
        cchar_t result{};
        setcchar(&result, text, attributes, static_cast<short>(pair), &pair);
        return result;
    }

    int color_pair(const Style& style) {
        const auto key = static_cast<std::uint64_t>(style.fore) << 32 | style.back;
        const auto known = pairs_.find(key);
        if (known != pairs_.end()) return known->second;
        const int back = nearest_palette_color(style.back, colors_);
        const int fore = style.fore == style.back ? back : palette_text_color(style.fore, back, colors_);
        const int pair = alloc_pair(fore, back);
        return pairs_.emplace(key, pair < 0 ? 0 : pair).first->second;
    }

    Utf8Locale locale_;
    // Before the screen: ncurses keeps its hands off signals that are handled already.
    SignalWatch signals_;
    SCREEN* screen_;
    int colors_ = 0;
    bool ended_ = false;
    std::unordered_map<std::uint64_t, int> pairs_;
    std::vector<cchar_t> line_;
};

NcursesScreen::NcursesScreen() : terminal_(std::make_unique<Terminal>()) {}

NcursesScreen::~NcursesScreen() = default;

Size NcursesScreen::size() const {
    Size size;
    getmaxyx(stdscr, size.rows, size.columns);
    return size;
}

void NcursesScreen::show(const Canvas& canvas, std::optional<Point> cursor) { terminal_->show(canvas, cursor); }

std::optional<Input> NcursesScreen::read(bool wait) { return terminal_->read(wait); }

void NcursesScreen::beep() { ::beep(); }

}  // namespace vex::platform::native::terminal
