// The simulated host's class library, called late as any client calls it.
#include <gtest/gtest.h>

#include "core/unicode.h"

#include "simulator/controls.h"
#include "tests/shared/error_of.h"
#include "tests/simulator/host_fixture.h"

namespace vex::sim {
namespace {

class ObjectsTest : public HostFixture {
protected:
    static com::Variant open(IDispatch& list) {
        return call_late(list, u"OpenDisplayFile", {Text(u"Displays.dat")});
    }
    static std::int32_t find(IDispatch& list, std::u16string_view name) {
        return call_late(list, u"FindDisplay", {Text(name)}).get().lVal;
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
}

TEST_F(ObjectsTest, DisplayFileThatIsMissingOrDamagedLeavesTheOpenOne) {
    add_display(u"A");
    const auto list = create_object(u"vexBrivolaClasses4.HostDisplayList");
    open(*list);
    EXPECT_EQ(test::error_of([&] { call_late(*list, u"OpenDisplayFile", {Text(u"Other.dat")}); }), 53);
    folder_.write("Displays.dat", "# Brivola displays, version 1\ndisplay A prot=1\n");
    EXPECT_EQ(test::error_of([&] { open(*list); }), 321);
    EXPECT_EQ(name(*list), u"A");
}

TEST_F(ObjectsTest, WrongCallsGetTheUsualErrors) {
    const auto list = create_object(u"vexBrivolaClasses4.HostDisplayList");
    EXPECT_EQ(test::error_of([&] { call_late(*list, u"NoSuchMember"); }), kMemberNotSupported);
    EXPECT_EQ(test::error_of([&] { call_late(*list, u"ComPort", {com::Variant::int16(1)}); }), kWrongArgumentCount);
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
    ASSERT_EQ(connection->GetIDsOfNames(IID_NULL, names, 1, 0, ids), S_OK);
    EXPECT_EQ(connection->Invoke(ids[0], IID_NULL, 0, DISPATCH_PROPERTYPUT, &none, nullptr, nullptr, nullptr),
              DISP_E_PARAMNOTFOUND) << "the value is a named argument";
    EXPECT_EQ(list->Invoke(member, IID_NULL, 0, DISPATCH_PROPERTYGET, &none, nullptr, nullptr, nullptr), S_OK);
}

/// Nothing is converted: an argument is of the declared kind, or it is refused with its place.
TEST_F(ObjectsTest, ArgumentsAreOfTheirKind) {
    const auto list = create_object(u"vexBrivolaClasses4.HostDisplayList");
    const auto connection = create_object(u"vexBrivolaClasses4.HostConnection");
    const auto control = create_object(u"vexDTCon4.vexDispTrans");
    const auto finder = create_object(u"vexLantronixControls2.vexLANBoxFinder2");
    const Text by_reference(u"D:\\a");
    const auto text = com::Variant::text(u"D:\\a");
    const auto word = com::Variant::int16(1);
    const auto number = com::Variant::int32(1);
    const auto real = com::Variant::real(1);
    const struct {
        IDispatch* object;
        std::u16string member;
        std::initializer_list<com::Variant> arguments;
        const char16_t* wrong;
        WORD flags = DISPATCH_METHOD;
    } cases[] = {
        {list.get(), u"OpenDisplayFile", {text}, u"argument 1 is text, not text by reference"},
        {list.get(), u"FindDisplay", {}, u"argument 1 is missing, not text by reference"},
        {list.get(), u"SelectDisplay", {word}, u"argument 1 is I2, not I4"},
        {connection.get(), u"ComPort", {by_reference}, u"argument 1 is text by reference, not text",
         DISPATCH_PROPERTYPUT},
        {control.get(), u"OpenConnection", {com::Variant::object(connection.get())},
         u"argument 1 is object, not object by reference"},
        {control.get(), u"OpenConnection", {com::Variant::object_reference(nullptr)},
         u"argument 1 is object by reference, not object by reference"},
        {control.get(), u"SignID", {number}, u"argument 1 is I4, not I2", DISPATCH_PROPERTYPUT},
        {control.get(), u"DownloadFirmwareWithLoader", {by_reference}, u"argument 2 is missing, not text"},
        {control.get(), u"DownloadFirmwareWithLoader", {by_reference, by_reference},
         u"argument 2 is text by reference, not text"},
        {finder.get(), u"FindBoxes", {by_reference, real, real}, u"argument 1 is text by reference, not text"},
        {finder.get(), u"FindBoxes", {text, real, number}, u"argument 3 is I4, not R8"},
    };
    for (const auto& bad : cases) {
        try {
            call_late(*bad.object, bad.member, bad.arguments, bad.flags);
            ADD_FAILURE() << to_utf8(bad.member);
        } catch (const RuntimeError& error) {
            EXPECT_EQ(error.number(), kTypeMismatch);
            EXPECT_EQ(to_utf8(error.description()), to_utf8(bad.member + u": " + bad.wrong));
        }
    }
}

TEST_F(ObjectsTest, ScriptedErrorsComeInPlaceOfTheCall) {
    add_display(u"A");
    add_display(u"B");
    const auto list = create_object(u"vexBrivolaClasses4.HostDisplayList");
    open(*list);
    for (const char16_t* member : {u"FindDisplay", u"ComPort", u"vexLANBoxFinder2", u"SearchTimeout", u"FindBoxes"})
        host_.links.add_fault({u"B", std::nullopt, parse_operation(member)}, FaultKind::raise);
    EXPECT_EQ(find(*list, u"A"), 1);
    EXPECT_EQ(test::error_of([&] { find(*list, u"B"); }), kAutomationError);
    const auto finder = create_object(u"vexLantronixControls2.vexLANBoxFinder2");
    select(*list, 2);
    EXPECT_EQ(test::error_of([&] { call_late(*list, u"ComPort"); }), kAutomationError);
    EXPECT_EQ(test::error_of([] { create_object(u"vexLantronixControls2.vexLANBoxFinder2"); }), kCannotCreateObject);
    const auto number = com::Variant::real(1);
    EXPECT_EQ(test::error_of([&] { call_late(*finder, u"FindBoxes", {com::Variant::text(u"a"), number, number}); }),
              kAutomationError);
    EXPECT_EQ(test::error_of([&] { put(*finder, u"SearchTimeout", com::Variant::int16(1)); }),
              kAutomationError);
}

}  // namespace
}  // namespace vex::sim
