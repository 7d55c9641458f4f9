// What a display can take, and which units stand behind it.
#include "core/narrow.h"
#include "core/unicode.h"
#include "support/mod_reg_access.h"
#include "support/text.h"
#include "update/display_facts.h"
#include "update/dlg_handle_sign_option.h"

namespace vex {
namespace {

constexpr double kSmallestVersion = 1.41;
constexpr std::int16_t kSearchTimeout = 1000;

/// 16-bit arithmetic: raises 6 when the result leaves the range.
std::int16_t checked(std::int32_t value) { return narrowed<std::int16_t>(value); }

}  // namespace

bool dlgHandleSignOption::DisplaySupportsFirmware() {
    const std::u16string version = dDisp->FirmwareVersion();
    if (is_kqs_controller(version)) return true;
    if (version_number(version) < kSmallestVersion) return false;
    if (dDisp->ConnectionType() != host::kNetwork) return true;

    ShowStatus(u"Checking if Display Type and Connection support firmware download!");
    const std::u16string address = dDisp->NetworkAddress();
    const double host = host_number(address);
    finder_->set_SearchTimeout(kSearchTimeout);
    // Just the display's own host number. The boxes found set the kind of box before the call returns.
    finder_->FindBoxes(address, host, host);
    const bool enable_xport =
        to_upper(ReadHostSetting(services_, u"Brivola3", u"Settings", u"EnableXPort", u"FALSE")) == u"TRUE";
    if (sLANBoxType == u"UDS" || sLANBoxType == u"MSS") return true;
    return enable_xport;
}

void dlgHandleSignOption::FindXPort_BoxFound(std::u16string_view description) {
    // The last box reported wins.
    sLANBoxType = lan_box_type(description);
}

void dlgHandleSignOption::CheckMasterSlaves() {
    const std::u16string sign_ids = dDisp->SignIDs();
    if (sign_ids.empty()) return;
    ShowStatus(u"Checking for Master/Slaves");
    lblStatus.refresh();
    for (const std::u16string& piece : split(sign_ids, u',')) {
        const std::int16_t master = to_int16(piece);
        iDisplayIDs.push_back(master);
        lblID.set_caption(piece);
        if (bCancelled) return;
        const std::int16_t count = GetSlaveCount(master);
        // Kept: a cancel during the count still lets this master's slaves be listed.
        for (std::int32_t slave = 1; slave <= count; ++slave) iDisplayIDs.push_back(checked(master + slave));
    }
}

std::int16_t dlgHandleSignOption::GetSlaveCount(std::int16_t id) {
    transmission_->set_SignID(id);
    const host::HostSignInfo info = transmission_->GetSignInfo();
    if (!info.HasSlaves()) return 0;
    // The units of a grid less the master itself, each operation in 16 bits.
    const std::int16_t rows = checked(info.SlaveCountY() + 1);
    const std::int16_t columns = checked(info.SlaveCountX() + 1);
    return checked(checked(rows * columns) - 1);
}

}  // namespace vex
