// The Open dialog.
#include <gtest/gtest.h>

#include "platform/native/machine.h"
#include "platform/native/terminal/terminal_toolkit.h"
#include "tests/shared/temporary_folder.h"
#include "tests/terminal/fake_screen.h"

namespace vex::platform::native::terminal {
namespace {

TEST(FileBox, ListFollowsTheFieldAndOpenTakesWhatIsMarked) {
    const test::TemporaryFolder machine;
    std::filesystem::create_directories(machine / "drive_c/fw/old");
    std::filesystem::create_directories(machine / "drive_d");
    for (const char* name : {"new.bin", "alpha.BIN", "sign.shx", "newer.bin"}) {
        test::write_file(machine / "drive_c/fw" / name, "x");
    }
    std::filesystem::permissions(machine.path(), std::filesystem::perms::owner_all);
    use_machine_folder(machine.path());
    // Keys, what is then to be seen and what is not, and more keys.
    using Keys = const char32_t*;
    using Path = std::u16string;
    const std::tuple<Path, Path, Keys, const char*, const char*, Keys, std::optional<Path>> cases[] = {
        {u"C:\\fw\\", u"", U"", "   ..\\", "sign.shx", U"↓↓⏎", u"C:\\fw\\new.bin"},
        {u"C:\\fw", u"C:\\fw\\newer.bin", U"", "Rabbit Files(*.BIN)", "all drives", U"⏎", u"C:\\fw\\newer.bin"},
        {u"C:\\fw\\missing\\deeper", u"", U"", "›alpha.BIN", "missing", U"⏎", u"C:\\fw\\alpha.BIN"},
        // A name in any case; the only one that begins so; any that exists.
        {u"C:\\fw", u"", U"NEW.bin", "›new.bin", "newer.bin", U"⏎", u"C:\\fw\\new.bin"},
        {u"C:\\fw", u"", U"al", "alpha.BIN", "new.bin", U"⏎", u"C:\\fw\\alpha.BIN"},
        {u"D:", u"", U"c:\\fw\\sign.shx", "sign.shx", "alpha.BIN", U"⏎", u"c:\\fw\\sign.shx"},
        // Several begin so: none is taken. A folder is opened, not answered.
        {u"C:\\fw", u"", U"ne⏎", "File not found", "?", U"⎋⎋", std::nullopt},
        {u"C:\\fw\\old", u"", U"\\fw⏎", "alpha.BIN", "File not found", U"⎋", std::nullopt},
        // Up to the drives, and back.
        {u"C:\\fw", u"", U"↓⇱⏎↓⇱⏎", "all drives", "new.bin", U"⏎⏎⏎", u"C:\\fw\\alpha.BIN"},
    };
    FakeScreen screen;
    TerminalToolkit toolkit(screen);
    const auto open = [&](const std::u16string& folder, const std::u16string& file, std::uint32_t flags) {
        return toolkit.open_file({folder, file, u"Rabbit Files(*.BIN)|*.BIN;*.B?", flags});
    };
    for (const auto& each : cases) {
        const auto& [folder, file, keys, shown, hidden, more_keys, answer] = each;
        screen.keys(keys);
        screen.look([&screen, picture_is = std::pair(shown, hidden)] {
            const bool right = screen.shows(picture_is.first) && !screen.shows(picture_is.second);
            EXPECT_TRUE(right) << text_picture(screen.canvas);
        });
        screen.keys(more_keys);
        EXPECT_EQ(open(folder, file, 0x81000), answer);
    }
    screen.keys(U"a.bin⏎");
    EXPECT_EQ(open(u"D:", u"", 0x80000), u"D:\\a.bin") << "without the flag it need not exist";
    // A click marks a row, a second one opens it; one on nothing does nothing.
    screen.look([&] {
        for (const Point at : {screen.find(U"new.bin"), Point{40, 17}, screen.find(U"new.bin")}) screen.click(at);
    });
    EXPECT_EQ(open(u"C:\\fw", u"", 0x81000), u"C:\\fw\\new.bin");
    EXPECT_FALSE(toolkit.ended());
}

}  // namespace
}  // namespace vex::platform::native::terminal
