// The terminal as a screen, by ncurses.
#include <cerrno>
#include <chrono>
#include <clocale>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <deque>
#include <utility>

#include <fcntl.h>
#include <langinfo.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

#include "core/runtime_error.h"
#include "platform/native/terminal/screen.h"

// Their macros have everyday names: nothing else is included after them.
#define NCURSES_NOMACROS 1
#include <curses.h>
#include <term.h>
#undef back_tab
#undef columns
#undef lines
#undef tab

namespace vex::platform::native::terminal {
namespace {

using namespace std::chrono_literals;
using forms::MouseButton;
using Clock = std::chrono::steady_clock;

constexpr wint_t kEscape = 27;
/// In milliseconds, how long who only looks for input is held up by a sequence that has begun, and how long the rest of
/// a character may take behind an escape that the library has given up on: it drops the bytes that it has of a
/// character whose rest does not come in time.
constexpr int kRestDelay = 20;
/// How long a sequence may take to go on while there is work: shorter than the library's own time, so that Esc still
/// meets the dialog that it was pressed on.
constexpr auto kEscapeDelay = 400ms;
constexpr mmask_t kMouseEvents = BUTTON1_PRESSED | BUTTON1_RELEASED | BUTTON2_PRESSED | BUTTON2_RELEASED |
                                 BUTTON3_PRESSED | BUTTON3_RELEASED | BUTTON4_PRESSED | BUTTON5_PRESSED;
/// Codes of our own for marks that the library does not know.
constexpr wint_t kPasteBegins = KEY_MAX + 1;
constexpr wint_t kPasteEnds = KEY_MAX + 2;

/// What terminals send besides their descriptions, and those that call themselves by another's name.
constexpr std::pair<const char*, wint_t> kMoreKeys[] = {
    {"\033[A", KEY_UP},      {"\033[B", KEY_DOWN},  {"\033[C", KEY_RIGHT},       {"\033[D", KEY_LEFT},
    {"\033OA", KEY_UP},      {"\033OB", KEY_DOWN},  {"\033OC", KEY_RIGHT},       {"\033OD", KEY_LEFT},
    {"\033[H", KEY_HOME},    {"\033[F", KEY_END},   {"\033OH", KEY_HOME},        {"\033OF", KEY_END},
    {"\033[1~", KEY_HOME},   {"\033[4~", KEY_END},  {"\033[7~", KEY_HOME},       {"\033[8~", KEY_END},
    {"\033[29~", KEY_F(16)}, {"\033OM", KEY_ENTER}, {"\033[200~", kPasteBegins}, {"\033[201~", kPasteEnds},
};

/// F16 is the menu key of xterm, F22 is F10 with Shift.
constexpr std::pair<wint_t, Key> kKeys[] = {
    {L'\r', Key::enter},         {L'\n', Key::enter},        {KEY_ENTER, Key::enter},    {8, Key::backspace},
    {127, Key::backspace},       {L'\t', Key::tab},          {KEY_BTAB, Key::back_tab},  {KEY_DC, Key::remove},
    {KEY_UP, Key::up},           {KEY_DOWN, Key::down},      {KEY_LEFT, Key::left},      {KEY_RIGHT, Key::right},
    {KEY_PPAGE, Key::page_up},   {KEY_NPAGE, Key::page_down}, {KEY_HOME, Key::home},      {KEY_END, Key::end},
    {KEY_BACKSPACE, Key::backspace}, {KEY_F(10), Key::menu}, {KEY_F(16), Key::menu},     {KEY_F(22), Key::menu},
};

/// The numbers of the sixteen colours among 256, where users do not change them.
constexpr int kOf256[] = {16, 160, 28, 136, 18, 90, 30, 252, 240, 196, 46, 226, 25, 201, 51, 231};

std::string capability(const char* name) {
    const char* bytes = tigetstr(name);
    // NOLINTNEXTLINE(performance-no-int-to-ptr): the library's own word for a name that is no text
    if (bytes == nullptr || bytes == reinterpret_cast<const char*>(-1)) return {};
    return bytes;
}

void send(const char* bytes) {
    putp(bytes);
    std::fflush(stdout);
}

// ---- Signals ------------------------------------------------------------------------------------------

constexpr std::array kRequests = {SIGINT, SIGTERM, SIGHUP, SIGQUIT, SIGWINCH};
/// What else ends a process: its own faults, and what others send it.
constexpr std::array kDeaths = {SIGSEGV, SIGBUS,  SIGFPE,  SIGILL,  SIGABRT,   SIGSYS,  SIGTRAP,
                                SIGPIPE, SIGUSR1, SIGUSR2, SIGALRM, SIGVTALRM, SIGXCPU, SIGXFSZ};

// A signal handler reaches nothing but static data; it is set up before the handlers and left alone after.
struct {
    int pipe[2] = {-1, -1};
    termios modes{};
    std::array<char, 256> farewell{};
    volatile std::sig_atomic_t farewell_length = 0;
    volatile std::sig_atomic_t asked_to_end = 0;
} state;

void die_of(int signal) {
    if (state.farewell_length > 0) {
        [[maybe_unused]] const auto written =
            write(STDOUT_FILENO, state.farewell.data(), static_cast<std::size_t>(state.farewell_length));
    }
    tcsetattr(STDIN_FILENO, TCSANOW, &state.modes);
    std::signal(signal, SIG_DFL);
    raise(signal);
}

/// A request to end, or a new size.
void tell(int signal) {
    const bool size = signal == SIGWINCH;
    if (!size && state.asked_to_end != 0) return die_of(signal);
    if (!size) state.asked_to_end = signal;
    const int error = errno;
    [[maybe_unused]] const auto written = write(state.pipe[1], size ? "r" : "e", 1);
    errno = error;
}

/// Signals while the terminal is in use: a request to end and a new size are read like input, and whatever kills the
/// process leaves the terminal as it was: its modes are those of the construction. At most one at a time; the former
/// handlers are back after it.
class SignalWatch {
public:
    SignalWatch() {
        if (pipe2(state.pipe, O_CLOEXEC | O_NONBLOCK) != 0) {
            throw RuntimeError(kOutOfMemory, u"The terminal's signals cannot be watched");
        }
        tcgetattr(STDIN_FILENO, &state.modes);
        state.asked_to_end = 0;
        for (const int signal : kRequests) handle(signal, tell);
        for (const int signal : kDeaths) handle(signal, die_of);
    }
    ~SignalWatch() {
        for (const auto& [signal, handler] : former_) std::signal(signal, handler);
        state.farewell_length = 0;
        close(state.pipe[0]);
        close(state.pipe[1]);
    }

private:
    void handle(int signal, void (*handler)(int)) {
        former_.emplace_back(signal, std::signal(signal, handler));
        // A signal that whoever started the process wants ignored stays ignored.
        if (former_.back().second == SIG_IGN) std::signal(signal, SIG_IGN);
    }

    std::vector<std::pair<int, void (*)(int)>> former_;
};

// ---- The screen ---------------------------------------------------------------------------------------

class NcursesScreen final : public Screen {
public:
    NcursesScreen() {
        // Where the environment says nothing, as in many containers, the terminal is most likely UTF-8.
        if (setlocale(LC_CTYPE, "") == nullptr || std::string_view(nl_langinfo(CODESET)) != "UTF-8") {
            setlocale(LC_CTYPE, "C.UTF-8");
        }
        screen_ = newterm(nullptr, stdout, stdin);
        if (screen_ == nullptr) throw RuntimeError(kCannotCreateObject, u"The terminal cannot be used");
        set_term(screen_);
        cbreak();
        noecho();
        nonl();
        intrflush(stdscr, FALSE);
        keypad(stdscr, TRUE);
        escape_delay_ = ESCDELAY;
        for (const auto& [bytes, code] : kMoreKeys) define_key(bytes, static_cast<int>(code));
        mousemask(kMouseEvents, nullptr);
        mouseinterval(0);
        const char* no_color = std::getenv("NO_COLOR");
        if ((no_color == nullptr || *no_color == '\0') && has_colors() && start_color() == OK) colors_ = COLORS;
        // A terminal with a mouse knows of pastes, too.
        if (has_mouse()) send("\033[?2004h");
        const std::string farewell = capability("rmkx") + kModesOff + "\033[?1000l\033[?1002l\033[?1003l\033[?1006l" +
                                     capability("sgr0") + capability("cnorm") + capability("rmcup");
        state.farewell_length = static_cast<int>(farewell.copy(state.farewell.data(), state.farewell.size()));
    }
    ~NcursesScreen() override {
        mousemask(0, nullptr);
        if (has_mouse()) send(kModesOff);
        endwin();
        delscreen(screen_);
    }

    Size size() const override {
        Size size;
        getmaxyx(stdscr, size.rows, size.columns);
        return size;
    }

    void show(const Canvas& canvas, std::optional<Point> cursor) override {
        const Size size = canvas.size();
        std::vector<cchar_t> cells;
        for (int row = 0; row < size.rows; ++row) {
            cells.clear();
            for (int column = 0; column < size.columns; ++column) {
                const Cell& cell = canvas.cell({column, row});
                if (!cell.tail) cells.push_back(screen_cell(cell));
            }
            mvadd_wchnstr(row, 0, cells.data(), static_cast<int>(cells.size()));
        }
        // A terminal that cannot hide its cursor shows it in the corner.
        curs_set(cursor ? 1 : 0);
        move(cursor ? cursor->row : size.rows - 1, cursor ? cursor->column : size.columns - 1);
        refresh();
    }

    std::optional<Input> read(bool wait) override {
        while (!ended_ && inputs_.empty()) {
            char event = 0;
            if (::read(state.pipe[0], &event, 1) == 1) {
                ended_ = event == 'e';
                if (ended_) break;
                follow_size();
                return Resized{};
            }
            if (!read_keyboard(wait)) return std::nullopt;
        }
        if (ended_) return Ended{state.asked_to_end};
        Input input = std::move(inputs_.front());
        inputs_.pop_front();
        return input;
    }

    void beep() override { ::beep(); }

private:
    static constexpr char kModesOff[] = "\033[?2004l";

    /// Takes what has come, and waits for it if it may. Answers false when it may not, and nothing has.
    bool read_keyboard(bool wait) {
        // What the library has read ahead behind an escape or a sequence cannot be waited for.
        pollfd sources[2] = {{STDIN_FILENO, POLLIN, 0}, {state.pipe[0], POLLIN, 0}};
        const int patience = escape_due_ ? std::max(0, static_cast<int>((*escape_due_ - Clock::now()) / 1ms)) : -1;
        poll(sources, 2, wait && !read_ahead_ ? patience : 0);
        const bool readable = sources[0].revents != 0;
        if (escape_due_ && (readable || Clock::now() >= *escape_due_)) {
            escape_due_.reset();
            read_ahead_ = readable;
            read_escaped(true);
            return true;
        }
        if (!readable && !read_ahead_) return wait || sources[1].revents != 0;
        // The rest of a character or a sequence may come late.
        set_escdelay(wait ? escape_delay_ : kRestDelay);
        wtimeout(stdscr, readable ? escape_delay_ : kRestDelay);
        wint_t code = 0;
        const int kind = get_wch(&code);
        read_ahead_ = kind == KEY_CODE_YES || (kind == OK && code == kEscape);
        if (kind == OK && code == kEscape) {
            read_escaped(wait);
        } else if (kind != ERR) {
            translate(kind, code);
        } else if ((sources[0].revents & (POLLHUP | POLLERR | POLLNVAL)) != 0) {
            ended_ = true;
        }
        return true;
    }

    void add(KeyPress key) { inputs_.emplace_back(key); }

    void translate(int kind, wint_t code) {
        if (kind == OK && code >= L' ' && code != 127) return add({Key::character, static_cast<char32_t>(code)});
        if (code == KEY_MOUSE) return read_mouse();
        if (code == kPasteBegins) return read_paste();
        for (const auto& [known, key] : kKeys) {
            if (known == code) add({key});
        }
    }

    /// The library keeps the events of one read; it gives the last one first.
    void read_mouse() {
        std::vector<MouseEvent> events;
        MEVENT event;
        while (getmouse(&event) == OK) {
            const Point at{event.x, event.y};
            using enum MouseButton;
            for (const auto& [i, button] : {std::pair(1, left), {2, middle}, {3, right}}) {
                if (BUTTON_PRESS(event.bstate, i)) events.push_back({MouseAction::press, button, at});
                if (BUTTON_RELEASE(event.bstate, i)) events.push_back({MouseAction::release, button, at});
            }
            if (BUTTON_PRESS(event.bstate, 4)) events.push_back({MouseAction::wheel_up, MouseButton::left, at});
            if (BUTTON_PRESS(event.bstate, 5)) events.push_back({MouseAction::wheel_down, MouseButton::left, at});
        }
        inputs_.insert(inputs_.end(), events.rbegin(), events.rend());
    }

    void read_paste() {
        Paste paste;
        wint_t code = 0;
        // A paste without an end ends when nothing more comes.
        set_escdelay(escape_delay_);
        wtimeout(stdscr, escape_delay_);
        for (int kind = get_wch(&code); kind != ERR && code != kPasteEnds; kind = get_wch(&code)) {
            if (kind == OK) paste.text.push_back(static_cast<char32_t>(code));
        }
        inputs_.emplace_back(std::move(paste));
    }

    /// An escape character that begins no sequence the library has known: Alt sends it before a character, and unknown
    /// sequences are passed over as a whole. `waited`: for as long as something may follow that belongs to it.
    void read_escaped(bool waited) {
        wtimeout(stdscr, kRestDelay);
        wint_t code = 0;
        int kind = get_wch(&code);
        if (kind == ERR && !waited) {
            escape_due_ = Clock::now() + kEscapeDelay;
            return;
        }
        if (kind == ERR || (kind == OK && code == kEscape)) return add({Key::escape});
        if (kind == KEY_CODE_YES) return translate(kind, code);
        const bool text = code == L']' || code == L'^' || code == L'_' || code == L'P';
        const bool letter = code == L'O' || code == L'P' || !(text || code == L'[');
        const bool sequence = text || code == L'[' || code == L'O';
        wtimeout(stdscr, letter ? 0 : escape_delay_);
        wint_t next = 0;
        kind = sequence ? get_wch(&next) : ERR;
        if (kind == ERR && letter && code >= L' ') return add({Key::character, static_cast<char32_t>(code), true});
        wtimeout(stdscr, escape_delay_);
        return text ? skip_text(kind, next) : read_sequence({'\033', static_cast<char>(code)}, kind, next);
    }

    /// To the bell or the string terminator.
    static void skip_text(int kind, wint_t next) {
        while (kind == OK && next != 7 && next != kEscape) kind = get_wch(&next);
        if (kind == OK && next == kEscape) get_wch(&next);
    }

    /// Parameters, then a letter or a sign.
    void read_sequence(std::string bytes, int kind, wint_t next) {
        for (; kind == OK && next >= L' ' && next < L'@'; kind = get_wch(&next)) bytes += static_cast<char>(next);
        if (kind == KEY_CODE_YES) return translate(kind, next);
        if (kind == OK && next == kEscape) return read_escaped(true);
        // One that the library does know, but could not wait for.
        const int known = kind == OK ? key_defined((bytes + static_cast<char>(next)).c_str()) : 0;
        if (known > 0) translate(KEY_CODE_YES, static_cast<wint_t>(known));
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
        if (colors_ == 0 && cell.style.standout) attributes |= WA_REVERSE;
        int pair = colors_ == 0 ? 0 : alloc_pair(number_of(cell.style.fore), number_of(cell.style.back));
        cchar_t result{};
        setcchar(&result, text, attributes, static_cast<short>(std::max(0, pair)), nullptr);
        return result;
    }

    int number_of(Color color) const noexcept {
        const int number = static_cast<int>(color);
        return colors_ >= 256 ? kOf256[number] : colors_ >= 16 ? number : number % 8;
    }

    // Before the screen: ncurses keeps its hands off signals that are handled already.
    SignalWatch signals_;
    SCREEN* screen_ = nullptr;
    int colors_ = 0;
    bool ended_ = false;
    bool read_ahead_ = false;
    /// In milliseconds, how long the rest of a sequence may take.
    int escape_delay_ = 0;
    /// When an escape character that came alone is the key of that name.
    std::optional<Clock::time_point> escape_due_;
    std::deque<Input> inputs_;
};

}  // namespace

bool find_terminal(std::ostream& notes) {
    if (isatty(STDIN_FILENO) == 0 || isatty(STDOUT_FILENO) == 0) return false;
    const char* name = std::getenv("TERM");
    const std::string terminal = name == nullptr ? "" : name;
    int error = 0;
    const auto described = [&error] { return setupterm(nullptr, STDOUT_FILENO, &error) == OK; };
    bool usable = described();
    if (!usable) {
        notes << "no description of the terminal \"" << terminal << "\" is installed; taking it for xterm-256color\n";
        setenv("TERM", "xterm-256color", 1);
        usable = described();
    }
    usable = usable && !capability("cup").empty();
    if (cur_term != nullptr) del_curterm(cur_term);
    if (!usable) notes << "the terminal \"" << terminal << "\" cannot be drawn on; playing the sample scenario\n";
    return usable;
}

std::unique_ptr<Screen> take_terminal() { return std::make_unique<NcursesScreen>(); }

}  // namespace vex::platform::native::terminal
