// Kills writers at random points and looks for every write that was answered.
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <random>
#include <thread>

#include "tests/registry/store_process.h"

namespace vex::platform::native {
namespace {

constexpr int kNames = 20;

/// What the `count`th write of a writer writes to: each name in turn, with texts of very different sizes, so
/// that lines are cut short and the file is tidied up while writers die.
std::string name_of(std::uint32_t count) { return "value " + std::to_string(count % kNames); }
std::string text_of(std::uint32_t count) {
    return std::to_string(count) + std::string(count % 97 == 0 ? 60'000 : count % 250, '.');
}

/// A process that writes from a count on, and tells each one that was answered.
class Writer {
public:
    Writer(const test::TemporaryFolder& folder, const std::string& key, std::uint32_t first) {
        int ends[2];
        if (::pipe(ends) != 0) throw std::runtime_error("no pipe");
        child_ = ::fork();
        if (child_ == 0) {
            ::close(ends[0]);
            write_on(folder, key, first, ends[1]);
        }
        ::close(ends[1]);
        answers_ = ends[0];
    }
    Writer(const Writer&) = delete;
    Writer& operator=(const Writer&) = delete;
    ~Writer() {
        ::close(answers_);
        ::waitpid(child_, nullptr, 0);
    }

    /// Waits until this many writes have been answered, and a moment longer.
    void let_write(std::uint_fast32_t writes, std::chrono::microseconds moment) {
        while (writes-- > 0) receive();
        std::this_thread::sleep_for(moment);
    }

    /// The last count that was answered; the writer is dead then.
    std::uint32_t kill_now() {
        ::kill(child_, SIGKILL);
        while (receive()) continue;
        return last_;
    }

private:
    [[noreturn]] static void write_on(const test::TemporaryFolder& folder, const std::string& key, std::uint32_t first,
                                      int answers) {
        Process process(folder);
        for (std::uint32_t count = first;; ++count) {
            if (process.write(key, name_of(count), text_of(count)) != kSuccess) ::_exit(1);
            if (::write(answers, &count, sizeof count) != sizeof count) ::_exit(1);
        }
    }
    bool receive() { return ::read(answers_, &last_, sizeof last_) == sizeof last_; }

    pid_t child_ = -1;
    int answers_ = -1;
    std::uint32_t last_ = 0;
};

/// Every name holds the last answered write to it, or the one that was under way, in full.
void expect_answered(const test::TemporaryFolder& folder, const std::string& key, std::uint32_t last) {
    Process process(folder);
    for (std::uint32_t count = last > kNames ? last - kNames + 1 : 1; count <= last; ++count) {
        const std::string found = process.read(key, name_of(count));
        const bool under_way = name_of(last + 1) == name_of(count) && found == text_of(last + 1);
        ASSERT_TRUE(found == text_of(count) || under_way) << found.substr(0, 20) << " for " << count << " of " << last;
    }
}

TEST(RegistryCrash, EveryAnsweredWriteSurvivesAKill) {
    constexpr int kKills = 250;
    const test::TemporaryFolder folder;
    std::mt19937 random(4711);
    std::uint32_t last = 0;
    std::uint32_t cut_short = 0;
    for (int kill = 0; kill < kKills; ++kill) {
        SCOPED_TRACE("kill " + std::to_string(kill));
        Writer writer(folder, "Key", last + 1);
        writer.let_write(1 + random() % 100, std::chrono::microseconds(random() % 1000));
        const std::uint32_t answered = writer.kill_now();
        ASSERT_GT(answered, last);
        last = answered;
        const std::string text = test::read_file(folder / "registry");
        cut_short += text.ends_with('\n') ? 0 : 1;
        expect_answered(folder, "Key", last);
        if (HasFatalFailure()) return;
    }
    std::cout << last << " answered writes, " << cut_short << " lines cut short by " << kKills << " kills\n";
}

TEST(RegistryCrash, AKillDoesNotHarmTheOtherWriter) {
    constexpr int kKills = 60;
    const test::TemporaryFolder folder;
    std::mt19937 random(815);
    Writer survivor(folder, "Survivor", 1);
    survivor.let_write(1, {});
    std::uint32_t last = 0;
    for (int kill = 0; kill < kKills; ++kill) {
        Writer writer(folder, "Key", last + 1);
        writer.let_write(1 + random() % 100, std::chrono::microseconds(random() % 1000));
        last = writer.kill_now();
        expect_answered(folder, "Key", last);
        if (HasFatalFailure()) return;
    }
    const std::uint32_t of_survivor = survivor.kill_now();
    EXPECT_GT(of_survivor, static_cast<std::uint32_t>(kKills));
    expect_answered(folder, "Survivor", of_survivor);
    expect_answered(folder, "Key", last);
}

}  // namespace
}  // namespace vex::platform::native
