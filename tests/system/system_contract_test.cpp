// What the file, process and code page seams promise. Runs unchanged against each side.
#include <gtest/gtest.h>

#include "core/runtime_error.h"
#include "platform/library.h"
#include "platform/system.h"
#include "tests/system/side.h"

namespace vex::test {
namespace {

using platform::ordinary_file_exists;

class SystemContract : public testing::Test {
protected:
    const std::u16string folder = test_folder();
};

TEST_F(SystemContract, OrdinaryFileIsFoundHoweverItsPathIsWritten) {
    make_folder(folder + u"BIN");
    make_file(folder + u"BIN\\Loader B.bin");
    EXPECT_TRUE(ordinary_file_exists(folder + u"BIN\\Loader B.bin"));
    EXPECT_TRUE(ordinary_file_exists(folder + u"bin\\LOADER b.BIN"));
    EXPECT_TRUE(ordinary_file_exists(folder + u"\\BIN\\\\Loader B.bin"));
    EXPECT_FALSE(ordinary_file_exists(folder + u"BIN\\Loader B.bin\\"));
}

TEST_F(SystemContract, PathWithBlanksIsOneProgram) {
    // What a command line that is guessed at would start instead.
    make_program(folder + u"serial.exe");
    make_program(folder + u"serial tool.exe");
    EXPECT_TRUE(platform::start_program(folder + u"\\serial tool.exe")) << "doubled separators do not matter";
    EXPECT_TRUE(has_run(folder + u"serial tool.exe"));
    EXPECT_FALSE(has_run(folder + u"serial.exe"));
}

TEST_F(SystemContract, OnlyFullPathsOfOrdinaryFilesLeadAnywhere) {
    make_program(folder + u"tool.exe");
    make_folder(folder + u"folder.exe");
    const std::u16string below_drive = folder.substr(3) + u"tool.exe";
    // None of these may be completed from a current folder or a search path, and none may end at its null.
    for (const std::u16string& path :
         {std::u16string(u"tool.exe"), below_drive, folder.substr(0, 2) + below_drive, folder + u"tool.exe" + u'\0',
          folder + u"tool.exe" + u'\0' + u".bin", folder + u"tool", folder + u"*.exe", folder + u"tool.exe -x",
          u"\"" + folder + u"tool.exe\"", folder + u"folder.exe", folder + u"missing.exe",
          folder + u"missing\\tool.exe", folder + u"a<b>.exe", std::u16string(), std::u16string(u"\\"),
          std::u16string(u"C:"), std::u16string(40'000, u'x')}) {
        EXPECT_FALSE(ordinary_file_exists(path));
        EXPECT_FALSE(platform::start_program(path));
    }
    EXPECT_FALSE(has_run(folder + u"tool.exe"));
    make_file(folder + u"hidden.bin");
    hide_file(folder + u"hidden.bin");
    EXPECT_FALSE(ordinary_file_exists(folder + u"hidden.bin"));
}

TEST_F(SystemContract, LibrariesAreNotLookedForOnASearchPath) {
    for (const char* name : {"libm.so.6", "version.dll"}) EXPECT_THROW(platform::Library{name}, RuntimeError) << name;
}

TEST_F(SystemContract, TextGoesThroughTheCodePageAndBack) {
    using platform::from_ansi, platform::to_ansi;
    EXPECT_EQ(to_ansi(u""), "");
    EXPECT_EQ(from_ansi(""), u"");
    const std::u16string_view with_null(u"C:\\a\0b", 6);
    EXPECT_EQ(from_ansi(to_ansi(with_null)), with_null);
    if (!is_windows_1252()) GTEST_SKIP() << "another code page";
    EXPECT_EQ(to_ansi(u"M\u00FCller \u20AC"), "M\xFCller \x80");
    EXPECT_EQ(from_ansi("M\xFCller \x80"), u"M\u00FCller \u20AC");
    EXPECT_EQ(to_ansi(u"\u5317"), "?");
    EXPECT_EQ(to_ansi(u"C:\uFF3CBIN"), "C:?BIN") << "what looks like a separator is none";
}

}  // namespace
}  // namespace vex::test
