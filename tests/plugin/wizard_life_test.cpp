// Native only, for its recorded screen: wizards opened by the entry class, and what keeps the library loaded meanwhile.
#include "platform/native/machine.h"
#include "tests/plugin/plugin_fixture.h"
#include "tests/shared/notebook.h"

namespace vex::plugin_test {
namespace {

class WizardLife : public PluginTest {
protected:
    void SetUp() override {
        PluginTest::SetUp();
        platform::native::set_desktop(&screen);
        entry = make(kEntryClass).detach();
    }
    void TearDown() override {
        if (entry != nullptr) entry->Release();
        platform::native::set_desktop(nullptr);
        PluginTest::TearDown();
    }

    Outcome start() { return call(*entry, kStartPlugin, DISPATCH_METHOD); }

    test::Notebook notebook;
    test::Screen screen{notebook};
    test::RecordedHost host{notebook};
    IDispatch* entry = nullptr;
};

TEST_F(WizardLife, TheLibraryStaysWhileAWizardIsOpenEvenWithoutItsObject) {
    screen.acts = {[this](forms::Form&) {
        EXPECT_EQ(can_unload_now(), S_FALSE);
        std::exchange(entry, nullptr)->Release();
        EXPECT_EQ(can_unload_now(), S_FALSE) << "the wizard is still open";
    }};
    EXPECT_EQ(start().result, S_OK);
    EXPECT_TRUE(notebook.take().ends_with("close dlgFirmwareWizard\n"));
    EXPECT_EQ(can_unload_now(), S_OK);
}

TEST_F(WizardLife, TheAboutBoxIsOneForAllWizards) {
    int boxes = 0;
    const auto open_twice = [](forms::Form& wizard) {
        for (int i = 0; i < 2; ++i) wizard.raise_click(*wizard.find("cmdAbout"));
    };
    const auto look = [&boxes](forms::Form& about) {
        if (boxes++ == 0) about.find("cmdOK")->set_caption(u"seen");
        EXPECT_EQ(about.find("cmdOK")->caption(), u"seen");
        about.raise_click(*about.find("cmdOK"));
    };
    screen.acts = {open_twice, look, look};
    EXPECT_EQ(start().result, S_OK);
    screen.acts = {open_twice, look, look};
    EXPECT_EQ(call(*entry, kStartFrameFeature, DISPATCH_METHOD, {com::Variant::object_reference(&entry)}).result, S_OK);
    EXPECT_EQ(boxes, 4);
}

}  // namespace
}  // namespace vex::plugin_test
