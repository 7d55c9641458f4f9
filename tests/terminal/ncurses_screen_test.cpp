// The ncurses screen on a pseudo terminal, in a process of its own that may die of a signal.
#include "platform/native/terminal/ncurses_screen.h"

#include <array>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <functional>
#include <stdexcept>
#include <string>

#include <gmock/gmock.h>

#include <poll.h>
#include <pty.h>
#include <sys/ioctl.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

#include "platform/native/terminal/terminal_description.h"
#include "platform/native/terminal/text.h"

namespace vex::platform::native::terminal {
namespace {

using testing::HasSubstr;
using testing::Not;

constexpr std::chrono::seconds kPatience{10};

std::string describe(const Input& input) {
    if (const auto* key = std::get_if<KeyPress>(&input)) {
        const std::string alt = key->alt ? "alt " : "";
        if (key->key == Key::character) return alt + to_utf8(std::u32string(1, key->character));
        return "key " + std::to_string(static_cast<int>(key->key));
    }
    if (const auto* mouse = std::get_if<MouseEvent>(&input)) {
        return "mouse " + std::to_string(static_cast<int>(mouse->action)) + " " +
               std::to_string(static_cast<int>(mouse->button)) + " " + std::to_string(mouse->at.column) + "," +
               std::to_string(mouse->at.row);
    }
    if (const auto* ended = std::get_if<Ended>(&input)) return "ended " + std::to_string(ended->signal);
    return "resized";
}

std::string key_name(Key key) { return "key " + std::to_string(static_cast<int>(key)); }

/// A process whose terminal the test holds the other end of.
class TerminalProcess {
public:
    /// `body` runs there; what it writes to the descriptor is what `heard` answers.
    explicit TerminalProcess(const std::function<void(int report)>& body, const char* terminal = "xterm-256color",
                             bool colors = true) {
        std::array<int, 2> channel{};
        if (pipe(channel.data()) != 0) throw std::runtime_error("pipe");
        winsize size{24, 80, 0, 0};
        process_ = forkpty(&terminal_, nullptr, nullptr, &size);
        if (process_ == 0) {
            close(channel[0]);
            setenv("TERM", terminal, 1);
            colors ? unsetenv("NO_COLOR") : setenv("NO_COLOR", "1", 1);
            body(channel[1]);
            _exit(0);
        }
        close(channel[1]);
        report_ = channel[0];
        tcgetattr(terminal_, &modes_);
    }
    TerminalProcess(const TerminalProcess&) = delete;
    TerminalProcess& operator=(const TerminalProcess&) = delete;
    ~TerminalProcess() {
        hang_up();
        close(report_);
        if (status_ < 0) {
            kill(process_, SIGKILL);
            waitpid(process_, &status_, 0);
        }
    }

    void send(std::string_view bytes) const { ASSERT_EQ(write(terminal_, bytes.data(), bytes.size()), std::ssize(bytes)); }
    void signal(int number) const { kill(process_, number); }
    void resize(unsigned short columns, unsigned short rows) const {
        const winsize size{rows, columns, 0, 0};
        ioctl(terminal_, TIOCSWINSZ, &size);
    }
    void hang_up() {
        if (terminal_ >= 0) close(terminal_);
        terminal_ = -1;
    }

    /// The next line that the process reports.
    std::string hear() {
        const auto deadline = std::chrono::steady_clock::now() + kPatience;
        while (heard_.find('\n') == std::string::npos) {
            if (!listen(deadline)) return "(nothing)";
        }
        const std::string line = heard_.substr(0, heard_.find('\n'));
        heard_.erase(0, line.size() + 1);
        return line;
    }
    /// Waits for the end and answers its status as `waitpid` tells it.
    int wait() {
        const auto deadline = std::chrono::steady_clock::now() + kPatience;
        while (waitpid(process_, &status_, WNOHANG) == 0) {
            listen(std::min(deadline, std::chrono::steady_clock::now() + std::chrono::milliseconds(20)));
            if (std::chrono::steady_clock::now() > deadline) return -1;
        }
        while (listen(std::chrono::steady_clock::now())) {
        }
        return status_;
    }
    /// Everything that came to the screen.
    const std::string& screen() const { return screen_; }
    bool modes_are_as_before() const {
        termios now{};
        return tcgetattr(terminal_, &now) == 0 && now.c_iflag == modes_.c_iflag && now.c_oflag == modes_.c_oflag &&
               now.c_lflag == modes_.c_lflag;
    }

private:
    bool listen(std::chrono::steady_clock::time_point deadline) {
        std::array<pollfd, 2> sources{{{report_, POLLIN, 0}, {terminal_, POLLIN, 0}}};
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(deadline - std::chrono::steady_clock::now());
        if (poll(sources.data(), sources.size(), static_cast<int>(std::max<std::int64_t>(0, left.count()))) <= 0) return false;
        std::array<char, 4096> bytes{};
        ssize_t total = 0;
        for (std::size_t i = 0; i < sources.size(); ++i) {
            if ((sources[i].revents & POLLIN) == 0) continue;
            const ssize_t count = read(sources[i].fd, bytes.data(), bytes.size());
            if (count <= 0) continue;
            (i == 0 ? heard_ : screen_).append(bytes.data(), static_cast<std::size_t>(count));
            total += count;
        }
        return total > 0;
    }

    pid_t process_ = -1;
    int terminal_ = -1;
    int report_ = -1;
    int status_ = -1;
    termios modes_{};
    std::string heard_;
    std::string screen_;
};

void tell(int report, const std::string& line) {
    [[maybe_unused]] const auto written = write(report, (line + "\n").data(), line.size() + 1);
}

Canvas greeting(Size size) {
    Canvas canvas(size, {forms::kWhite, forms::kDarkGrey});
    canvas.text({2, 1}, U"日本 Café", {.fore = forms::kGreen});
    return canvas;
}

/// Shows a picture and reports what the user does, until the end.
void report_input(int report) {
    NcursesScreen screen;
    screen.show(greeting(screen.size()), Point{2, 1});
    tell(report, "ready");
    while (true) {
        const auto input = screen.read(true);
        std::string line = describe(*input);
        if (line == "resized") {
            line += " " + std::to_string(screen.size().columns) + "x" + std::to_string(screen.size().rows);
            screen.show(greeting(screen.size()), std::nullopt);
        }
        tell(report, line);
        if (std::holds_alternative<Ended>(*input)) return;
    }
}

TEST(NcursesScreen, TellsKeysAndMouseApart) {
    TerminalProcess process(report_input);
    ASSERT_EQ(process.hear(), "ready");
    const auto answer = [&process](std::string_view bytes) {
        process.send(bytes);
        return process.hear();
    };
    EXPECT_EQ(answer("x"), "x");
    EXPECT_EQ(answer("é"), "é");
    EXPECT_EQ(answer("日"), "日");
    EXPECT_EQ(answer("\r"), key_name(Key::enter));
    EXPECT_EQ(answer("\t"), key_name(Key::tab));
    EXPECT_EQ(answer("\033[Z"), key_name(Key::back_tab));
    EXPECT_EQ(answer("\033OA"), key_name(Key::up));
    EXPECT_EQ(answer("\033[6~"), key_name(Key::page_down));
    EXPECT_EQ(answer("\033[21~"), key_name(Key::menu));
    EXPECT_EQ(answer("\177"), key_name(Key::backspace));
    EXPECT_EQ(answer("\033y"), "alt y");
    EXPECT_EQ(answer("\033"), key_name(Key::escape));
    // Presses of three buttons, a release, the wheel; columns beyond the old limit of 223.
    EXPECT_EQ(answer("\033[<0;5;3M"), "mouse 0 1 4,2");
    EXPECT_EQ(answer("\033[<0;5;3m"), "mouse 1 1 4,2");
    EXPECT_EQ(answer("\033[<2;300;3M"), "mouse 0 2 299,2");
    EXPECT_EQ(answer("\033[<2;300;3m"), "mouse 1 2 299,2");
    EXPECT_EQ(answer("\033[<65;5;3M"), "mouse 3 1 4,2");
}

TEST(NcursesScreen, FollowsTheSize) {
    TerminalProcess process(report_input);
    ASSERT_EQ(process.hear(), "ready");
    process.resize(100, 30);
    EXPECT_EQ(process.hear(), "resized 100x30");
    process.resize(40, 10);
    EXPECT_EQ(process.hear(), "resized 40x10");
}

TEST(NcursesScreen, GivesTheTerminalBack) {
    TerminalProcess process([](int report) {
        {
            const NcursesScreen screen;
        }
        tell(report, "closed");
        try {
            NcursesScreen screen;
            throw std::runtime_error("in the middle");
        } catch (const std::runtime_error&) {
            tell(report, "caught");
        }
    });
    EXPECT_EQ(process.hear(), "closed");
    EXPECT_EQ(process.hear(), "caught");
    EXPECT_EQ(process.wait(), 0);
    EXPECT_TRUE(process.modes_are_as_before());
    EXPECT_THAT(process.screen(), HasSubstr("\033[?1049l"));
    EXPECT_THAT(process.screen(), HasSubstr("\033[?1006;1000l"));
}

class KilledScreen : public testing::TestWithParam<int> {};

TEST_P(KilledScreen, LeavesTheTerminalAsItWas) {
    TerminalProcess process([](int report) {
        NcursesScreen screen;
        screen.show(greeting(screen.size()), Point{2, 1});
        tell(report, "ready");
        // Busy: it reads nothing.
        while (true) pause();
    });
    ASSERT_EQ(process.hear(), "ready");
    EXPECT_FALSE(process.modes_are_as_before());
    process.signal(GetParam());
    // What only asks to end is held up by the work; who asks twice does not want to wait.
    usleep(50'000);
    process.signal(GetParam());
    const int status = process.wait();
    ASSERT_TRUE(WIFSIGNALED(status)) << status;
    EXPECT_EQ(WTERMSIG(status), GetParam());
    EXPECT_TRUE(process.modes_are_as_before());
    EXPECT_THAT(process.screen(), HasSubstr("\033[?1049l"));
    EXPECT_THAT(process.screen(), HasSubstr("\033[?1006l"));
}

INSTANTIATE_TEST_SUITE_P(Signals, KilledScreen, testing::Values(SIGTERM, SIGINT, SIGHUP, SIGSEGV, SIGABRT));

TEST(NcursesScreen, TellsOfARequestToEndOrALostTerminal) {
    for (const int signal : {SIGTERM, SIGINT, SIGHUP}) {
        TerminalProcess process(report_input);
        ASSERT_EQ(process.hear(), "ready");
        process.signal(signal);
        EXPECT_EQ(process.hear(), "ended " + std::to_string(signal));
        EXPECT_EQ(process.wait(), 0);
        EXPECT_TRUE(process.modes_are_as_before());
    }
    TerminalProcess process(report_input);
    ASSERT_EQ(process.hear(), "ready");
    process.hang_up();
    EXPECT_THAT(process.hear(), testing::StartsWith("ended "));
}

TEST(NcursesScreen, UsesColoursOnlyWhereTheyAreWelcome) {
    const auto screen_of = [](const char* terminal, bool colors) {
        TerminalProcess process(report_input, terminal, colors);
        EXPECT_EQ(process.hear(), "ready");
        process.signal(SIGTERM);
        EXPECT_EQ(process.wait(), 0);
        return process.screen();
    };
    const std::string colored = screen_of("xterm-256color", true);
    EXPECT_THAT(colored, HasSubstr("48;5;"));
    EXPECT_THAT(colored, HasSubstr("日本 Café"));
    const std::string plain = screen_of("xterm-256color", false);
    EXPECT_THAT(plain, Not(HasSubstr("48;5;")));
    EXPECT_THAT(plain, HasSubstr("日本 Café"));
    EXPECT_THAT(screen_of("vt100", true), HasSubstr("日本 Café"));
}

TEST(TerminalDescription, KnowsWhatCanBeDrawnOn) {
    const auto usable_on = [](const char* terminal) {
        TerminalProcess process([](int report) { tell(report, terminal_is_usable() ? "yes" : "no"); }, terminal);
        return process.hear();
    };
    EXPECT_EQ(usable_on("xterm-256color"), "yes");
    EXPECT_EQ(usable_on("vt100"), "yes");
    EXPECT_EQ(usable_on("dumb"), "no");
    EXPECT_EQ(usable_on("no-such-terminal"), "no");
}

}  // namespace
}  // namespace vex::platform::native::terminal
