// A simulated host without a plug-in: its classes are registered, its trace is kept.
#pragma once

#include <gtest/gtest.h>

#include <sstream>
#include <string>

#include "com/com.h"
#include "platform/native/machine.h"
#include "simulator/host.h"
#include "simulator/class_library.h"
#include "simulator/automation.h"
#include "simulator/native/native_session.h"
#include "tests/shared/temporary_folder.h"

namespace vex::sim {

class HostFixture : public testing::Test {
protected:
    HostFixture() {
        platform::native::use_machine_folder(folder_.path());
        CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
        classes_.emplace(host_);
        host_.display_file = folder_.path() / "Displays.dat";
    }
    ~HostFixture() override {
        classes_.reset();
        CoUninitialize();
        EXPECT_EQ(host_.lifetime.objects(), 0);
    }

    void add_display(std::u16string name, std::u16string port = u"COM1", std::u16string ids = u"1") {
        Display display;
        display.name = std::move(name);
        display.port = std::move(port);
        display.ids = std::move(ids);
        host_.put_display(display);
    }

    test::TemporaryFolder folder_;
    std::ostringstream out_;
    Trace trace_{out_, false};
    NativeMachine machine_;
    Host host_{trace_, machine_};
    std::optional<HostClasses> classes_;
};

/// A text by reference; its owner.
class Text {
public:
    explicit Text(std::u16string_view text) : text_(text) {}
    // NOLINTNEXTLINE(google-explicit-constructor)
    operator com::Variant() const { return com::Variant::text_reference(text_.put_reference()); }

private:
    mutable com::Bstr text_;
};

inline void put(IDispatch& object, const std::u16string& name, const com::Variant& value) {
    call_late(object, name, {value}, DISPATCH_PROPERTYPUT);
}

/// The text of a result.
inline std::u16string text_of(const com::Variant& value) {
    EXPECT_EQ(value.type(), VT_BSTR);
    return value.type() == VT_BSTR ? std::u16string(com::view(value.get().bstrVal)) : std::u16string();
}

inline bool is_true(const com::Variant& value) {
    EXPECT_EQ(value.type(), VT_BOOL);
    return value.get().boolVal != VARIANT_FALSE;
}

}  // namespace vex::sim
