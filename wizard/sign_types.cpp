// What the types of the chosen displays mean for the firmware: its file format, the external tool, and
// whether they may be loaded together.
#include "wizard/dlg_firmware_wizard.h"
#include "wizard/mod_sign_type.h"

namespace vex {

bool dlgFirmwareWizard::IsFirstDisplayTQ1() const {
    if (lstvDisplays.row_count() == 0) return false;
    // Only the first row counts, however many there are.
    return is_tq1_type_text(lstvDisplays.sub_item(0, kTypeColumn));
}

bool dlgFirmwareWizard::CheckSignTypes() {
    // Kept: when only resetting, the format caption and the external-tool option stay as they are.
    if (optJustResetDisplays.value()) {
        lblSignMismatchWarning.set_visible(false);
        return false;
    }
    const bool tq1 = IsFirstDisplayTQ1();
    lblFirmwareFileNotification.set_caption(tq1 ? u"This file will be in Rabbit BIN format."
                                                : u"This file will be in Motorola SHX format.");
    // Hidden, it keeps its tick.
    chkUseExternalApp.set_visible(tq1);

    // The whole type text counts, not only the board family.
    bool mismatch = false;
    for (std::size_t row = 1; row < lstvDisplays.row_count() && !mismatch; ++row) {
        mismatch = lstvDisplays.sub_item(row - 1, kTypeColumn) != lstvDisplays.sub_item(row, kTypeColumn);
    }
    lblSignMismatchWarning.set_visible(mismatch);
    return mismatch;
}

}  // namespace vex
