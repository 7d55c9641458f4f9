// Automation strings and identities as text.
#include <gtest/gtest.h>

#include <string>

#include "com/bstr.h"

namespace vex::com {
namespace {

TEST(AutomationString, KeepsEmbeddedNullsAndKnowsItsLength) {
    const std::u16string text(u"a\0b", 3);
    const Bstr string{text};
    EXPECT_EQ(SysStringLen(string.get()), 3U);
    EXPECT_EQ(string.str(), text);
    EXPECT_EQ(string.get()[3], 0) << "a null must follow, for those who count on one";
    EXPECT_EQ(reinterpret_cast<const std::uint32_t*>(string.get())[-1], 6U) << "the length in bytes stands before";
}

TEST(AutomationString, OfNothing) {
    EXPECT_EQ(SysStringLen(nullptr), 0U);
    EXPECT_EQ(view(nullptr), u"");
    SysFreeString(nullptr);
    EXPECT_EQ(SysAllocString(nullptr), nullptr);
    EXPECT_EQ(SysAllocStringLen(nullptr, 0xFFFFFFFFU), nullptr) << "more than memory holds";
    Bstr room;
    *room.put() = SysAllocStringLen(nullptr, 5);
    EXPECT_EQ(SysStringLen(room.get()), 5U);
    EXPECT_EQ(room.get()[5], 0);
}

std::u16string text_of(REFGUID guid, int room) {
    OLECHAR text[64] = {};
    const int length = StringFromGUID2(guid, text, room);
    return length == 0 ? std::u16string() : std::u16string(reinterpret_cast<const char16_t*>(text));
}

TEST(Identity, GoesToTextAndBack) {
    const GUID guid = {0x09D14609, 0x0E72, 0x4D6E, {0xA3, 0xB6, 0xD8, 0x40, 0x9C, 0x89, 0x77, 0x02}};
    const std::u16string text = text_of(guid, 39);
    EXPECT_EQ(text, u"{09D14609-0E72-4D6E-A3B6-D8409C897702}");
    for (const std::u16string& spelling : {text, std::u16string(u"{09d14609-0e72-4d6e-a3b6-d8409c897702}")}) {
        CLSID read{};
        EXPECT_EQ(CLSIDFromString(ole_text(spelling), &read), S_OK);
        EXPECT_TRUE(IsEqualGUID(read, guid));
    }
    EXPECT_EQ(text_of(guid, 38), u"") << "38 characters and no null do not fit";
}

TEST(Identity, RefusesWhatIsNone) {
    for (const std::u16string text :
         {u"{09D14609-0E72-4D6E-A3B6-D8409C89770}", u"{09D14609-0E72-4D6E-A3B6-D8409C897702",
          u"{09D14609-0E72-4D6E-A3B6-D8409C897702}x", u"{09D14609-0E72-4D6EA3B6-D8409C8977020}",
          u"{09D14609-0E72-4D6E-A3B6-D8409C89770G}"}) {
        CLSID read{};
        EXPECT_EQ(CLSIDFromString(ole_text(text), &read), CO_E_CLASSSTRING);
    }
}

}  // namespace
}  // namespace vex::com
