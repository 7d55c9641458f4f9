// A process on a pseudo terminal, for tests of what happens to a real one.
#pragma once

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <functional>
#include <string>
#include <string_view>

#include <gtest/gtest.h>

#include <poll.h>
#include <pty.h>
#include <sys/ioctl.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>
#include <utmp.h>

namespace vex::test {

/// A process whose terminal the test holds the other end of.
class TerminalProcess {
public:
    /// `body` runs there; what it writes to the descriptor is what `hear` answers.
    explicit TerminalProcess(const std::function<void(int report)>& body, const char* terminal = "xterm-256color") {
        int channel[2];
        int own_end = -1;
        const winsize size{24, 80, 0, 0};
        EXPECT_EQ(pipe(channel), 0);
        EXPECT_EQ(openpty(&terminal_, &own_end, nullptr, nullptr, &size), 0) << "there is no pseudo terminal";
        // Before the process can change them.
        tcgetattr(terminal_, &modes_);
        process_ = fork();
        if (process_ == 0) {
            close(terminal_);
            close(channel[0]);
            login_tty(own_end);
            setenv("TERM", terminal, 1);
            body(channel[1]);
            _exit(0);
        }
        close(own_end);
        close(channel[1]);
        report_ = channel[0];
    }
    TerminalProcess(const TerminalProcess&) = delete;
    ~TerminalProcess() {
        hang_up();
        close(report_);
        if (status_ < 0) {
            kill(process_, SIGKILL);
            waitpid(process_, &status_, 0);
        }
    }

    void send(std::string_view bytes) const {
        ASSERT_EQ(write(terminal_, bytes.data(), bytes.size()), std::ssize(bytes));
    }
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
        if (!listen_until([this] { return heard_.find('\n') != heard_.npos; })) return "(nothing)";
        const std::string line = heard_.substr(0, heard_.find('\n'));
        heard_.erase(0, line.size() + 1);
        return line;
    }
    /// Waits until the screen has been sent `text` after what earlier waits found.
    bool sees(std::string_view text) {
        if (!listen_until([&] { return screen_.find(text, seen_) != screen_.npos; })) return false;
        seen_ = screen_.find(text, seen_) + text.size();
        return true;
    }
    /// Waits for the end and answers its status as `waitpid` tells it.
    int wait() {
        listen_until([this] { return status_ >= 0 || waitpid(process_, &status_, WNOHANG) != 0; });
        while (listen()) {
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
    template <class Condition>
    bool listen_until(Condition met) {
        const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(20);
        while (!met() && std::chrono::steady_clock::now() < deadline) listen();
        return met();
    }
    /// Whether anything came.
    bool listen() {
        pollfd sources[] = {{report_, POLLIN, 0}, {terminal_, POLLIN, 0}};
        poll(sources, 2, 20);
        std::size_t count = 0;
        for (const pollfd& source : sources) {
            char bytes[4096];
            const ssize_t read_now = (source.revents & POLLIN) != 0 ? read(source.fd, bytes, sizeof bytes) : 0;
            if (read_now > 0) (source.fd == report_ ? heard_ : screen_).append(bytes, count = std::size_t(read_now));
        }
        return count > 0;
    }

    pid_t process_ = -1;
    int terminal_ = -1, report_ = -1, status_ = -1;
    termios modes_{};
    std::string heard_, screen_;
    std::size_t seen_ = 0;
};

}  // namespace vex::test
