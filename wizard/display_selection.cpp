// Step 3 of the wizard: which displays, and what the selection allows to do next.
#include "core/runtime_error.h"
#include "support/mod_reg_access.h"
#include "support/text.h"
#include "wizard/dlg_firmware_wizard.h"
#include "wizard/mod_sign_type.h"

namespace vex {

void dlgFirmwareWizard::cmdChooseDisplay_Click() {
    ChooseDisplays();
    RefreshStep();
}

void dlgFirmwareWizard::ChooseDisplays() {
    const std::u16string answer = host::HostDisplayPicker().ShowDisplayPicker();
    const host::HostDisplayList displays;
    displays.OpenDisplayFile(host::kDisplayFile);
    if (answer.empty()) return;

    lstvDisplays.clear();
    for (const std::u16string& name : split(answer, u',')) {
        displays.SelectDisplay(displays.FindDisplay(name));
        // Filters nothing: mixed boards are taken here and reported by the sign-type warning. A code that is
        // no 16-bit number still stops the choice.
        static_cast<void>(IsTQ1SignType(to_int16(displays.SignTypeCode())));
        AddDisplayRow(name, displays);
    }
    SelectedDisplays = answer;
}

void dlgFirmwareWizard::AddDisplayRow(const std::u16string& name, const host::HostDisplayList& displays) {
    const std::size_t row = lstvDisplays.add_row(name, name);
    lstvDisplays.set_sub_item(row, kTypeColumn, displays.DisplayTypeName());
    lstvDisplays.set_sub_item(row, kPortColumn, displays.ComPort());
    lstvDisplays.set_sub_item(row, kBaudColumn, displays.ComBaud());
    lstvDisplays.set_sub_item(row, kPhoneColumn, displays.PhoneNumber());
}

void dlgFirmwareWizard::UpdateStepButtons(std::int32_t step) {
    // On every refresh, whatever the step: a display file that cannot be opened is noticed at once.
    const host::HostDisplayList displays;
    displays.OpenDisplayFile(host::kDisplayFile);
    switch (step) {
        case 1:
            cmdBack.set_enabled(false);
            cmdNext.set_enabled(CanEnterStep(2));
            break;
        case 2:
            cmdBack.set_enabled(true);
            cmdNext.set_enabled(CanEnterStep(2));
            break;
        case 3:
            PreselectRecentDisplay(displays);
            cmdBack.set_enabled(true);
            cmdNext.set_enabled(CanEnterStep(4));
            break;
        case 4:
            cmdBack.set_enabled(true);
            cmdNext.set_enabled(CanEnterStep(5));
            break;
        case 5:
            cmdBack.set_enabled(true);
            cmdNext.set_enabled(false);
            break;
        default:
            break;
    }
    cmdFinish.set_enabled(CanEnterStep(5));
}

void dlgFirmwareWizard::PreselectRecentDisplay(const host::HostDisplayList& displays) {
    if (lstvDisplays.row_count() != 0) return;
    const std::u16string recent = ReadHostSetting(services_, u"BrivolaLite", u"RecentDisplay", u"LastOpened", u"");
    if (recent.empty()) return;
    displays.SelectDisplay(displays.FindDisplay(recent));
    const bool load = opLoadFirmware.value();
    // Converted even when only resetting: a display with a damaged code is not taken silently.
    const std::int16_t code = to_int16(displays.SignTypeCode());
    const std::int16_t connection = displays.ConnectionType();
    if (load && connection == host::kNetwork && IsTQ1SignType(code)) return;
    AddDisplayRow(recent, displays);
    SelectedDisplays = recent;
}

bool dlgFirmwareWizard::CanEnterStep(std::int32_t step) {
    const bool any_rows = lstvDisplays.row_count() > 0;
    const bool just_reset = optJustResetDisplays.value();
    switch (step) {
        case 1:
        case 2:
        case 3:
            return true;
        case 4: {
            // Kept: when only resetting, the way on is open even while the list is empty; Finish is not.
            const bool mismatch = CheckSignTypes();
            return (any_rows && !mismatch) || just_reset;
        }
        case 5: {
            const bool mismatch = CheckSignTypes();
            const bool file_given = !txtFirmwareFilename.text().empty();
            return any_rows && (file_given || just_reset) && !mismatch;
        }
        default:
            return false;
    }
}

}  // namespace vex
