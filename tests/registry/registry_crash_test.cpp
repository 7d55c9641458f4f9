// Kills writers at random points and looks for every write that was answered.
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <random>
#include <thread>

#include "platform/native/code_page_1252.h"
#include "platform/native/registry_service.h"
#include "tests/shared/temporary_folder.h"

namespace vex::platform::native {
namespace {

constexpr RegistryKey kRoot = registry_key(kHkeyLocalMachine);
constexpr int kNames = 20;
const CodePage1252 kCodePage;

/// What the `count`th write of a writer writes to: each name in turn, with data of very different sizes, so
/// that lines are cut short and the file is tidied up while writers die.
std::string name_of(std::uint32_t count) { return "value " + std::to_string(count % kNames); }
std::vector<std::uint8_t> data_of(std::uint32_t count) {
    std::vector<std::uint8_t> data(count % 97 == 0 ? 60'000 : 4 + count % 250, static_cast<std::uint8_t>(count));
    for (std::size_t i = 0; i < 4; ++i) data[i] = static_cast<std::uint8_t>(count >> (8 * i));
    return data;
}
std::uint32_t count_of(const std::vector<std::uint8_t>& data) {
    return data[0] | static_cast<std::uint32_t>(data[1]) << 8 | static_cast<std::uint32_t>(data[2]) << 16;
}

/// A process that writes from a count on, and tells each one that was answered.
class Writer {
public:
    Writer(const std::filesystem::path& folder, const std::string& key, std::uint32_t first) {
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
    [[noreturn]] static void write_on(const std::filesystem::path& folder, const std::string& path, std::uint32_t first,
                                      int answers) {
        RegistryService service(kCodePage);
        service.use_folder(folder);
        RegistryKey key = 0;
        service.create_key(kRoot, path.c_str(), nullptr, kKeyAllAccess, {}, key);
        for (std::uint32_t count = first;; ++count) {
            const std::vector<std::uint8_t> data = data_of(count);
            const std::int32_t result = service.set_value(key, name_of(count).c_str(), kRegBinary, data.data(),
                                                          static_cast<std::uint32_t>(data.size()));
            if (result != kSuccess || ::write(answers, &count, sizeof count) != sizeof count) ::_exit(1);
        }
    }
    bool receive() { return ::read(answers_, &last_, sizeof last_) == sizeof last_; }

    pid_t child_ = -1;
    int answers_ = -1;
    std::uint32_t last_ = 0;
};

/// What a store that is opened afresh holds under a name.
std::vector<std::uint8_t> stored(RegistryService& service, const std::string& path, const std::string& name) {
    RegistryKey key = 0;
    std::uint32_t type = 0;
    std::uint32_t size = 0;
    service.open_key(kRoot, path.c_str(), kKeyRead, key);
    if (service.query_value(key, name.c_str(), type, nullptr, size) != kSuccess) return {};
    std::vector<std::uint8_t> data(size);
    service.query_value(key, name.c_str(), type, data.data(), size);
    service.close_key(key);
    return data;
}

/// Every name holds the last answered write to it, or the one that was under way, in full.
void expect_answered(const std::filesystem::path& folder, const std::string& key, std::uint32_t last) {
    RegistryService service(kCodePage);
    ASSERT_NO_THROW(service.use_folder(folder));
    for (std::uint32_t count = last > kNames ? last - kNames + 1 : 1; count <= last; ++count) {
        const std::vector<std::uint8_t> data = stored(service, key, name_of(count));
        ASSERT_GE(data.size(), 4U) << name_of(count);
        const std::uint32_t found = count_of(data);
        ASSERT_TRUE(found == count || found == last + 1) << found << " in place of " << count << " of " << last;
        ASSERT_EQ(data, data_of(found));
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
        Writer writer(folder.path(), "Key", last + 1);
        writer.let_write(1 + random() % 100, std::chrono::microseconds(random() % 1000));
        const std::uint32_t answered = writer.kill_now();
        ASSERT_GT(answered, last);
        last = answered;
        const std::string text = test::read_file(folder / "registry");
        cut_short += text.ends_with('\n') ? 0 : 1;
        expect_answered(folder.path(), "Key", last);
        if (HasFatalFailure()) return;
    }
    RecordProperty("answered_writes", static_cast<int>(last));
    RecordProperty("lines_cut_short", static_cast<int>(cut_short));
    std::cout << last << " answered writes, " << cut_short << " lines cut short by " << kKills << " kills\n";
}

TEST(RegistryCrash, AKillDoesNotHarmTheOtherWriter) {
    constexpr int kKills = 60;
    const test::TemporaryFolder folder;
    std::mt19937 random(815);
    Writer survivor(folder.path(), "Survivor", 1);
    survivor.let_write(1, {});
    std::uint32_t last = 0;
    for (int kill = 0; kill < kKills; ++kill) {
        Writer writer(folder.path(), "Key", last + 1);
        writer.let_write(1 + random() % 100, std::chrono::microseconds(random() % 1000));
        last = writer.kill_now();
        expect_answered(folder.path(), "Key", last);
        if (HasFatalFailure()) return;
    }
    const std::uint32_t of_survivor = survivor.kill_now();
    EXPECT_GT(of_survivor, static_cast<std::uint32_t>(kKills));
    expect_answered(folder.path(), "Survivor", of_survivor);
    expect_answered(folder.path(), "Key", last);
}

}  // namespace
}  // namespace vex::platform::native
