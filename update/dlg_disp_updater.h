// The update run: works through the chosen displays one after another and keeps a status row for each.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "forms/form.h"
#include "host/class_library.h"
#include "support/services.h"

namespace vex {

/// Made anew for every run, given its inputs and shown modally; the run starts by itself. Used on the
/// apartment's thread. Errors of the host's display collection or of a session are raised by `show_modal`.
class dlgDispUpdater final : public forms::Form {
public:
    /// `services` must outlive the dialog.
    explicit dlgDispUpdater(const Services& services);

    // Inputs, set before the dialog is shown.

    /// Names of the displays, joined by ",", in the order in which they are worked through.
    std::u16string sDisplays;
    /// Full path of the firmware file; unused when only resetting.
    std::u16string sFirmFile;
    bool bJustReset = false;
    /// Whether the first display is a TQ-1 board. Kept: it is handed to the session of every display.
    bool bIsTQ1 = false;
    /// Whether TQ-1 firmware is loaded by the external download tool.
    bool bUseExternalApp = false;

private:
    void Form_Load() override;
    void Form_Activate() override;
    void Form_QueryUnload(bool& cancel, forms::UnloadMode mode) override;

    void lstvDisplayStatus_MouseDown(forms::MouseButton button, float y);
    void mnuPopupRetry_Click();

    void FillStatusList();
    void UpdateAllDisplays();
    /// Rows count from 0.
    void UpdateDisplay(std::size_t row);
    /// Errors end it silently, the row then stays partly updated.
    void SetDisplayStatus(std::size_t row, std::u16string_view word, bool ok, std::u16string_view detail) noexcept;
    void DisableClose();
    void EnableClose();
    void SelectDisplay(const std::u16string& name);

    const Services& services_;
    std::vector<std::u16string> display_names_;
    /// Keeps the current display that each session works on.
    std::optional<host::HostDisplayList> displays_;
    /// Set when a display was cancelled, never cleared.
    bool stop_ = false;
    bool started_ = false;

    forms::ImageList imgUpdate;
    forms::ListView lstvDisplayStatus;
    forms::Button cmdClose;
    forms::Menu mnuPopup;
};

}  // namespace vex
