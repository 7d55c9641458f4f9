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

/// The host's display list, as far as the wizard's first page asks for it: opens any file, or fails with an error.
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
class WizardLife : public PluginTest, public forms::ScriptedUser {
protected:
    void SetUp() override {
        PluginTest::SetUp();
        platform::native::set_desktop(&toolkit_);
        cookie_ = com::offer_class(host_objects, kDisplayListClass,
                                   [this] { return com::make_object<DisplayList>(host_failure); });
        entry = make(kEntryClass).detach();
    }
    void TearDown() override {
        if (entry != nullptr) entry->Release();
        EXPECT_EQ(host_objects.objects(), 1) << "only the host's own factory is left";
        CoRevokeClassObject(cookie_);
        platform::native::set_desktop(nullptr);
        PluginTest::TearDown();
    }
    void form_opened(forms::Form& form) override { on_open(form); }
    void form_closed(forms::Form& form) override { closed.push_back(form.name()); }

    Outcome start() { return call(*entry, kStartPlugin, DISPATCH_METHOD); }

    std::function<void(forms::Form&)> on_open;
    std::vector<std::string> closed;
    IDispatch* entry = nullptr;
    int host_failure = 0;

private:
    forms::ScriptedToolkit toolkit_{*this};
    DWORD cookie_ = 0;
};

TEST_F(WizardLife, TheLibraryStaysWhileAWizardIsOpenEvenWithoutItsObject) {
    on_open = [this](forms::Form&) {
        EXPECT_EQ(can_unload_now(), S_FALSE);
        std::exchange(entry, nullptr)->Release();
        EXPECT_EQ(can_unload_now(), S_FALSE) << "the wizard is still open";
    };
    EXPECT_EQ(start().result, S_OK);
    EXPECT_EQ(closed, std::vector<std::string>{"dlgFirmwareWizard"});
    EXPECT_EQ(can_unload_now(), S_OK);
}

TEST_F(WizardLife, ErrorsInsideReachTheHostWithTheirNumber) {
    on_open = [this](forms::Form& form) {
        host_failure = 55;
        form.raise_click(*form.find("cmdNext"));
    };
    const Outcome outcome = start();
    EXPECT_EQ(outcome.code, error_code(55)) << "raised by a handler";
    EXPECT_EQ(outcome.description, u"The file is damaged");
    EXPECT_EQ(closed.size(), 1U);
}

TEST_F(WizardLife, TheAboutBoxIsOneForAllWizards) {
    int boxes = 0;
    on_open = [&](forms::Form& form) {
        if (form.name() == "frmAbout") {
            if (boxes++ == 0) form.find("cmdOK")->set_caption(u"seen");
            EXPECT_EQ(form.find("cmdOK")->caption(), u"seen");
        } else {
            for (int i = 0; i < 2; ++i) form.raise_click(*form.find("cmdAbout"));
        }
    };
    EXPECT_EQ(start().result, S_OK);
    EXPECT_EQ(call(*entry, kStartFrameFeature, DISPATCH_METHOD, {com::Variant::object_reference(&entry)}).result, S_OK);
    EXPECT_EQ(boxes, 4);
}

}  // namespace
}  // namespace vex::plugin_test
