// The simulated host's class library, called late as any client calls it.
#include <gtest/gtest.h>

#include <sstream>

#include "core/unicode.h"
#include "platform/native/machine.h"
#include "simulator/automation.h"
#include "simulator/class_library.h"
#include "simulator/native/native_session.h"
#include "tests/shared/temporary_folder.h"

namespace vex::sim {
namespace {

class ObjectsTest : public testing::Test {
protected:
    ObjectsTest() {
        platform::native::use_machine_folder(folder_.path());
        CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
        classes_.emplace(host_);
    }
    ~ObjectsTest() override {
        classes_.reset();
        CoUninitialize();
        EXPECT_EQ(host_.lifetime.objects(), 0);
    }

    test::TemporaryFolder folder_;
    std::ostringstream out_;
    Trace trace_{out_, false};
    NativeMachine machine_;
    Host host_{trace_, machine_};
    std::optional<HostClasses> classes_;
};

/// Nothing is converted: an argument is of the declared kind, or it is refused with its place.
TEST_F(ObjectsTest, ArgumentsAreOfTheirKind) {
    const auto list = create_object(u"vexBrivolaClasses4.HostDisplayList");
    const auto connection = create_object(u"vexBrivolaClasses4.HostConnection");
    const auto control = create_object(u"vexDTCon4.vexDispTrans");
    com::Bstr place(u"D:\\a");
    const auto by_reference = com::Variant::text_reference(place.put_reference());
    const struct {
        IDispatch* object;
        std::u16string member;
        std::initializer_list<com::Variant> arguments;
        const char16_t* wrong;
        WORD flags = DISPATCH_METHOD;
    } cases[] = {
        {list.get(), u"FindDisplay", {}, u"1 is missing"},
        {connection.get(), u"ComPort", {by_reference}, u"1 is of another type than declared", DISPATCH_PROPERTYPUT},
        {control.get(), u"OpenConnection", {com::Variant::object(connection.get())},
         u"1 is of another type than declared"},
    };
    for (const auto& bad : cases) {
        try {
            call_late(*bad.object, bad.member, bad.arguments, bad.flags);
            ADD_FAILURE() << to_utf8(bad.member);
        } catch (const RuntimeError& error) {
            EXPECT_EQ(error.number(), kTypeMismatch);
            EXPECT_EQ(to_utf8(error.description()), to_utf8(bad.member + u": argument " + bad.wrong));
        }
    }
}

}  // namespace
}  // namespace vex::sim
