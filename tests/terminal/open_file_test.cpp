// The Open dialog.
#include "platform/native/terminal/open_file_form.h"

#include <map>

#include <gtest/gtest.h>

#include "platform/native/terminal/terminal_toolkit.h"
#include "tests/terminal/fake_screen.h"

namespace vex::platform::native::terminal {
namespace {

/// C: with two firmware folders, and an empty D:.
class SmallDrives final : public Drives {
public:
    std::vector<std::u16string> letters() const override { return {u"C:", u"D:"}; }
    std::optional<std::vector<FolderEntry>> entries(const std::u16string& folder) const override {
        const auto found = folders_.find(folder);
        if (found == folders_.end()) return std::nullopt;
        return found->second;
    }
    bool file_exists(const std::u16string& path) const override { return path.starts_with(u"C:\\fw\\"); }

private:
    std::map<std::u16string, std::vector<FolderEntry>> folders_{
        {u"C:", {{u"fw", true, 0}, {u"readme.txt", false, 10}}},
        {u"C:\\fw",
         {{u"new.bin", false, 120'000}, {u"alpha.BIN", false, 512}, {u"sign.shx", false, 1}, {u"old", true, 0}}},
        {u"C:\\fw\\old", {}},
        {u"D:", {}},
    };
};

class OpenFile : public testing::Test {
protected:
    /// Moves to the name, types it and opens it.
    void type_name(std::u32string_view name) {
        screen.key(Key::tab);
        screen.type(name);
        screen.key(Key::enter);
    }
    std::optional<std::u16string> open(std::u16string folder, std::u16string name = {}, std::uint32_t flags = 0x81000) {
        return toolkit.open_file({std::move(folder), std::move(name), u"Rabbit Files(*.BIN)|*.BIN", flags});
    }

    SmallDrives drives;
    FakeScreen screen;
    TerminalToolkit toolkit{screen, drives};
};

TEST_F(OpenFile, OffersFoldersAndTheFilesOfTheFilter) {
    screen.look([&] {
        EXPECT_LT(screen.find(U"..\\").row, screen.find(U"old\\").row);
        EXPECT_LT(screen.find(U"old\\").row, screen.find(U"alpha.BIN").row);
        EXPECT_LT(screen.find(U"alpha.BIN").row, screen.find(U"new.bin").row);
        EXPECT_FALSE(screen.shows("sign.shx"));
        EXPECT_TRUE(screen.shows("Rabbit Files(*.BIN)"));
        EXPECT_TRUE(screen.shows("118 KB"));
    });
    screen.keys({Key::end, Key::enter});
    EXPECT_EQ(open(u"C:\\fw\\"), u"C:\\fw\\new.bin");
}

TEST_F(OpenFile, WalksThroughFoldersUpToTheDrives) {
    screen.key(Key::enter, [&] { EXPECT_TRUE(screen.shows("C:\\fw")); });  // old
    screen.key(Key::enter, [&] { EXPECT_TRUE(screen.shows("C:\\fw\\old")); });
    for (int up = 0; up < 2; ++up) {
        screen.keys({Key::home, Key::enter});
    }
    screen.key(Key::enter, [&] {
        EXPECT_TRUE(screen.shows("all drives"));
        EXPECT_TRUE(screen.shows("D:\\"));
    });
    screen.key(Key::enter, [&] { EXPECT_TRUE(screen.shows("Look in:  C:")); });
    screen.keys({Key::down, Key::enter});
    EXPECT_EQ(open(u"C:\\fw"), u"C:\\fw\\alpha.BIN");
}

TEST_F(OpenFile, TakesATypedNameOrPath) {
    type_name(U"Sign.SHX");
    EXPECT_EQ(open(u"C:\\fw"), u"C:\\fw\\Sign.SHX") << "any name that exists, whatever the filter";
    type_name(U"d:\\a.bin");
    screen.key(Key::enter, [&] { EXPECT_TRUE(screen.shows("File not found")); });
    screen.key(Key::escape);
    EXPECT_EQ(open(u"C:\\fw"), std::nullopt);
    type_name(U"a.bin");
    EXPECT_EQ(open(u"D:", {}, 0x80000), u"D:\\a.bin") << "without the flag it need not exist";
    type_name(U"\\fw");
    screen.key(Key::escape, [&] { EXPECT_TRUE(screen.shows("alpha.BIN")); });
    EXPECT_EQ(open(u"C:\\fw\\old"), std::nullopt) << "a folder is opened, not answered";
}

TEST_F(OpenFile, BeginsWithTheNameItIsGiven) {
    screen.key(Key::enter, [&] { EXPECT_TRUE(screen.shows("C:\\fw\\new.bin")); });
    EXPECT_EQ(open(u"C:\\fw", u"C:\\fw\\new.bin"), u"C:\\fw\\new.bin");
    screen.keys({Key::up, Key::enter});
    EXPECT_EQ(open(u"C:\\fw", u"C:\\fw\\new.bin"), u"C:\\fw\\alpha.BIN") << "a row that the user moved to goes first";
}

TEST_F(OpenFile, FindsAFolderToBeginIn) {
    for (const auto& [folder, found] : {std::pair(u"C:\\fw\\missing\\deeper", "C:\\fw "), std::pair(u"", "C:")}) {
        screen.key(Key::escape, [this, found] { EXPECT_TRUE(screen.shows(std::string("Look in:  ") + found)); });
        EXPECT_EQ(open(folder), std::nullopt);
    }
}

TEST_F(OpenFile, OpensByADoubleClick) {
    screen.click({10, 8});
    screen.look([&] { EXPECT_EQ(screen.find(U"new.bin").row, 8); });
    screen.click({10, 8});
    EXPECT_EQ(open(u"C:\\fw"), u"C:\\fw\\new.bin");
}

TEST(OpenFilePattern, MatchesInAnyCase) {
    for (const auto& [name, pattern, matches] : {std::tuple(u"new.bin", u"*.BIN", true),
                                                 {u"a.shx", u"*.BIN;*.SHX", true},
                                                 {u"ab.bin.bin", u"?b*.bin", true},
                                                 {u"new.bin2", u"*.BIN", false},
                                                 {u"newbin", u"*.BIN", false}}) {
        EXPECT_EQ(matches_pattern(name, pattern), matches);
    }
}

}  // namespace
}  // namespace vex::platform::native::terminal
