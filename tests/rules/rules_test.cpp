// The small rules of the wizard and the session, at their edges.
#include <gtest/gtest.h>

#include <string>

#include "support/file_routines.h"
#include "support/text.h"
#include "update/display_facts.h"
#include "tests/shared/error_of.h"
#include "wizard/mod_sign_type.h"

namespace vex {
namespace {

using test::error_of;

TEST(Rules, VersionNumbersReadOneCharacterBeforeTheLastPoint) {
    const struct {
        const char16_t* text;
        double number;
    } cases[] = {{u"1.41", 1.41},    {u"1.40", 1.40}, {u"V1.5", 1.5},        {u"V2.10", 2.1}, {u"12.00", 2},
                 {u"10.9", 0.9},     {u"", 0},        {u"version", 0},       {u"V.5", 0},     {u"1.2.30", 2.3},
                 {u"9.5beta7", 9.5}, {u"1.", 1},      {u"TQ1 1.41 r2", 1.41}};
    for (const auto& one : cases) EXPECT_DOUBLE_EQ(version_number(one.text), one.number);
    EXPECT_FALSE(version_number(u"1.41") < 1.41);
    EXPECT_EQ(error_of([] { version_number(u".5"); }), kInvalidProcedureCall);
    EXPECT_TRUE(is_kqs_controller(u"kqS") && is_kqs_controller(u"KQSomething"));
    EXPECT_FALSE(is_kqs_controller(u"KQ") || is_kqs_controller(u" KQS"));
}

TEST(Rules, HostNumbersStandBehindTheLastPoint) {
    EXPECT_EQ(host_number(u"10.0.0.7"), 7);
    EXPECT_EQ(host_number(u"10.0.0."), 0);
    EXPECT_EQ(host_number(u"displays"), 0);
}

TEST(Rules, SplittingLosesNothing) {
    EXPECT_TRUE(split(u"", u',').empty());
    EXPECT_EQ(split(u",", u','), (std::vector<std::u16string>{u"", u""}));
    EXPECT_EQ(split(u" a,,b ", u','), (std::vector<std::u16string>{u" a", u"", u"b "}));
}

TEST(Rules, BoardFamiliesByTypeTextAndByCode) {
    EXPECT_TRUE(is_tq1_type_text(u"TQ-1 - Street") && is_tq1_type_text(u"tq-1 - "));
    for (const char16_t* text : {u"", u"TQ-1", u"TQ-1 -", u"TQ-1 -x", u" TQ-1 - ", u"TQ-1  - "})
        EXPECT_FALSE(is_tq1_type_text(text));
    for (std::int32_t code = INT16_MIN; code <= INT16_MAX; ++code) {
        EXPECT_EQ(IsTQ1SignType(static_cast<std::int16_t>(code)), code / 10 == 16) << code;
    }
}

TEST(Rules, LanBoxesAreToldByTheFirstWordOfThree) {
    const std::pair<const char16_t*, const char16_t*> cases[] = {
        {u"UDS before XPort", u"XPort"}, {u"MSS4 or UDS", u"UDS"}, {u"MSS", u"MSS"}, {u"xport uds mss", u"Unknown"}};
    for (const auto& [text, type] : cases) EXPECT_EQ(lan_box_type(text), type);
}

TEST(Rules, PathsEndBeforeTheirLastBackslash) {
    const std::pair<const char16_t*, const char16_t*> cases[] = {
        {u"C:\\fw\\new.bin", u"C:\\fw"}, {u"C:\\new.bin", u"C:"}, {u"C:\\fw\\", u"C:\\fw"},
        {u"fw/new.bin", u"fw/new.bin"},    {u"", u""},              {u"\\x", u""}};
    for (const auto& [path, folder] : cases) EXPECT_EQ(GetPathOnly(path), folder);
    // The position of the last backslash, and the length of a path without one, count in 16 bits.
    const std::u16string longest(32767, u'a');
    EXPECT_EQ(GetPathOnly(longest), longest);
    EXPECT_EQ(GetPathOnly(u"C:\\" + longest + longest), u"C:") << "what follows the last backslash may be long";
    EXPECT_EQ(GetPathOnly(longest.substr(1) + u"\\x").size(), 32766U);
    for (const std::u16string& path : {longest + u'a', longest + u"\\x"}) {
        EXPECT_EQ(error_of([&] { GetPathOnly(path); }), kOverflow);
    }
}

}  // namespace
}  // namespace vex
