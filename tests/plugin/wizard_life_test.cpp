// Native only, for its scripted user: wizards opened by the entry class, and what keeps the library loaded
// meanwhile.
#include <functional>

#include "com/class_factory.h"
#include "forms/scripted_toolkit.h"
#include "platform/native/machine.h"
#include "tests/plugin/plugin_fixture.h"
#include "tests/shared/late_object.h"

namespace vex::plugin_test {
namespace {

constexpr CLSID kDisplayListClass = {0x2AF1D132, 0xAC50, 0x445B, {0xBE, 0x5B, 0x80, 0x59, 0xD3, 0x20, 0x64, 0x9C}};

com::ModuleLifetime host_objects;

/// The host's display list, as far as the wizard's first page asks for it: opens any file, or fails.
class DisplayList final : public test::LateObject<DisplayList> {
public:
    explicit DisplayList(const int& failure) : LateObject(host_objects), failure_(failure) {}
    HRESULT Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO* exception, UINT*) noexcept override {
        if (failure_ == 0) return S_OK;
        exception->scode = error_code(failure_);
        exception->bstrDescription = SysAllocString(u"The file is damaged");
        return DISP_E_EXCEPTION;
    }

private:
    const int& failure_;
};

/// Does what the test says on each dialog that opens, then closes it.
class User final : public forms::ScriptedUser {
public:
    std::function<void(forms::Form&)> on_open = [](forms::Form&) {};
    std::vector<std::string> opened;
    int closed = 0;

    void form_opened(forms::Form& form) override {
        opened.push_back(form.name());
        on_open(form);
    }
    void form_closed(forms::Form&) override { ++closed; }
};

class WizardLife : public PluginTest {
protected:
    void SetUp() override {
        PluginTest::SetUp();
        platform::native::set_desktop(&toolkit_);
        cookie_ = com::offer_class(host_objects, kDisplayListClass,
                                   [this] { return com::make_object<DisplayList>(host_failure_); });
    }
    void TearDown() override {
        CoRevokeClassObject(cookie_);
        platform::native::set_desktop(nullptr);
        EXPECT_TRUE(host_objects.can_unload()) << "an object of the host was left";
        PluginTest::TearDown();
    }

    User user_;
    forms::ScriptedToolkit toolkit_{user_};
    /// The error's number when the host's display file cannot be opened; 0: it can.
    int host_failure_ = 0;

private:
    DWORD cookie_ = 0;
};

TEST_F(WizardLife, TheLibraryStaysWhileAWizardIsOpenEvenWithoutItsObject) {
    IDispatch* entry = make(kEntryClass).detach();
    user_.on_open = [&entry](forms::Form&) {
        EXPECT_EQ(can_unload_now(), S_FALSE);
        entry->Release();
        entry = nullptr;
        EXPECT_EQ(can_unload_now(), S_FALSE) << "the wizard is still open";
    };
    EXPECT_EQ(call(*entry, kStartPlugin, DISPATCH_METHOD).result, S_OK);
    EXPECT_EQ(user_.opened, std::vector<std::string>{"dlgFirmwareWizard"});
    EXPECT_EQ(can_unload_now(), S_OK);
}

TEST_F(WizardLife, EachBeginsAnewAndLeavesNothing) {
    const auto entry = make(kEntryClass);
    user_.on_open = [](forms::Form& form) {
        const auto& pages = static_cast<forms::TabPages&>(*form.find("SSTab1"));
        EXPECT_EQ(pages.tab(), 0);
        form.raise_click(*form.find("cmdNext"));
        EXPECT_EQ(pages.tab(), 1);
    };
    IDispatch* frame = entry.get();
    for (int i = 0; i < 100; ++i) {
        EXPECT_EQ(call(*entry, kStartPlugin, DISPATCH_METHOD).result, S_OK);
        EXPECT_EQ(call(*entry, kStartFrameFeature, DISPATCH_METHOD, {com::Variant::object_reference(&frame)}).result,
                  S_OK);
    }
    EXPECT_EQ(user_.closed, 200);
    EXPECT_EQ(host_objects.objects(), 1) << "only the host's own factory is left";
}

TEST_F(WizardLife, ErrorsInsideReachTheHostWithTheirNumber) {
    const auto entry = make(kEntryClass);
    user_.on_open = [this](forms::Form& form) {
        host_failure_ = 55;
        form.raise_click(*form.find("cmdNext"));
    };
    const Outcome outcome = call(*entry, kStartPlugin, DISPATCH_METHOD);
    EXPECT_EQ(outcome.code, error_code(55)) << "raised by a handler";
    EXPECT_EQ(outcome.description, u"The file is damaged");
    EXPECT_EQ(user_.closed, 1);
}

TEST_F(WizardLife, TheAboutBoxIsOneForAllWizards) {
    const auto entry = make(kEntryClass);
    std::vector<const forms::Form*> boxes;
    user_.on_open = [&](forms::Form& form) {
        if (form.name() == "frmAbout") {
            EXPECT_FALSE(form.find("lblDescription")->caption().empty());
            boxes.push_back(&form);
            return;
        }
        for (int i = 0; i < 2; ++i) form.raise_click(*form.find("cmdAbout"));
    };
    for (int i = 0; i < 2; ++i) EXPECT_EQ(call(*entry, kStartPlugin, DISPATCH_METHOD).result, S_OK);
    EXPECT_EQ(boxes, std::vector(4, boxes.at(0)));
}

}  // namespace
}  // namespace vex::plugin_test
