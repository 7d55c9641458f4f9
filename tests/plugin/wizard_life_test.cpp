// Native only, for its scripted user: wizards opened by the entry class, and what keeps the library loaded
// meanwhile.
#include <functional>

#include "forms/scripted_toolkit.h"
#include "platform/native/machine.h"
#include "tests/plugin/plugin_fixture.h"
#include "tests/shared/notebook.h"

namespace vex::plugin_test {
namespace {

/// Does what the test says on each dialog that opens, then closes it.
class WizardLife : public PluginTest, public forms::ScriptedUser {
protected:
    void SetUp() override {
        PluginTest::SetUp();
        platform::native::set_desktop(&toolkit_);
        entry = make(kEntryClass).detach();
    }
    void TearDown() override {
        if (entry != nullptr) entry->Release();
        platform::native::set_desktop(nullptr);
        PluginTest::TearDown();
    }
    void form_opened(forms::Form& form) override { on_open(form); }
    void form_closed(forms::Form& form) override { closed.push_back(form.name()); }

    Outcome start() { return call(*entry, kStartPlugin, DISPATCH_METHOD); }

    std::function<void(forms::Form&)> on_open;
    std::vector<std::string> closed;
    IDispatch* entry = nullptr;

private:
    test::Notebook notebook_;
    test::RecordedHost host_{notebook_};
    forms::ScriptedToolkit toolkit_{*this};
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
