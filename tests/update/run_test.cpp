// The update run: its rows, from load to the last retry, and what is refused while it works.
#include "update/dlg_disp_updater.h"

#include "tests/shared/notebook.h"

namespace vex::test {
namespace {

class Run : public RecordedFixture {
protected:
    Run() {
        display({{"ConnectionType", u"1"}, {"SignIDs", u"7"}});
        notebook.omitted = {"dlgHandleSignOption", "vexDispTrans", "vexLANBoxFinder2", "HostConnection"};
        // Displays are told apart by the place of their names.
        host.during["HostDisplayList.FindDisplay"] = [this](DISPPARAMS& given) {
            const std::u16string_view name = com::view(*given.rgvarg[0].pbstrVal);
            host.answers["HostDisplayList.FindDisplay"] = com::Variant::int32(name.empty() ? 0 : name[0] - u'A');
        };
        host.during["HostDisplayList.SelectDisplay"] = [this](DISPPARAMS& given) { current = given.rgvarg[0].lVal; };
    }

    void press(forms::MouseButton button, float y) {
        screen.acts.push_back([button, y](forms::Form& form) {
            form.raise_mouse_down(*form.find("lstvDisplayStatus"), button, 1, y);
        });
    }

    std::int32_t current = -1;
    dlgDispUpdater run{services};
};

TEST_F(Run, WorksThroughTheDisplaysUntilOneIsCancelledAndRetriesAnyRow) {
    run.sDisplays = u"A,B,C,D";
    // The second display does not open, the third one is cancelled.
    host.during["vexDispTrans.OpenConnection"] = [this](DISPPARAMS&) {
        host.answers["vexDispTrans.OpenConnection"] = com::Variant::boolean(current != 1);
    };
    host.during["vexDispTrans.ResetAndClear"] = [this](DISPPARAMS&) {
        // Nobody presses, closes or starts anything meanwhile.
        screen.bottom().raise_close_request();
        screen.bottom().raise_close_request(forms::UnloadMode::system);
        screen.bottom().raise_mouse_down(*screen.bottom().find("lstvDisplayStatus"), forms::MouseButton::right, 1, 300);
        screen.bottom().raise_activate();
        if (current == 2) screen.at_pump = [](forms::Form& form) { form.raise_click(*form.find("cmdCancel")); };
        host.raise("vexDispTrans", u"Resetting");
    };
    screen.acts = {[this](forms::Form& form) {
        notebook.line("", "-- at rest");
        form.raise_activate();
        host.during.erase("vexDispTrans.ResetAndClear");
    }};
    using enum forms::MouseButton;
    press(right, 270);   // the edge of the first row
    press(left, 271);
    press(right, 780);   // between the second and the third
    press(left, 1300);   // below the last
    press(right, 269);
    press(right, 526);   // in the second, which fails again
    screen.acts.push_back([](forms::Form& form) { form.raise_click(*form.find("cmdClose")); });
    run.show_modal();
    EXPECT_TRUE(run.loaded()) << "Close hides it";
    EXPECT_EQ(notebook.take(), log(R"(
HostDisplayList new OpenDisplayFile(&"Displays.dat")
open dlgDispUpdater
lstvDisplayStatus[0] "A" key "" tag "A" "Not Updated" icon "Not Updated"
lstvDisplayStatus[1] "B" key "" tag "B" "Not Updated" icon "Not Updated"
lstvDisplayStatus[2] "C" key "" tag "C" "Not Updated" icon "Not Updated"
lstvDisplayStatus[3] "D" key "" tag "D" "Not Updated" icon "Not Updated"
set cmdClose=off
HostDisplayList FindDisplay(&"A") SelectDisplay(I4 0)
lstvDisplayStatus[0] "Updating - " text 64FF64 cell 64FF64 icon "Updating"
lstvDisplayStatus[0] "Updated - " icon "Updated"
HostDisplayList FindDisplay(&"B") SelectDisplay(I4 1)
lstvDisplayStatus[1] "Updating - " text 64FF64 cell 64FF64 icon "Updating"
lstvDisplayStatus[1] "FAILED - Unable to open connection to display!" text 0000FF cell 0000FF icon "FAILED"
HostDisplayList FindDisplay(&"C") SelectDisplay(I4 2)
lstvDisplayStatus[2] "Updating - " text 64FF64 cell 64FF64 icon "Updating"
ask "Verify Cancellation" "Are you sure you want to cancel?" yes/no
lstvDisplayStatus[2] "Cancelled - " text 0000FF cell 0000FF icon "Cancelled"
set cmdClose=on
-- at rest
menu mnuPopup: Retry!
set lstvDisplayStatus=0
menu mnuPopup: Retry!
HostDisplayList FindDisplay(&"A") SelectDisplay(I4 0)
lstvDisplayStatus[0] "Updating - " icon "Updating"
lstvDisplayStatus[0] "Updated - " icon "Updated"
set lstvDisplayStatus=3
menu mnuPopup: Retry!
HostDisplayList FindDisplay(&"D") SelectDisplay(I4 3)
lstvDisplayStatus[3] "Updating - " text 64FF64 cell 64FF64 icon "Updating"
lstvDisplayStatus[3] "Updated - " icon "Updated"
set lstvDisplayStatus=1
menu mnuPopup: Retry!
HostDisplayList FindDisplay(&"B") SelectDisplay(I4 1)
lstvDisplayStatus[1] "Updating - " text 64FF64 cell 64FF64 icon "Updating"
lstvDisplayStatus[1] "FAILED - Unable to open connection to display!" text 0000FF cell 0000FF icon "FAILED"
close dlgDispUpdater
)"));
}

}  // namespace
}  // namespace vex::test
