// The folder of a path.
#include "support/file_routines.h"

#include <gtest/gtest.h>

#include "core/runtime_error.h"

namespace vex {
namespace {

TEST(FileRoutines, GetPathOnlyKeepsWhatIsBeforeTheLastBackslash) {
    EXPECT_EQ(GetPathOnly(u"C:\\Firmware\\new.bin"), u"C:\\Firmware");
    EXPECT_EQ(GetPathOnly(u"C:\\new.bin"), u"C:");
    EXPECT_EQ(GetPathOnly(u"C:\\Firmware\\"), u"C:\\Firmware");
    EXPECT_EQ(GetPathOnly(u"C:\\a/b"), u"C:");
    EXPECT_EQ(GetPathOnly(u"new.bin"), u"new.bin");
    EXPECT_EQ(GetPathOnly(u""), u"");
    EXPECT_EQ(GetPathOnly(u"\\new.bin"), u"");
}

TEST(FileRoutines, GetPathOnlyCountsIn16Bits) {
    const std::u16string last_position = std::u16string(32766, u'x') + u'\\';
    EXPECT_EQ(GetPathOnly(last_position).size(), 32766U);
    EXPECT_EQ(GetPathOnly(last_position + std::u16string(40000, u'y')).size(), 32766U) << "only the position counts";
    EXPECT_EQ(GetPathOnly(std::u16string(32767, u'x')).size(), 32767U);
    for (const std::u16string& path : {u'x' + last_position, std::u16string(32768, u'x')}) {
        try {
            GetPathOnly(path);
            ADD_FAILURE() << "no overflow";
        } catch (const RuntimeError& error) {
            EXPECT_EQ(error.number(), kOverflow);
        }
    }
}

}  // namespace
}  // namespace vex
