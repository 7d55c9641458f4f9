// The Open dialog.
#include <filesystem>
#include <fstream>

#include <gtest/gtest.h>

#include <unistd.h>

#include "platform/native/machine.h"
#include "platform/native/terminal/terminal_toolkit.h"
#include "tests/terminal/fake_screen.h"

namespace vex::platform::native::terminal {
namespace {

/// C: with two firmware folders, and an empty D:.
class FileBox : public testing::Test {
protected:
    FileBox() {
        std::filesystem::create_directories(root / "drive_c" / "fw" / "old");
        std::filesystem::create_directories(root / "drive_d");
        for (const char* name : {"new.bin", "alpha.BIN", "sign.shx", "newer.bin"}) {
            std::ofstream(root / "drive_c" / "fw" / name) << "x";
        }
        std::filesystem::permissions(root, std::filesystem::perms::owner_all);
        use_machine_folder(root);
    }
    ~FileBox() override { std::filesystem::remove_all(root); }

    std::optional<std::u16string> open(std::u16string folder, std::u16string name = {}, std::uint32_t flags = 0x81000) {
        return toolkit.open_file({std::move(folder), std::move(name), u"Rabbit Files(*.BIN)|*.BIN;*.B?", flags});
    }

    const std::filesystem::path root =
        std::filesystem::temp_directory_path() / ("vex_file_box_" + std::to_string(getpid()));
    FakeScreen screen;
    TerminalToolkit toolkit{screen};
};

TEST_F(FileBox, OffersFoldersAndTheFilesOfTheFilter) {
    screen.look([&] {
        EXPECT_LT(screen.find(U"..\\").row, screen.find(U"old\\").row);
        EXPECT_LT(screen.find(U"old\\").row, screen.find(U"›alpha.BIN").row);
        EXPECT_FALSE(screen.shows("sign.shx"));
        EXPECT_TRUE(screen.shows("Rabbit Files(*.BIN)"));
        EXPECT_TRUE(screen.shows("C:\\fw\\"));
    });
    screen.keys({Key::down, Key::down, Key::enter});
    EXPECT_EQ(open(u"C:\\fw\\"), u"C:\\fw\\new.bin") << "down leads into the list";
    screen.keys({Key::enter});
    EXPECT_EQ(open(u"C:\\fw", u"C:\\fw\\newer.bin"), u"C:\\fw\\newer.bin") << "the name it was given";
    screen.keys({Key::enter});
    EXPECT_EQ(open(u"C:\\fw\\missing\\deeper"), u"C:\\fw\\alpha.BIN") << "the nearest folder there is";
}

TEST_F(FileBox, TakesWhatWasTyped) {
    screen.type(U"NEW.bin");
    screen.look([&] { EXPECT_FALSE(screen.shows("alpha.BIN")) << "the list follows"; });
    screen.keys({Key::enter});
    EXPECT_EQ(open(u"C:\\fw"), u"C:\\fw\\new.bin") << "though another begins alike";
    screen.type(U"al");
    screen.keys({Key::enter});
    EXPECT_EQ(open(u"C:\\fw"), u"C:\\fw\\alpha.BIN") << "the only one that begins so";
    screen.paste(U"c:\\fw\\sign.shx\n");
    screen.keys({Key::enter});
    EXPECT_EQ(open(u"D:"), u"c:\\fw\\sign.shx") << "any name that exists, whatever the filter";
    screen.type(U"ne");
    screen.keys({Key::enter});
    screen.look([&] { EXPECT_TRUE(screen.shows("File not found")) << "several begin so: none is taken"; });
    screen.keys({Key::escape, Key::escape});
    EXPECT_EQ(open(u"C:\\fw"), std::nullopt);
    screen.type(U"a.bin");
    screen.keys({Key::enter});
    EXPECT_EQ(open(u"D:", {}, 0x80000), u"D:\\a.bin") << "without the flag it need not exist";
    screen.type(U"\\fw");
    screen.keys({Key::enter});
    screen.look([&] { EXPECT_TRUE(screen.shows("alpha.BIN")) << "a folder is opened, not answered"; });
    screen.keys({Key::escape});
    EXPECT_EQ(open(u"C:\\fw\\old"), std::nullopt);
    EXPECT_FALSE(toolkit.ended());
}

TEST_F(FileBox, WalksThroughFoldersUpToTheDrives) {
    screen.keys({Key::down, Key::home, Key::enter, Key::down, Key::home, Key::enter});
    screen.look([&] {
        EXPECT_TRUE(screen.shows("all drives"));
        EXPECT_TRUE(screen.shows("D:\\"));
    });
    screen.keys({Key::enter, Key::enter});
    // A click marks a row, a second one opens it; one on nothing does nothing.
    screen.look([&] {
        EXPECT_TRUE(screen.shows("C:\\fw\\"));
        screen.click(screen.find(U"new.bin"));
        screen.click({40, 17});
    });
    screen.look([&] { screen.click(screen.find(U"new.bin")); });
    EXPECT_EQ(open(u"C:\\fw"), u"C:\\fw\\new.bin");
}

}  // namespace
}  // namespace vex::platform::native::terminal
