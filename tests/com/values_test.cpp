// Automation strings and values, and identities as text.
#include <gtest/gtest.h>

#include <string>

#include "com/bstr.h"
#include "com/variant.h"
#include "tests/com/counted_object.h"

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
    if constexpr (sizeof(std::size_t) > sizeof(UINT)) {
        const std::u16string_view too_long(u"a", static_cast<std::size_t>((std::uint64_t{1} << 32) + 1));
        EXPECT_THROW(allocate_bstr(too_long), std::bad_alloc) << "and no part of a text";
    }
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

TEST(AutomationValue, ClearingReleasesWhatItHolds) {
    {
        const auto object = make_object<CountedObject>();
        Variant value = Variant::object(object.get());
        VARIANT* const raw = value.put();
        EXPECT_EQ(raw->vt, VT_EMPTY);
    }
    EXPECT_TRUE(test_module().can_unload());
}

TEST(AutomationValue, CopiesAreIndependentOfTheirSource) {
    {
        const auto object = make_object<CountedObject>();
        Variant text = Variant::text(std::u16string(u"x\0y", 3));
        Variant reference = Variant::object(object.get());
        Variant copy;
        ASSERT_EQ(VariantCopy(&copy.get(), &text.get()), S_OK);
        EXPECT_NE(copy.get().bstrVal, text.get().bstrVal);
        text.put();
        EXPECT_EQ(view(copy.get().bstrVal), std::u16string(u"x\0y", 3));
        ASSERT_EQ(VariantCopy(&copy.get(), &reference.get()), S_OK);
        ASSERT_EQ(VariantCopy(&copy.get(), &copy.get()), S_OK);
        EXPECT_EQ(copy.get().pdispVal, object.get());
    }
    EXPECT_TRUE(test_module().can_unload());
}

TEST(AutomationValue, ReferencesAreCopiedAsReferencesAndNeverFreed) {
    const Bstr text(u"mine");
    BSTR place = text.get();
    {
        const Variant reference = Variant::text_reference(&place);
        const Variant copy = reference;
        EXPECT_EQ(copy.type(), VT_BYREF | VT_BSTR);
        EXPECT_EQ(copy.get().pbstrVal, &place);
    }
    EXPECT_EQ(view(place), u"mine");
}

TEST(AutomationValue, FollowingAReferenceCopiesWhatItPointsAt) {
    SHORT number = 7;
    VARIANT reference{};
    reference.vt = VT_BYREF | VT_I2;
    reference.piVal = &number;
    VARIANT nested{};
    nested.vt = VT_BYREF | VT_VARIANT;
    nested.pvarVal = &reference;
    Variant value;
    ASSERT_EQ(VariantCopyInd(&value.get(), &nested), S_OK) << "a reference to a value that is a reference";
    number = 8;
    EXPECT_EQ(value.type(), VT_I2);
    EXPECT_EQ(value.get().iVal, 7);

    Bstr text(u"text");
    BSTR raw = text.get();
    Variant by_reference = Variant::text_reference(&raw);
    ASSERT_EQ(VariantCopyInd(&by_reference.get(), &by_reference.get()), S_OK) << "in place";
    EXPECT_EQ(view(by_reference.get().bstrVal), u"text");
    EXPECT_NE(by_reference.get().bstrVal, raw);
}

}  // namespace
}  // namespace vex::com
