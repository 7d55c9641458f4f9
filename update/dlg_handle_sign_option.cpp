// One display's update session: the dialog, its driver, the connection and cancellation.
#include "update/dlg_handle_sign_option.h"

#include <utility>

#include "core/runtime_error.h"
#include "support/text.h"

namespace vex {
namespace {

constexpr forms::Font kSmall{u"Tahoma", 9};
constexpr forms::Font kStatus{u"Tahoma", 14.25};
constexpr forms::Font kButton{u"Tahoma", 8.25};

/// Runs one step whose error must not keep the next from running.
template <class Step>
void ignoring_errors(Step&& step) noexcept {
    try {
        step();
    } catch (...) {
    }
}

}  // namespace

dlgHandleSignOption::dlgHandleSignOption(const Services& services)
    : Form(services.toolkit, {.name = "dlgHandleSignOption", .width = 6030, .height = 1830, .font = kButton}),
      services_(services) {
    lay_out({
        {.control = lblStatus, .name = "lblStatus", .at = {45, 45, 5640, 1200}, .font = kStatus},
        {.control = cmdCancel, .name = "cmdCancel", .at = {2190, 1305, 1350, 375}, .text = u"Cancel", .tab_index = 0,
         .font = kButton},
        {.control = lblDisplayName, .name = "lblDisplayName", .at = {0, 1470, 2070, 255}, .font = kSmall},
        {.control = lblID, .name = "lblID", .at = {4395, 1470, 1635, 330}, .font = kSmall},
        {.control = vexDispTrans1, .name = "vexDispTrans1"},
        {.control = FindXPort, .name = "FindXPort"},
        {.control = Winsock1, .name = "Winsock1"},
    });
    cmdCancel.is_cancel = true;
    cmdCancel.on_click = [this] { cmdCancel_Click(); };
}

void dlgHandleSignOption::Form_Load() {
    transmission_.emplace(services_.module,
                          [this](std::u16string_view text) { vexDispTrans1_StatusMessage(text); });
    finder_.emplace(services_.module, [this](std::u16string_view text) { FindXPort_BoxFound(text); });
    vexDispTrans1.object = transmission_->object();
    FindXPort.object = finder_->object();
}

void dlgHandleSignOption::Form_Activate() {
    if (std::exchange(started_, true)) return;
    // Hiding the dialog closes the control, which may raise its event once more; that must not replace the last
    // status of the work. So the event is disconnected at the end of this scope, also when an error ends it.
    const auto status_event = transmission_->take_status_event();
    HandleSignOptionRoutine();
    hide();
}

void dlgHandleSignOption::Form_QueryUnload(bool& cancel, forms::UnloadMode mode) {
    // The user leaves through Cancel, which asks and tells the display; program and system may close.
    cancel = mode == forms::UnloadMode::control_menu;
}

bool dlgHandleSignOption::ProcessOptions() {
    show_modal();
    return !bCancelled && bResult;
}

void dlgHandleSignOption::HandleSignOptionRoutine() {
    if (sFirmwareFilename.empty()) bJustResetSign = true;
    lblDisplayName.set_caption(dDisp->DisplayName());

    // Always the first check, in every mode; its verdict counts for TQ-1 firmware only.
    const bool supported = DisplaySupportsFirmware();
    if (!supported && bIsTQ1 && !bJustResetSign) {
        ShowStatus(u"Display does not support firmware upgrade!");
        bResult = false;
        return;
    }
    if (!OpenDisplayConnection()) {
        ShowStatus(u"Unable to open connection to display!");
        bResult = false;
        return;
    }
    if (bIsTQ1 && !bJustResetSign) {
        // Both close the connection themselves and address the first display ID only.
        bResult = bUseExternalApp ? RunExternalDownloader() : LoadFirmwareWithFlashLoader();
        return;
    }
    CheckMasterSlaves();
    // A cancel has closed the connection already.
    if (bCancelled) return;
    bResult = bJustResetSign ? ResetAndClearDisplays() : DownloadFirmwareToDisplays();
    CloseDisplayConnection();
}

bool dlgHandleSignOption::OpenDisplayConnection() {
    ShowStatus(u"Preparing to Open Connection to Display!");
    host::HostConnection connection;
    switch (dDisp->ConnectionType()) {
        case host::kSerialCable:
            connection.set_ConnectionType(host::kSerialCable);
            connection.set_ComBaud(dDisp->ComBaud());
            connection.set_ComPort(dDisp->ComPort());
            break;
        case host::kModem:
            connection.set_ConnectionType(host::kModem);
            connection.set_ComBaud(dDisp->ComBaud());
            connection.set_ComPort(dDisp->ComPort());
            connection.set_PhoneNumber(dDisp->PhoneNumber());
            break;
        default:
            connection.set_ConnectionType(host::kNetwork);
            connection.set_NetworkAddress(dDisp->NetworkAddress());
            connection.set_ComPort(dDisp->ComPort());
            break;
    }
    const std::vector<std::u16string> ids = split(dDisp->SignIDs(), u',');
    if (ids.empty()) throw RuntimeError(kSubscriptOutOfRange);
    connection.set_SignID(to_int16(ids.front()));
    const bool opened = transmission_->OpenConnection(connection);
    ShowStatus(opened ? u"Connection Open" : u"Connection Problem");
    return opened;
}

void dlgHandleSignOption::CloseDisplayConnection() {
    ShowStatus(u"Closing Connection");
    transmission_->CloseConnection();
}

void dlgHandleSignOption::vexDispTrans1_StatusMessage(std::u16string_view text) {
    // The only place where the session yields: a click on Cancel during an operation is served here.
    services_.toolkit.pump_messages();
    ShowStatus(std::u16string(text));
    services_.toolkit.pump_messages();
}

void dlgHandleSignOption::cmdCancel_Click() {
    auto answer = forms::MessageAnswer::no;
    ignoring_errors([&] {
        answer = services_.toolkit.message_box(
            {u"Verify Cancellation", u"Are you sure you want to cancel?", forms::MessageButtons::yes_no});
    });
    if (answer != forms::MessageAnswer::yes) return;
    // The running operation is expected to return false; each loop over units looks at the flag.
    bCancelled = true;
    ignoring_errors([this] { transmission_->CancelTransmission(); });
    ignoring_errors([this] { transmission_->CloseConnection(); });
}

}  // namespace vex
