// Life and copies of automation values.
#include <gtest/gtest.h>

#include "com/variant.h"
#include "tests/com/counted_object.h"

namespace vex::com {
namespace {

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
