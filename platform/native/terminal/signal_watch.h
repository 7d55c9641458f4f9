// Signals while the terminal is in use: a request to end and a new size are read like input, and whatever
// kills the process leaves the terminal as it was.
#pragma once

#include <csignal>
#include <string>
#include <utility>
#include <vector>

namespace vex::platform::native::terminal {

/// At most one at a time; the former handlers are back after it.
class SignalWatch {
public:
    enum class Event { none, resized, ended };

    SignalWatch();
    SignalWatch(const SignalWatch&) = delete;
    SignalWatch& operator=(const SignalWatch&) = delete;
    ~SignalWatch();

    /// Bytes that bring the terminal back, written when a signal kills the process or asks it a second time to
    /// end. The modes of the terminal are those of the construction.
    void set_farewell(const std::string& bytes) noexcept;
    /// Can be read when there is an event.
    int descriptor() const noexcept;
    Event next() noexcept;
    /// The signal of Event::ended.
    int ending_signal() const noexcept;

private:
    void handle(int signal, void (*handler)(int));

    std::vector<std::pair<int, struct sigaction>> former_;
};

}  // namespace vex::platform::native::terminal
