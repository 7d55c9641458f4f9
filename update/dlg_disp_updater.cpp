// The update run.
#include "update/dlg_disp_updater.h"

#include <utility>

#include "support/text.h"
#include "update/dlg_handle_sign_option.h"

namespace vex {
namespace {

// The status words; each is also the key of its icon.
constexpr char16_t kNotUpdated[] = u"Not Updated";
constexpr char16_t kUpdating[] = u"Updating";
constexpr char16_t kUpdated[] = u"Updated";
constexpr char16_t kCancelled[] = u"Cancelled";
constexpr char16_t kFailed[] = u"FAILED";

constexpr forms::Color kOkColor = forms::rgb(100, 255, 100);
constexpr std::size_t kStatusColumn = 0;

}  // namespace

dlgDispUpdater::dlgDispUpdater(const Services& services)
    : Form(services.toolkit, {.name = "dlgDispUpdater", .caption = u"Display Control", .width = 5325, .height = 3195}),
      services_(services),
      imgUpdate{{kUpdating, "UPDATING"},
                {kNotUpdated, "NOTUPDATED"},
                {kUpdated, "UPDATED"},
                {kFailed, "FAILED"},
                {kCancelled, "CANCELLED"}},
      mnuPopup{
          .name = "mnuPopup",
          .caption = u"Popup",
          .items = {{.name = "mnuPopupRetry", .caption = u"Retry!", .on_click = [this] { mnuPopupRetry_Click(); }}}} {
    lstvDisplayStatus.columns = {{u"Display Name", 1335}, {u"Update Status", 3555}};
    lstvDisplayStatus.small_icons = &imgUpdate;
    lay_out({
        {.control = lstvDisplayStatus, .name = "lstvDisplayStatus", .at = {180, 45, 4950, 2610}, .tab_index = 1,
         .accessible_name = u"Displays and their update status"},
        {.control = cmdClose, .name = "cmdClose", .at = {2055, 2715, 1215, 375}, .text = u"Close", .tab_index = 0,
         .font = {u"MS Sans Serif", 9.75, true}},
    });
    cmdClose.is_default = true;
    cmdClose.is_cancel = true;
    cmdClose.on_click = [this] { hide(); };
    lstvDisplayStatus.on_mouse_down = [this](forms::MouseButton button, float, float y) {
        lstvDisplayStatus_MouseDown(button, y);
    };
}

void dlgDispUpdater::Form_Load() {
    FillStatusList();
    if (!displays_) displays_.emplace();
    displays_->OpenDisplayFile(host::kDisplayFile);
}

void dlgDispUpdater::Form_Activate() {
    if (std::exchange(started_, true)) return;
    UpdateAllDisplays();
}

void dlgDispUpdater::Form_QueryUnload(bool& cancel, forms::UnloadMode /*mode*/) {
    // The button's state tells that a run is in progress; nothing may close the dialog then.
    cancel = !cmdClose.enabled();
}

void dlgDispUpdater::FillStatusList() {
    display_names_ = split(sDisplays, u',');
    lstvDisplayStatus.clear();
    for (const std::u16string& name : display_names_) {
        const std::size_t row = lstvDisplayStatus.add_row({}, name, kNotUpdated);
        lstvDisplayStatus.set_sub_item(row, kStatusColumn, kNotUpdated);
        lstvDisplayStatus.set_tag(row, name);
        lstvDisplayStatus.set_row_color(row, forms::kBlack);
    }
}

void dlgDispUpdater::UpdateAllDisplays() {
    DisableClose();
    for (std::size_t row = 0; row < display_names_.size(); ++row) {
        SelectDisplay(display_names_[row]);
        UpdateDisplay(row);
        if (stop_) break;
    }
    EnableClose();
}

void dlgDispUpdater::SelectDisplay(const std::u16string& name) {
    displays_->SelectDisplay(displays_->FindDisplay(name));
}

void dlgDispUpdater::UpdateDisplay(std::size_t row) {
    dlgHandleSignOption session(services_);
    session.sFirmwareFilename = sFirmFile;
    session.bJustResetSign = bJustReset;
    session.bIsTQ1 = bIsTQ1;
    session.bUseExternalApp = bUseExternalApp;
    session.dDisp = &*displays_;
    SetDisplayStatus(row, kUpdating, true, {});
    const bool updated = session.ProcessOptions();
    const std::u16string last_status = session.LastStatus();
    if (updated) {
        SetDisplayStatus(row, kUpdated, true, {});
    } else if (session.bCancelled) {
        SetDisplayStatus(row, kCancelled, false, {});
        stop_ = true;
    } else {
        SetDisplayStatus(row, kFailed, false, last_status);
    }
    session.unload();
}

void dlgDispUpdater::SetDisplayStatus(std::size_t row, std::u16string_view word, bool ok,
                                      std::u16string_view detail) noexcept {
    try {
        // The separator stands even before an empty detail.
        std::u16string text(word);
        text.append(u" - ").append(detail);
        const forms::Color color = ok ? kOkColor : forms::kRed;
        lstvDisplayStatus.set_sub_item(row, kStatusColumn, std::move(text));
        lstvDisplayStatus.set_row_color(row, color);
        lstvDisplayStatus.set_cell_color(row, kStatusColumn, color);
        lstvDisplayStatus.set_icon(row, word);
    } catch (const std::exception&) {
        // A row that cannot be shown must not stop the run.
    }
}

void dlgDispUpdater::DisableClose() { cmdClose.set_enabled(false); }

void dlgDispUpdater::EnableClose() { cmdClose.set_enabled(true); }

void dlgDispUpdater::lstvDisplayStatus_MouseDown(forms::MouseButton button, float y) {
    if (!cmdClose.enabled()) return;
    // Kept: a press on the very edge of a row selects nothing, one below the last row selects the last row,
    // and one above the first leaves the selection; the menu appears in each case.
    const std::size_t count = lstvDisplayStatus.row_count();
    for (std::size_t row = 0; row < count; ++row) {
        if (static_cast<float>(lstvDisplayStatus.row_top(row)) >= y) continue;
        if (row + 1 == count || static_cast<float>(lstvDisplayStatus.row_top(row + 1)) > y)
            lstvDisplayStatus.select(row);
    }
    if (button == forms::MouseButton::right) toolkit().pop_up_menu(*this, mnuPopup);
}

void dlgDispUpdater::mnuPopupRetry_Click() {
    const auto row = lstvDisplayStatus.selected();
    if (!row) return;
    // Kept: neither Close nor the stop of a cancelled run is touched, nor any other row.
    SelectDisplay(lstvDisplayStatus.rows()[*row].text);
    UpdateDisplay(*row);
}

}  // namespace vex
