// The simulated host's class library, called late as any client calls it.
#include <gtest/gtest.h>

#include "simulator/class_library.h"
#include "tests/shared/error_of.h"
#include "tests/simulator/host_fixture.h"

namespace vex::sim {
namespace {

class ObjectsTest : public HostFixture {
protected:
    static com::Variant open(IDispatch& list) {
        return call_late(list, u"OpenDisplayFile", {com::Variant::text(u"Displays.dat")});
    }
    static std::int32_t find(IDispatch& list, std::u16string_view name) {
        return call_late(list, u"FindDisplay", {com::Variant::text(name)}).get().lVal;
    }
    static void select(IDispatch& list, std::int32_t handle) {
        call_late(list, u"SelectDisplay", {com::Variant::int32(handle)});
    }
    static std::u16string name(IDispatch& list) { return text_of(call_late(list, u"displayname")); }
};

TEST_F(ObjectsTest, DisplayListMakesOneDisplayCurrent) {
    add_display(u"A");
    add_display(u"B", u"COM2", u"1,20");
    const auto list = create_object(u"vexBrivolaClasses4.HostDisplayList");
    // Nothing is open: there is nothing to tell.
    EXPECT_EQ(name(*list), u"");
    EXPECT_EQ(find(*list, u"A"), 0);
    open(*list);
    EXPECT_EQ(name(*list), u"A");
    select(*list, find(*list, u"B"));
    EXPECT_EQ(text_of(call_late(*list, u"SignIDs")), u"1,20");
    EXPECT_EQ(call_late(*list, u"ConnectionType").get().iVal, 1);
    // What is not known leaves the current one as it is.
    for (const std::int32_t handle : {find(*list, u"b"), 0, -1, 3, 1 << 30}) select(*list, handle);
    EXPECT_EQ(name(*list), u"B");
    // Names come by reference, too, and stay as they were.
    com::Bstr text(u"A");
    const auto handle = call_late(*list, u"FindDisplay", {com::Variant::text_reference(text.put_reference())});
    EXPECT_EQ(handle.get().lVal, 1);
    EXPECT_EQ(text.str(), u"A");
}

TEST_F(ObjectsTest, AreNotAggregated) {
    const auto list = create_object(u"vexBrivolaClasses4.HostDisplayList");
    com::ComPtr<IUnknown> inner;
    EXPECT_EQ(
        CoCreateInstance(kHostDisplayPickerClass, list.get(), CLSCTX_INPROC_SERVER, IID_IUnknown, inner.put_void()),
        CLASS_E_NOAGGREGATION);
}

TEST_F(ObjectsTest, DisplayFileThatIsMissingOrDamagedLeavesTheOpenOne) {
    add_display(u"A");
    const auto list = create_object(u"vexBrivolaClasses4.HostDisplayList");
    open(*list);
    EXPECT_EQ(test::error_of([&] { call_late(*list, u"OpenDisplayFile", {com::Variant::text(u"Other.dat")}); }), 53);
    folder_.write("Displays.dat", "# Brivola displays, version 1\ndisplay A prot=1\n");
    EXPECT_EQ(test::error_of([&] { open(*list); }), 321);
    EXPECT_EQ(name(*list), u"A");
}

TEST_F(ObjectsTest, WrongCallsGetTheUsualErrors) {
    const auto list = create_object(u"vexBrivolaClasses4.HostDisplayList");
    EXPECT_EQ(test::error_of([&] { call_late(*list, u"NoSuchMember"); }), kMemberNotSupported);
    EXPECT_EQ(test::error_of([&] { call_late(*list, u"FindDisplay"); }), kWrongArgumentCount);
    EXPECT_EQ(test::error_of([&] { call_late(*list, u"ComPort", {com::Variant::int16(1)}); }), kWrongArgumentCount);
    EXPECT_EQ(test::error_of([&] { call_late(*list, u"SelectDisplay", {com::Variant::text(u"one")}); }), kTypeMismatch);
    EXPECT_EQ(test::error_of([&] { call_late(*list, u"SelectDisplay", {com::Variant::real(1e12)}); }), kOverflow);
    // Arguments are converted where they can be.
    call_late(*list, u"SelectDisplay", {com::Variant::text(u"1")});
    const auto connection = create_object(u"vexBrivolaClasses4.HostConnection");
    // Its settings are write-only.
    EXPECT_EQ(test::error_of([&] { call_late(*connection, u"ComPort"); }), kMemberNotSupported);

    DISPID member = 0;
    LPOLESTR names[2] = {const_cast<LPOLESTR>(reinterpret_cast<const OLECHAR*>(u"ComPort")), nullptr};
    DISPID ids[2] = {};
    EXPECT_EQ(list->GetIDsOfNames(IID_NULL, names, 1, 0, &member), S_OK);
    EXPECT_EQ(list->GetIDsOfNames(IID_NULL, names, 2, 0, ids), DISP_E_UNKNOWNNAME);
    EXPECT_EQ(ids[0], member);
    DISPPARAMS none = {};
    EXPECT_EQ(list->Invoke(member, IID_IUnknown, 0, DISPATCH_PROPERTYGET, &none, nullptr, nullptr, nullptr),
              DISP_E_UNKNOWNINTERFACE);
    EXPECT_EQ(list->Invoke(member, IID_NULL, 0, DISPATCH_PROPERTYPUT, &none, nullptr, nullptr, nullptr),
              DISP_E_MEMBERNOTFOUND);
    EXPECT_EQ(list->Invoke(member, IID_NULL, 0, DISPATCH_PROPERTYGET, &none, nullptr, nullptr, nullptr), S_OK);
}

}  // namespace
}  // namespace vex::sim
