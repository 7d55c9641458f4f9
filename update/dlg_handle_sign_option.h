// One display's update session: checks it, connects, resets and clears or loads firmware, and closes.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "forms/form.h"
#include "host/class_library.h"
#include "host/display_transmission.h"
#include "support/services.h"

namespace vex {

/// Made anew for every display; its first activation does all the work and ends the modal display. Used on
/// the apartment's thread. Errors of the host are not caught: `ProcessOptions` raises them.
class dlgHandleSignOption final : public forms::Form {
public:
    /// `services` must outlive the session.
    explicit dlgHandleSignOption(const Services& services);

    // Inputs, set before `ProcessOptions`; `bCancelled` is the result read after a failure.

    /// Full path of the firmware file; empty: only reset.
    std::u16string sFirmwareFilename;
    bool bJustResetSign = false;
    /// The collection whose current display is processed; not owned, outlives the session.
    host::HostDisplayList* dDisp = nullptr;
    bool bCancelled = false;
    bool bIsTQ1 = false;
    bool bUseExternalApp = false;

    /// Shows the session modally; true when the display was updated and nobody cancelled.
    bool ProcessOptions();
    /// The text of the status line.
    std::u16string LastStatus() const { return lblStatus.caption(); }
    /// The whole procedure for one display; called by the first activation.
    void HandleSignOptionRoutine();

private:
    void Form_Load() override;
    void Form_Activate() override;
    void Form_QueryUnload(bool& cancel, forms::UnloadMode mode) override;

    void cmdCancel_Click();
    void vexDispTrans1_StatusMessage(std::u16string_view text);
    void FindXPort_BoxFound(std::u16string_view description);

    bool OpenDisplayConnection();
    void CloseDisplayConnection();

    // Capability and connection checks.
    bool DisplaySupportsFirmware();
    void CheckMasterSlaves();
    std::int16_t GetSlaveCount(std::int16_t id);

    // The work steps; each answers whether it succeeded.
    bool ResetAndClearDisplays();
    bool DownloadFirmwareToDisplays();
    bool LoadFirmwareWithFlashLoader();
    bool RunExternalDownloader();

    void ShowStatus(std::u16string text) { lblStatus.set_caption(std::move(text)); }

    const Services& services_;
    /// Master IDs as written, each followed by its slaves' IDs.
    std::vector<std::int16_t> iDisplayIDs;
    bool bResult = false;
    /// "XPort", "UDS", "MSS", "Unknown", or empty when no box was reported.
    std::u16string sLANBoxType;
    bool started_ = false;

    forms::Label lblDisplayName, lblID, lblStatus;
    forms::Button cmdCancel;
    forms::HostControl vexDispTrans1, FindXPort;
    /// Stands on the dialog unused; it is never created, so that a computer without it does no harm.
    forms::HostControl Winsock1;

    // The live controls behind vexDispTrans1 and FindXPort, from load on.
    std::optional<host::DisplayTransmission> transmission_;
    std::optional<host::LanBoxFinder> finder_;
};

}  // namespace vex
