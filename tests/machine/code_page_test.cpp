// The native ANSI code page.
#include "platform/native/code_page_1252.h"

#include <gtest/gtest.h>

#include <set>

namespace vex::platform::native {
namespace {

const CodePage1252 kCodePage;

TEST(CodePage1252, EveryByteSurvivesBothWays) {
    std::string bytes;
    for (int byte = 0; byte < 256; ++byte) bytes += static_cast<char>(byte);
    const std::u16string text = kCodePage.from_ansi(bytes);
    EXPECT_EQ(text.size(), 256U);
    EXPECT_EQ(std::set<char16_t>(text.begin(), text.end()).size(), 256U);
    EXPECT_EQ(kCodePage.to_ansi(text), bytes);
}

TEST(CodePage1252, CharactersStandWhereThePageHasThem) {
    EXPECT_EQ(kCodePage.to_ansi(u"Z\xFCrich \x20AC \x201Cx\x201D \x2122"), "Z\xFCrich \x80 \x93x\x94 \x99");
    EXPECT_EQ(kCodePage.from_ansi("\x8A\x9F\xA0\xFF"), u"\x0160\x0178\x00A0\x00FF");
}

TEST(CodePage1252, WhatThePageLacksBecomesAQuestionMarkForEachUnit) {
    EXPECT_EQ(kCodePage.to_ansi(u"a\x4E2D\x0101"
                                u"b\xD83D\xDE00\xFFFD"),
              "a??b???");
    EXPECT_EQ(kCodePage.to_ansi(u"\x0080"), "?") << "a control character whose byte is another character's";
}

}  // namespace
}  // namespace vex::platform::native
