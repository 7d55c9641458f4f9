// Signals while the terminal is in use.
#include "platform/native/terminal/signal_watch.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <utility>

#include <fcntl.h>
#include <termios.h>
#include <unistd.h>

#include "core/runtime_error.h"

namespace vex::platform::native::terminal {
namespace {

constexpr std::array kEndings = {SIGINT, SIGTERM, SIGHUP, SIGQUIT};
/// What else ends a process: its own faults, and what others send it.
constexpr std::array kDeaths = {SIGSEGV, SIGBUS,  SIGFPE,  SIGILL,  SIGABRT,   SIGSYS,  SIGTRAP,
                                SIGPIPE, SIGUSR1, SIGUSR2, SIGALRM, SIGVTALRM, SIGXCPU, SIGXFSZ};

// A signal handler reaches nothing but static data; it is set up before the handlers and left alone after.
struct {
    int pipe[2] = {-1, -1};
    bool modes_known = false;
    termios modes{};
    std::array<char, 256> farewell{};
    volatile std::sig_atomic_t farewell_length = 0;
    volatile std::sig_atomic_t asked_to_end = 0;
} state;

void restore_terminal() noexcept {
    if (state.farewell_length > 0) {
        [[maybe_unused]] const auto written =
            write(STDOUT_FILENO, state.farewell.data(), static_cast<std::size_t>(state.farewell_length));
    }
    if (state.modes_known) tcsetattr(STDIN_FILENO, TCSANOW, &state.modes);
}

void die_of(int signal) {
    restore_terminal();
    struct sigaction standard {};
    standard.sa_handler = SIG_DFL;
    sigaction(signal, &standard, nullptr);
    raise(signal);
}

void tell(char event) noexcept {
    const int error = errno;
    [[maybe_unused]] const auto written = write(state.pipe[1], &event, 1);
    errno = error;
}

void on_end(int signal) {
    if (state.asked_to_end != 0) return die_of(signal);
    state.asked_to_end = signal;
    tell('e');
}

void on_resize(int) { tell('r'); }

}  // namespace

SignalWatch::SignalWatch() {
    if (pipe2(state.pipe, O_CLOEXEC | O_NONBLOCK) != 0) {
        throw RuntimeError(kOutOfMemory, u"The terminal's signals cannot be watched");
    }
    state.modes_known = tcgetattr(STDIN_FILENO, &state.modes) == 0;
    state.asked_to_end = 0;
    for (const int signal : kEndings) handle(signal, on_end);
    for (const int signal : kDeaths) handle(signal, die_of);
    handle(SIGWINCH, on_resize);
}

SignalWatch::~SignalWatch() {
    for (const auto& [signal, action] : former_) sigaction(signal, &action, nullptr);
    state.farewell_length = 0;
    close(std::exchange(state.pipe[0], -1));
    close(std::exchange(state.pipe[1], -1));
}

void SignalWatch::handle(int signal, void (*handler)(int)) {
    struct sigaction action {};
    action.sa_handler = handler;
    sigemptyset(&action.sa_mask);
    struct sigaction former {};
    sigaction(signal, nullptr, &former);
    // A signal that whoever started the process wants ignored stays ignored.
    if (former.sa_handler == SIG_IGN) return;
    sigaction(signal, &action, nullptr);
    former_.emplace_back(signal, former);
}

void SignalWatch::set_farewell(const std::string& bytes) noexcept {
    const std::size_t length = std::min(bytes.size(), state.farewell.size());
    std::memcpy(state.farewell.data(), bytes.data(), length);
    state.farewell_length = static_cast<std::sig_atomic_t>(length);
}

int SignalWatch::descriptor() const noexcept { return state.pipe[0]; }

int SignalWatch::ending_signal() const noexcept { return state.asked_to_end; }

SignalWatch::Event SignalWatch::next() noexcept {
    char event = 0;
    if (read(state.pipe[0], &event, 1) != 1) return Event::none;
    return event == 'e' ? Event::ended : Event::resized;
}

}  // namespace vex::platform::native::terminal
