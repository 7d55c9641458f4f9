// The native store: what lasts, what others change meanwhile, and what is refused.
#include <gmock/gmock.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <thread>

#include "core/unicode.h"
#include "tests/registry/store_process.h"

namespace vex::platform::native {
namespace {

using test::read_file;
using test::TemporaryFolder;
using test::write_file;
using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::StartsWith;

class RegistryStoreTest : public ::testing::Test {
protected:
    unsigned permissions() const {
        struct stat status = {};
        EXPECT_EQ(::stat(file.c_str(), &status), 0);
        return status.st_mode & 0777;
    }

    TemporaryFolder folder;
    const std::filesystem::path file = folder / "registry";
};

// ---- What lasts

TEST_F(RegistryStoreTest, TheFileLooksLikeAnExportAndIsTheOwnersAlone) {
    Process process(folder);
    process.write("Software\\Norvan\\Brivola3\\Settings", "AppPath", "C:\\Brivola");
    process.write("Software\\Norvan\\Brivola3\\Settings", "EnableXPort", "TRUE");
    process.write("Software\\Norvan", "Größe", "€");
    const std::string text = read_file(file);
    EXPECT_THAT(text, StartsWith("Windows Registry Editor Version 5.00\n"));
    EXPECT_THAT(text, HasSubstr("\n[HKEY_LOCAL_MACHINE\\Software\\Norvan\\Brivola3\\Settings]\n"
                                "\"AppPath\"=\"C:\\\\Brivola\"\n"
                                "\"EnableXPort\"=\"TRUE\"\n"));
    EXPECT_EQ(permissions(), 0600U);
}

TEST_F(RegistryStoreTest, EveryKindOfChangeLasts) {
    {
        Process process(folder);
        process.write("A", "kept", "1");
        process.write("A", "changed", "old");
        process.write("A", "changed", "new");
        process.write("A", "gone", "x");
        process.service.delete_value(process.open("A"), "GONE");
        process.write("B\\C", "v", "x");
        process.service.delete_key(kRoot, "B\\C");
        process.write("A", "after", "2");
    }
    Process again(folder);
    EXPECT_EQ(again.read("A", "kept"), "1");
    EXPECT_EQ(again.read("A", "changed"), "new");
    EXPECT_EQ(again.read("A", "gone"), "(2)");
    EXPECT_EQ(again.read("A", "after"), "2");
    EXPECT_NE(again.open("B"), 0);
    EXPECT_EQ(again.open("B\\C"), 0);
}

TEST_F(RegistryStoreTest, AWriteOnlyAppends) {
    Process process(folder);
    for (int i = 0; i < 100; ++i) process.write("Key", "value " + std::to_string(i), "some text");
    const std::string before = read_file(file);
    process.write("Key", "value 50", "another");
    EXPECT_EQ(read_file(file), before + "\"value 50\"=\"another\"\n");
    process.write("Key", "VALUE 50", "another");
    EXPECT_EQ(read_file(file), before + "\"value 50\"=\"another\"\n") << "what it holds is not written again";
}

TEST_F(RegistryStoreTest, ALineCutShortIsDroppedAndNothingElse) {
    Process(folder).write("Key", "first", "1");
    const std::string before = read_file(file);
    {
        Process process(folder);
        process.write("Key", "second", "2");
        process.write("Other", "third", "3");
    }
    const std::string whole = read_file(file);
    for (std::size_t size = 0; size < whole.size(); ++size) {
        SCOPED_TRACE(whole.substr(0, size));
        write_file(file, whole.substr(0, size));
        const std::string first = size >= before.size() ? "1" : "(2)";
        const std::string second = size >= whole.find("\"2\"\n") + 4 ? "2" : "(2)";
        Process process(folder);
        for (Process again(folder); Process * each : {&process, &again}) {
            EXPECT_EQ(each->read("Key", "first"), first);
            EXPECT_EQ(each->read("Key", "second"), second);
            EXPECT_EQ(each->read("Other", "third"), "(2)");
            EXPECT_EQ(process.write("Key", "next", "4"), kSuccess);
        }
        EXPECT_EQ(Process(folder).read("Key", "next"), "4") << "the rest of the line is not in the way";
    }
}

// ---- Several processes

TEST_F(RegistryStoreTest, ProcessesSeeEachOthersChangesAtOnce) {
    Process one(folder);
    Process two(folder);
    EXPECT_EQ(two.read("Key", "v"), "(2)");
    one.write("Key", "v", "from one");
    const RegistryKey key = two.open("Key");
    EXPECT_EQ(two.read(key, "v"), "from one");
    two.write("Key", "v", "from two");
    two.write("Key", "w", "more");
    EXPECT_EQ(one.read("Key", "v"), "from two");
    one.service.delete_key(kRoot, "Key");
    EXPECT_EQ(two.read(key, "v"), "(1018)");
    EXPECT_EQ(two.service.delete_key(kRoot, "Key"), kFileNotFound);
}

TEST_F(RegistryStoreTest, ProcessesThatWriteAtOnceLoseNothing) {
    constexpr int kWriters = 3;
    constexpr int kValues = 700;
    const auto key_of = [](int i) { return "Key " + std::to_string(i % 7); };
    const auto name_of = [](int writer, int i) { return std::to_string(writer) + '-' + std::to_string(i); };
    pid_t children[kWriters];
    for (int writer = 0; writer < kWriters; ++writer) {
        children[writer] = ::fork();
        if (children[writer] != 0) continue;
        Process process(folder);
        bool all = true;
        for (int i = 0; i < kValues; ++i) {
            // Values of their own, and one that all change, so that there is something to tidy up.
            all = all && process.write(key_of(i), name_of(writer, i), "v") == kSuccess &&
                  process.write("Key", "shared", std::to_string(writer) + std::string(300, 'x')) == kSuccess;
        }
        ::_exit(all ? 0 : 1);
    }
    for (const pid_t child : children) {
        int status = -1;
        ASSERT_EQ(::waitpid(child, &status, 0), child);
        EXPECT_EQ(status, 0);
    }
    Process process(folder);
    for (int writer = 0; writer < kWriters; ++writer) {
        for (int i = 0; i < kValues; ++i) ASSERT_EQ(process.read(key_of(i), name_of(writer, i)), "v");
    }
    EXPECT_LT(std::filesystem::file_size(file), 400'000U) << "the file was tidied up meanwhile";
}

TEST_F(RegistryStoreTest, ThreadsMayShareOneRegistry) {
    Process process(folder);
    std::thread other([&] {
        for (int i = 0; i < 500; ++i) process.service.expand_environment("%PATH%", nullptr, 0);
        RegistryKey key = 0;
        for (int i = 0; i < 500; ++i) {
            process.service.create_key(kRoot, "Other", nullptr, kKeyAllAccess, {}, key);
            process.service.set_value(key, std::to_string(i).c_str(), kRegBinary, nullptr, 0);
            process.service.close_key(key);
        }
    });
    for (int i = 0; i < 500; ++i) process.write("Mine", std::to_string(i), "v");
    other.join();
    EXPECT_EQ(process.read("Mine", "499"), "v");
    EXPECT_NE(process.open("Other"), 0);
}

// ---- Tidying up

TEST_F(RegistryStoreTest, TheFileIsRewrittenWhenMostOfItIsSuperseded) {
    Process process(folder);
    Process watcher(folder);
    process.write("Key", "constant", "stays");
    write_file(folder / "victim", "untouched");
    std::filesystem::create_symlink(folder / "victim", folder / "registry.new");
    const RegistryKey watched = watcher.open("Key");
    const RegistryKey own = process.open("Key");
    std::uintmax_t largest = 0;
    for (int i = 0; i < 3000; ++i) {
        ASSERT_EQ(process.write("Key\\Sub", "changing", std::to_string(i) + std::string(100, 'x')), kSuccess);
        largest = std::max(largest, std::filesystem::file_size(file));
    }
    EXPECT_LT(largest, 200'000U);
    for (Process* each : {&process, &watcher}) {
        EXPECT_THAT(each->read("Key\\Sub", "changing"), StartsWith("2999x"));
        EXPECT_EQ(each->read(each == &process ? own : watched, "constant"), "stays") << "open keys live on";
    }
    EXPECT_EQ(process.write("Key", "constant", "changes"), kSuccess);
    EXPECT_EQ(watcher.read(watched, "constant"), "changes");
    EXPECT_FALSE(std::filesystem::exists(folder / "registry.new"));
    EXPECT_EQ(read_file(folder / "victim"), "untouched") << "nobody's link is written through";
    EXPECT_FALSE(std::filesystem::is_symlink(file));
    EXPECT_EQ(permissions(), 0600U);
}

TEST_F(RegistryStoreTest, ALinkInPlaceOfTheFileIsRefused) {
    write_file(folder / "elsewhere", std::string(kRegistryHeader) + "[HKEY_LOCAL_MACHINE\\Key]\n\"v\"=\"1\"\n");
    std::filesystem::create_symlink(folder / "elsewhere", file);
    EXPECT_THROW(Process{folder}, std::system_error);
}

TEST_F(RegistryStoreTest, RewritingKeepsWhatSomeoneEditedInTheMiddle) {
    Process process(folder);
    process.write("Key", "edited", "old");
    for (int i = 0; i < 100; ++i) process.write("Key", "changing", std::to_string(i) + std::string(900, 'x'));
    // In place, of the same length, and followed by another process's write: to this one the file only grew.
    std::fstream stream(file, std::ios::in | std::ios::out);
    stream.seekp(static_cast<std::streamoff>(read_file(file).find("\"old\"") + 1));
    stream << "NEW" << std::flush;
    Process(folder).write("Other", "v", "1");
    EXPECT_EQ(process.read("Key", "edited"), "old") << "or this test shows nothing";
    for (int i = 0; i < 300; ++i) process.write("Key", "changing", std::to_string(i) + std::string(900, 'y'));
    EXPECT_EQ(process.read("Key", "edited"), "NEW");
    EXPECT_THAT(read_file(file), HasSubstr("\"edited\"=\"NEW\""));
}

// ---- Edited, damaged and foreign files

TEST_F(RegistryStoreTest, AnEditedFileIsReadAnew) {
    Process process(folder);
    process.write("Key", "v", "1");
    const RegistryKey key = process.open("Key");
    std::string text = read_file(file);
    text.replace(text.find("\"1\""), 3, "\"edited\"");
    write_file(file, text);
    EXPECT_EQ(process.read(key, "v"), "edited");
    write_file(folder / "registry.edited", text + "\"w\"=\"2\"\n");
    std::filesystem::rename(folder / "registry.edited", file);
    EXPECT_EQ(process.read(key, "w"), "2");
    std::filesystem::remove(file);
    EXPECT_EQ(process.read("Key", "v"), "(2)");
    EXPECT_EQ(process.read(key, "v"), "(1018)");
    EXPECT_EQ(process.write("Key", "v", "3"), kSuccess);
    EXPECT_EQ(Process(folder).read("Key", "v"), "3");
}

TEST_F(RegistryStoreTest, ADamagedFileIsRefusedAndNeverOverwritten) {
    Process process(folder);
    process.write("Key", "v", "1");
    const RegistryKey key = process.open("Key");
    const std::string good = read_file(file);
    for (const std::string& text :
         {good + "oops\n\"w\"=\"2\"\n", std::string("rubbish\n"), std::string("rubbish without an end")}) {
        write_file(file, text);
        EXPECT_EQ(process.read(key, "v"), "(1009)");
        EXPECT_EQ(process.write("Key", "v", "2"), kRegistryCorrupt);
        EXPECT_EQ(process.service.delete_key(kRoot, "Key"), kRegistryCorrupt);
        EXPECT_EQ(read_file(file), text);
    }
    write_file(file, good + "\"w\"=\"2\"\n");
    EXPECT_EQ(process.read(key, "w"), "2") << "a repaired file is taken up again";
}

TEST_F(RegistryStoreTest, AnExportInPlaceOfTheFileIsTakenOver) {
    std::string bytes = "\xFF\xFE";
    for (const char c : std::string(
             "Windows Registry Editor Version 5.00\r\n\r\n[HKEY_LOCAL_MACHINE\\SOFTWARE\\Norvan]\r\n\"v\"=\"1\"")) {
        bytes += c;
        bytes += '\0';
    }
    write_file(file, bytes);
    Process process(folder);
    EXPECT_EQ(process.read("Software\\Norvan", "v"), "1");
    EXPECT_EQ(read_file(file), bytes) << "reading leaves it as it is";
    EXPECT_EQ(process.write("Software\\Norvan", "w", "2"), kSuccess);
    EXPECT_THAT(read_file(file), StartsWith("Windows Registry"));
    Process again(folder);
    EXPECT_EQ(again.read("Software\\Norvan", "v"), "1");
    EXPECT_EQ(again.read("Software\\Norvan", "w"), "2");
}

TEST_F(RegistryStoreTest, AnImportIsMergedWholeOrNotAtAll) {
    Process process(folder);
    process.write("Key", "kept", "1");
    process.write("Key", "gone", "1");
    process.service.import(
        std::string(kRegistryHeader) +
        "[HKEY_LOCAL_MACHINE\\Key]\n\"gone\"=-\n\"new\"=\"2\"\n[HKEY_CURRENT_USER\\Other]\n@=\"x\"\n");
    for (int i = 0; i < 2; ++i) {
        Process again(folder);
        EXPECT_EQ(again.read("Key", "kept"), "1");
        EXPECT_EQ(again.read("Key", "gone"), "(2)");
        EXPECT_EQ(again.read("Key", "new"), "2");
        EXPECT_THROW(
            again.service.import(std::string(kRegistryHeader) + "[HKEY_LOCAL_MACHINE\\Key]\n\"new\"=\"3\"\noops\n"),
            RegistryDamage);
    }
}

/// Runs `work` in a process of its own and answers what it answers.
template <class Work>
bool in_child(Work work) {
    const pid_t child = ::fork();
    if (child == 0) ::_exit(work() ? 0 : 1);
    int status = -1;
    ::waitpid(child, &status, 0);
    return status == 0;
}

TEST_F(RegistryStoreTest, WhereNothingCanBeWrittenNothingOpensForWriting) {
    Process(folder).write("Key", "v", "1");
    ASSERT_EQ(::chmod(file.c_str(), 0444), 0);
    ASSERT_EQ(::chmod(folder.path().c_str(), 0755), 0);
    EXPECT_TRUE(in_child([&] {
        // Nothing is read-only to the super-user.
        constexpr uid_t kNobody = 65534;
        if (::geteuid() == 0 && ::setuid(kNobody) != 0) return false;
        Process reader(folder);
        return reader.read("Key", "v") == "1" && reader.open("Key", kKeyWrite) == 0 && reader.result == kAccessDenied &&
               reader.open("Key", 0x02000000) != 0 && reader.write("New", "v", "1") == kAccessDenied;
    }));
}

TEST_F(RegistryStoreTest, AWriteThatFailsHalfwayLeavesTheFileWhole) {
    EXPECT_TRUE(in_child([&] {
        // A limit of the process on the size of files stands for the end of the disk.
        constexpr rlimit kLimit = {4096, 4096};
        ::signal(SIGXFSZ, SIG_IGN);
        ::setrlimit(RLIMIT_FSIZE, &kLimit);
        Process process(folder);
        return process.write("Key", "small", "fits") == kSuccess &&
               process.write("Key", "large", std::string(8000, 'x')) == kRegistryIoFailed &&
               process.write("Key", "also small", "fits") == kSuccess;
    }));
    Process process(folder);
    EXPECT_EQ(process.read("Key", "small"), "fits");
    EXPECT_EQ(process.read("Key", "large"), "(2)");
    EXPECT_EQ(process.read("Key", "also small"), "fits");
}

// ---- Names, roots and other computers

TEST_F(RegistryStoreTest, ClassesAreAPartOfTheLocalMachine) {
    Process process(folder);
    RegistryKey key = 0;
    ASSERT_EQ(process.service.create_key(registry_key(kHkeyClassesRoot), "Some.Class\\CLSID", nullptr, kKeyAllAccess,
                                         {}, key),
              kSuccess);
    EXPECT_NE(process.open("SOFTWARE\\Classes\\some.class\\clsid"), 0);
    EXPECT_EQ(process.service.delete_key(registry_key(kHkeyClassesRoot), ""), kAccessDenied);
    EXPECT_EQ(process.service.delete_key(kRoot, "Software\\Classes"), kAccessDenied);
    EXPECT_THAT(read_file(file), HasSubstr("[HKEY_LOCAL_MACHINE\\Software\\Classes\\Some.Class\\CLSID]"));
}

TEST_F(RegistryStoreTest, NamesThatTheFileCannotHoldAreRefused) {
    Process process(folder);
    RegistryKey key = 0;
    std::string deep = "k";
    for (std::size_t i = 0; i < kMaxKeyDepth; ++i) deep += "\\k";
    for (const std::string& path : {std::string("line\nbreak"), deep, std::string(256, 'k')}) {
        EXPECT_EQ(process.service.create_key(kRoot, path.c_str(), nullptr, kKeyAllAccess, {}, key), kInvalidParameter);
        EXPECT_EQ(key, 0);
    }
    EXPECT_EQ(process.write("Key]\" [", "a\nb\\\"=", "line\nbreak\\\""), kSuccess);
    EXPECT_EQ(Process(folder).read("Key]\" [", "A\nB\\\"="), "line\nbreak\\\"");
}

TEST_F(RegistryStoreTest, OtherComputersAreFoldersWithARegistryOfTheirOwn) {
    std::filesystem::create_directories(folder / "remote/Workshop");
    write_file(folder / "remote/Workshop/registry",
               std::string(kRegistryHeader) + "[HKEY_LOCAL_MACHINE\\Key]\n\"v\"=\"far\"\n");
    Process process(folder);
    process.write("Key", "v", "near");
    RegistryKey remote = 0;
    ASSERT_EQ(process.service.connect_registry("\\\\WORKSHOP", kRoot, remote), kSuccess);
    RegistryKey key = 0;
    ASSERT_EQ(process.service.open_key(remote, "Key", kKeyAllAccess, key), kSuccess);
    EXPECT_EQ(process.read(key, "v"), "far");
    EXPECT_EQ(process.service.set_value(key, "w", kRegBinary, nullptr, 0), kSuccess);
    EXPECT_THAT(read_file(folder / "remote/Workshop/registry"), HasSubstr("\"w\"=hex:\n"));
    EXPECT_THAT(read_file(file), Not(HasSubstr("\"w\"")));

    for (const char* absent : {"nowhere", "\\\\..", ".", "Workshop/../Workshop", "remote"}) {
        EXPECT_EQ(process.service.connect_registry(absent, kRoot, remote), kBadNetPath) << absent;
        EXPECT_EQ(remote, 0);
    }
    EXPECT_EQ(process.service.connect_registry("Workshop", registry_key(kHkeyCurrentUser), remote), kInvalidHandle);
}

}  // namespace
}  // namespace vex::platform::native
