// A process on a pseudo terminal, for tests of what happens to a real one.
#pragma once

#include <algorithm>
#include <array>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <functional>
#include <stdexcept>
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
    /// `body` runs there; what it writes to the descriptor is what `heard` answers.
    explicit TerminalProcess(const std::function<void(int report)>& body, const char* terminal = "xterm-256color",
                             bool colors = true) {
        std::array<int, 2> channel{};
        if (pipe(channel.data()) != 0) throw std::runtime_error("pipe");
        winsize size{24, 80, 0, 0};
        int own_end = -1;
        if (openpty(&terminal_, &own_end, nullptr, nullptr, &size) != 0) throw std::runtime_error("openpty");
        // Before the process can change them.
        tcgetattr(terminal_, &modes_);
        process_ = fork();
        if (process_ == 0) {
            close(terminal_);
            close(channel[0]);
            login_tty(own_end);
            setenv("TERM", terminal, 1);
            colors ? unsetenv("NO_COLOR") : setenv("NO_COLOR", "1", 1);
            body(channel[1]);
            _exit(0);
        }
        close(own_end);
        close(channel[1]);
        report_ = channel[0];
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
        const auto deadline = std::chrono::steady_clock::now() + kPatience;
        while (heard_.find('\n') == std::string::npos) {
            if (!listen(deadline)) return "(nothing)";
        }
        const std::string line = heard_.substr(0, heard_.find('\n'));
        heard_.erase(0, line.size() + 1);
        return line;
    }
    /// Waits until the screen has been sent `text` after what earlier waits found.
    bool sees(std::string_view text) {
        const auto deadline = std::chrono::steady_clock::now() + kPatience;
        std::size_t found = std::string::npos;
        while ((found = screen_.find(text, seen_)) == std::string::npos) {
            if (!listen(deadline)) return false;
        }
        seen_ = found + text.size();
        return true;
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
        const auto left =
            std::chrono::duration_cast<std::chrono::milliseconds>(deadline - std::chrono::steady_clock::now());
        if (poll(sources.data(), sources.size(), static_cast<int>(std::max<std::int64_t>(0, left.count()))) <= 0)
            return false;
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
    std::size_t seen_ = 0;

    static constexpr std::chrono::seconds kPatience{20};
};

}  // namespace vex::test
