// The native store: what lasts, what other processes change meanwhile, what a kill leaves, what is refused, and how its
// text is read.
#include <gmock/gmock.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <csignal>
#include <random>
#include <thread>

#include "platform/native/registry_service.h"
#include "platform/native/registry_store.h"
#include "platform/native/registry_text.h"
#include "tests/shared/temporary_folder.h"

namespace vex::platform::native {
namespace {

using namespace std::string_literals;
using test::read_file;
using test::write_file;
using ::testing::AnyOf;
using ::testing::HasSubstr;
using ::testing::Property;
using ::testing::StartsWith;
using ::testing::Throws;

constexpr RegistryKey kRoot = registry_key(kHkeyLocalMachine);
const std::string kHeader(kRegistryHeader);

/// A computer's registry as one process sees it. Paths begin at HKEY_LOCAL_MACHINE.
struct Process {
    explicit Process(const test::TemporaryFolder& folder) { service.use_folder(folder.path()); }

    RegistryKey open(const std::string& path, std::uint32_t access = kKeyAllAccess) {
        RegistryKey key = 0;
        result = service.open_key(kRoot, path.c_str(), access, key);
        return key;
    }
    std::int32_t write(const std::string& path, const std::string& name, const std::string& text) {
        RegistryKey key = 0;
        const std::int32_t created = service.create_key(kRoot, path.c_str(), nullptr, kKeyAllAccess, {}, key);
        if (created != kSuccess) return created;
        const auto* data = reinterpret_cast<const std::uint8_t*>(text.c_str());
        const auto size = static_cast<std::uint32_t>(text.size() + 1);
        const std::int32_t written = service.set_value(key, name.c_str(), kRegSz, data, size);
        service.close_key(key);
        return written;
    }
    /// A text, or the result code in parentheses.
    std::string read(RegistryKey key, const std::string& name) {
        std::uint32_t type = 0;
        std::string text(100'000, '\0');
        auto size = static_cast<std::uint32_t>(text.size());
        if (key != 0) {
            auto* data = reinterpret_cast<std::uint8_t*>(text.data());
            result = service.query_value(key, name.c_str(), type, data, size);
        }
        return result == kSuccess ? text.substr(0, size - 1) : '(' + std::to_string(result) + ')';
    }
    std::string read(const std::string& path, const std::string& name) {
        const RegistryKey key = open(path, kKeyRead);
        std::string text = read(key, name);
        service.close_key(key);
        return text;
    }

    const std::unique_ptr<NativeRegistry> made = make_registry();
    NativeRegistry& service = *made;
    std::int32_t result = kSuccess;
};

/// A process of its own.
class Child {
public:
    explicit Child(const std::function<bool()>& work) : id_(::fork()) {
        if (id_ == 0) ::_exit(work() ? 0 : 1);
    }
    /// Whether its work was done.
    bool succeeds() {
        int status = -1;
        return ::waitpid(id_, &status, 0) == id_ && status == 0;
    }
    void kill() {
        ::kill(id_, SIGKILL);
        EXPECT_FALSE(succeeds());
    }

private:
    pid_t id_;
};

class RegistryStoreTest : public ::testing::Test {
protected:
    test::TemporaryFolder folder;
    const std::filesystem::path file = folder / "registry";
};

// ---- What lasts

TEST_F(RegistryStoreTest, TheFileLooksLikeAnExportAndIsTheOwnersAlone) {
    write_file(folder / "victim", "untouched");
    Process process(folder);
    for (const mode_t mask : {0, 0777}) {
        const mode_t before = ::umask(mask);
        process.write("Software\\Norvan\\Brivola3", "AppPath", "C:\\" + std::to_string(mask));
        ::umask(before);
        struct stat status = {};
        ASSERT_EQ(::lstat(file.c_str(), &status), 0);
        EXPECT_EQ(status.st_mode, S_IFREG | 0600U);
    }
    EXPECT_THAT(read_file(file), StartsWith(kHeader));
    EXPECT_THAT(read_file(file), HasSubstr("\n[HKEY_LOCAL_MACHINE\\Software\\Norvan\\Brivola3]\n"
                                           "\"AppPath\"=\"C:\\\\511\"\n"));

    for (const char* name : {"registry", "registry.lock"}) {
        std::filesystem::remove(folder / name);
        std::filesystem::create_symlink(folder / "victim", folder / name);
        EXPECT_EQ(process.write("Key", "v", "1"), kRegistryIoFailed) << "a link in place of " << name;
        std::filesystem::remove(folder / name);
    }
    EXPECT_EQ(read_file(folder / "victim"), "untouched");
}

TEST_F(RegistryStoreTest, EveryKindOfChangeLasts) {
    const char* const values[][3] = {{"A", "kept", "1"},      {"A", "changed", "old"},
                                     {"A", "CHANGED", "new"}, {"A", "gone", "x"},
                                     {"B\\C", "v", "x"},      {"Key]\" [", "a\nb\\\"=", "line\nbreak\\\""}};
    {
        Process process(folder);
        for (const auto& [path, name, text] : values) EXPECT_EQ(process.write(path, name, text), kSuccess);
        process.service.delete_value(process.open("A"), "GONE");
        process.service.delete_key(kRoot, "B\\C");
        std::string deep = "k";
        for (int i = 0; i < 512; ++i) deep += "\\k";
        for (const std::string& path : {std::string("line\nbreak"), deep, std::string(256, 'k')}) {
            EXPECT_EQ(process.write(path, "v", "x"), kInvalidParameter) << "the file could not hold it";
        }
        const auto written = std::filesystem::last_write_time(file);
        EXPECT_EQ(process.write("A", "kept", "1"), kSuccess);
        EXPECT_EQ(std::filesystem::last_write_time(file), written) << "what it holds is not written again";
    }
    Process again(folder);
    EXPECT_EQ(again.read("A", "kept") + again.read("A", "changed") + again.read("A", "gone"), "1new(2)");
    EXPECT_EQ(again.read("Key]\" [", "A\nB\\\"="), "line\nbreak\\\"");
    EXPECT_NE(again.open("B"), 0);
    EXPECT_EQ(again.open("B\\C"), 0);
}

TEST_F(RegistryStoreTest, EveryAnsweredWriteSurvivesAKill) {
    const auto text_of = [](int count) {
        return std::to_string(count) + std::string(count % 37 == 0 ? 20'000 : 9, '.');
    };
    // Shared with the writers: how many writes of each were answered.
    auto* const answered = static_cast<std::atomic<int>*>(
        ::mmap(nullptr, 2 * sizeof(std::atomic<int>), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0));
    const auto write_on = [&](int writer) {
        Process process(folder);
        int count = answered[writer] + 1;
        while (process.write(std::to_string(writer), std::to_string(count % 20), text_of(count)) == kSuccess) {
            answered[writer] = count++;
        }
        return false;
    };
    const auto expect_answered = [&](int writer) {
        const int last = answered[writer];
        Process process(folder);
        for (int count = std::max(last - 19, 1); count <= last; ++count) {
            const std::string found = process.read(std::to_string(writer), std::to_string(count % 20));
            // The one that was under way may have come in, too.
            ASSERT_TRUE(found == text_of(count) || (count == last - 19 && found == text_of(last + 1))) << count;
        }
    };
    Child survivor([&] { return write_on(0); });
    std::mt19937 random(4711);
    for (int kill = 0; kill < 20 && !HasFailure(); ++kill) {
        const int wanted = answered[1] + 1 + static_cast<int>(random() % 30);
        Child writer([&] { return write_on(1); });
        for (int waits = 0; answered[1] < wanted && waits < 100'000; ++waits) ::usleep(100);
        EXPECT_GE(answered[1], wanted) << "the writer is stuck, or has failed";
        std::this_thread::sleep_for(std::chrono::microseconds(random() % 500));
        writer.kill();
        expect_answered(1);
    }
    survivor.kill();
    EXPECT_GT(answered[0], 0);
    expect_answered(0);
}

// ---- Several processes

TEST_F(RegistryStoreTest, OpenKeysLiveOnWhileOthersChangeTheFile) {
    Process one(folder);
    Process two(folder);
    EXPECT_EQ(two.read("Key", "v"), "(2)");
    one.write("Key", "v", "from one");
    one.write("Key\\Below", "v", "deeper");
    const RegistryKey key = two.open("Key");
    const RegistryKey below = two.open("Key\\Below");
    EXPECT_EQ(two.read(key, "v"), "from one");
    two.write("Key", "v", "from two");
    EXPECT_EQ(one.read("Key", "v"), "from two");

    const std::string header = kHeader + "[HKEY_LOCAL_MACHINE\\key]\n";
    write_file(file, header + "\"v\"=\"edited\"");
    EXPECT_EQ(two.read(key, "v"), "edited") << "also without the last line's break";
    EXPECT_EQ(two.read(below, "v"), "(1018)");
    write_file(folder / "edited", header + "\"w\"=\"2\"\n[HKEY_LOCAL_MACHINE\\Key\\Below]\n");
    std::filesystem::rename(folder / "edited", file);
    EXPECT_EQ(two.read(key, "v"), "(2)");
    EXPECT_EQ(two.read(key, "w"), "2");
    EXPECT_EQ(two.read(below, "v"), "(1018)") << "a new key of the name is another one";

    std::filesystem::remove(file);
    EXPECT_EQ(two.read(key, "w"), "(1018)");
    EXPECT_EQ(two.write("Key", "v", "4"), kSuccess);
    EXPECT_EQ(one.read("Key", "v"), "4");
}

TEST_F(RegistryStoreTest, AThreadReadsOnWhileTheFolderChanges) {
    const test::TemporaryFolder other;
    Process(other).write("Key", "v", "there");
    Process process(folder);
    process.write("Key", "v", "here");
    std::atomic<bool> done = false;
    std::thread reader([&] {
        // Or its handle has become invalid meanwhile.
        while (!done) EXPECT_THAT(process.read("Key", "v"), AnyOf("here", "there", "(6)"));
    });
    for (int times = 0; times < 200; ++times) process.service.use_folder((times % 2 == 0 ? other : folder).path());
    done = true;
    reader.join();
}

// ---- What is refused

TEST_F(RegistryStoreTest, ADamagedFileIsRefusedAndNeverOverwritten) {
    Process process(folder);
    process.write("Key", "v", "1");
    const RegistryKey key = process.open("Key");
    const std::string good = read_file(file);
    for (const std::string& text : {good + "oops\n\"w\"=\"2\"\n", std::string()}) {
        write_file(file, text);
        EXPECT_EQ(process.read(key, "v"), "(1009)");
        EXPECT_EQ(process.write("Key", "v", "2"), kRegistryCorrupt);
        EXPECT_EQ(process.service.delete_key(kRoot, "Key"), kRegistryCorrupt);
        EXPECT_EQ(read_file(file), text);
        EXPECT_THROW(Process{folder}, RegistryDamage);
    }
    write_file(file, good + "\"w\"=\"2\"\n");
    EXPECT_EQ(process.read(key, "w"), "2") << "a repaired file is taken up again";
}

TEST_F(RegistryStoreTest, WhereNothingCanBeWrittenNothingChanges) {
    Process(folder).write("Key", "v", "1");
    EXPECT_TRUE(Child([&] {
                    // A limit of the process on the size of files stands for the end of the disk.
                    constexpr rlimit kLimit = {4096, 4096};
                    ::signal(SIGXFSZ, SIG_IGN);
                    ::setrlimit(RLIMIT_FSIZE, &kLimit);
                    Process process(folder);
                    const RegistryKey key = process.open("Key");
                    return process.write("Key", "large", std::string(8000, 'x')) == kRegistryIoFailed &&
                           process.read(key, "large") == "(2)" && process.write("Key", "small", "fits") == kSuccess;
                }).succeeds());
    EXPECT_EQ(Process(folder).read("Key", "small"), "fits");
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder.path()), {}), 2) << "it and its lock";

    std::filesystem::permissions(file, std::filesystem::perms(0444));
    std::filesystem::permissions(folder.path(), std::filesystem::perms(0755));
    EXPECT_TRUE(Child([&] {
                    // Nothing is read-only to the super-user.
                    constexpr uid_t kNobody = 65534;
                    if (::geteuid() == 0 && ::setuid(kNobody) != 0) return false;
                    Process reader(folder);
                    return reader.read("Key", "v") == "1" && reader.write("Key", "v", "2") == kAccessDenied &&
                           reader.write("New", "v", "1") == kAccessDenied;
                }).succeeds());
}

// ---- Roots

TEST_F(RegistryStoreTest, ClassesAreAPartOfTheLocalMachineAndRootsStay) {
    Process process(folder);
    Registry& service = process.service;
    constexpr RegistryKey kClasses = registry_key(kHkeyClassesRoot);
    RegistryKey key = 0;
    ASSERT_EQ(service.create_key(kClasses, "Some.Class\\CLSID", nullptr, kKeyAllAccess, {}, key), kSuccess);
    EXPECT_NE(process.open("SOFTWARE\\Classes\\some.class\\clsid"), 0);
    EXPECT_THAT(read_file(file), HasSubstr("[HKEY_LOCAL_MACHINE\\Software\\Classes\\Some.Class\\CLSID]"));
    for (const auto& [root, path] : {std::pair(kClasses, ""), {kRoot, "Software\\Classes"}, {kRoot, ""}}) {
        EXPECT_EQ(service.delete_key(root, path), kAccessDenied);
    }
    EXPECT_EQ(service.connect_registry(nullptr, key, key), kInvalidHandle) << "no root";
}

// ---- Its text: what Windows exports and what people write

/// What a text says once it is read and written again, without the header.
std::string rewritten(const std::string& text) {
    RegistryKeys keys;
    keys.apply(read_registry(text));
    const std::string written = keys.text();
    return written.substr(std::min(written.size(), written.find("\n[")));
}

TEST(RegistryText, AnExportOfTheRealThingIsRead) {
    constexpr char16_t kExport[] =
        u"\xFEFFWindows Registry Editor Version 5.00\r\n\r\n[HKEY_LOCAL_MACHINE\\SOFTWARE\\Norvan]\r\n\r\n"
        u"[HKEY_LOCAL_MACHINE\\SOFTWARE\\Norvan\\Brivola3]\r\n@=\"Brivola\"\r\n"
        u"\"AppPath\"=\"C:\\\\Program Files\\\\Brivola\\\\\"\r\n\"Quoted \\\"name\\\"\"=\"Zürich \x20AC\"\r\n"
        u"\"Count\"=dword:0000002a\r\n\"Window\"=hex:2c,00,ff,\\\r\n  ff,16,\\\r\n  1d,00\r\n"
        u"\"Home\"=hex(2):25,00,48,00,25,00,00,00\r\n\"Nothing\"=hex(0):\r\n\"Two lines\"=\"1\r\n2\"\r\n\r\n";
    const std::vector<std::uint8_t> bytes = data_of(std::u16string_view(kExport, std::size(kExport) - 1));
    EXPECT_EQ(rewritten({bytes.begin(), bytes.end()}),
              "\n[HKEY_LOCAL_MACHINE\\Software\\Norvan\\Brivola3]\n@=\"Brivola\"\n"
              "\"AppPath\"=\"C:\\\\Program Files\\\\Brivola\\\\\"\n\"Count\"=dword:0000002a\n"
              "\"Home\"=hex(2):25,00,48,00,25,00,00,00\n\"Nothing\"=hex(0):\n\"Quoted \\\"name\\\"\"=\"Zürich €\"\n"
              "\"Two lines\"=\"1\r\n2\"\n\"Window\"=hex:2c,00,ff,ff,16,1d,00\n");
}

TEST(RegistryText, PeopleMayWriteItLoosely) {
    EXPECT_EQ(rewritten("\xEF\xBB\xBF" + kHeader +
                        "; a comment\n  [HKEY_CURRENT_USER\\A]  \r\n\t\"spaced\" = \"text\" ; and why\n"
                        "\"short\"=dword:F\n\"bytes\"=hex:1, 0A ,b,\\\n\t0c\n\"Same\"=\"old\"\n\"SAME\"=\"new\"\n"
                        "\"gone\"=\"x\"\n\"gone\"=-\n\"never there\"=-\n[HKEY_USERS\\B\\C]\n[HKEY_USERS\\B\\D]\n"
                        "[-HKEY_USERS\\b\\c]\n[-HKEY_USERS\\Never There]\n[HKEY_CLASSES_ROOT\\X]\n"
                        "[-HKEY_LOCAL_MACHINE]\n[HKEY_CLASSES_ROOT]\n@=\"\""),
              "\n[HKEY_CURRENT_USER\\A]\n\"bytes\"=hex:01,0a,0b,0c\n\"Same\"=\"new\"\n\"short\"=dword:0000000f\n"
              "\"spaced\"=\"text\"\n\n[HKEY_LOCAL_MACHINE\\Software\\Classes]\n@=\"\"\n\n[HKEY_USERS\\B\\D]\n");
}

TEST(RegistryText, DamageIsToldWithItsLine) {
    // H stands for the header, K for the header and a key.
    const std::pair<std::size_t, std::vector<std::string>> cases[] = {
        {1, {"", "Windows Registry Editor Version 5.00 and more\n"}},
        {2, {"H[HKEY_USERS\\A] x\n", "H[HKEY_NOBODY\\A]\n"}},
        {3,
         {"H\n\"v\"=\"before any key\"\n", "K\"v\"=\"no end\n\n\n", "K\"v\"=\"C:\\Single\"\n", "K\"v\" \"x\"\n",
          "K\"v\"=\"x\" y\n", "Kv=\"x\"\n", "K\"v\"=\"a\0b\"\n"s, "K\"v\"=\"\xFC\"\n", "K\"v\"=dword:\n",
          "K\"v\"=hex\n", "K\"v\"=hex(2:01\n", "K\"v\"=hex:001\n", "K\"v\"=hex:01,\\ 02\n", "K\"v\"=hex:01,\n"}},
        {4, {"K[-HKEY_CURRENT_USER\\A]\n\"v\"=\"after it went\"\n", "K\"v\"=hex:01,\\\n"}},
        {5, {"K\"v\"=\"two\nlines\"\n\"w\"=oops\n"}},
    };
    for (const auto& [line, texts] : cases) {
        for (std::string text : texts) {
            if (text.starts_with('H')) text.replace(0, 1, kHeader);
            if (text.starts_with('K')) text.replace(0, 1, kHeader + "[HKEY_CURRENT_USER\\A]\n");
            EXPECT_THAT([&] { rewritten(text); }, Throws<RegistryDamage>(Property(&RegistryDamage::line, line)))
                << text;
        }
    }
}

}  // namespace
}  // namespace vex::platform::native
