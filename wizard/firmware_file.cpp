// Step 4 of the wizard: which firmware file.
#include "core/unicode.h"
#include "support/file_routines.h"
#include "support/mod_reg_access.h"
#include "wizard/dlg_firmware_wizard.h"

namespace vex {
namespace {

/// A kind of firmware file as the Browse button offers and checks it.
struct FirmwareFileType {
    const char16_t* filter;
    /// Upper case; no dot is required before it.
    std::u16string_view ending;
    const char16_t* refusal;
};

constexpr FirmwareFileType kRabbit{u"Rabbit Files(*.BIN)|*.BIN", u"BIN", u"Not a valid Rabbit file!"};
constexpr FirmwareFileType kMotorola{u"Motorola SHX Files(*.SHX)|*.SHX", u"SHX", u"Not a valid SHX file!"};

/// Explorer style, and the file must exist.
constexpr std::uint32_t kOpenFlags = 0x81000;

bool has_ending(const std::u16string& name, std::u16string_view ending) {
    return name.size() >= ending.size() &&
           equal_ignoring_case(std::u16string_view(name).substr(name.size() - ending.size()), ending);
}

}  // namespace

void dlgFirmwareWizard::cmdFirmwareBrowse_Click() {
    const std::u16string installation = host_installation_folder(services_);
    dlgCommon.InitDir =
        ReadHostSetting(services_, u"Brivola3", u"Firmware", u"LastFilePath", installation + u"bin\\Firmware");
    const FirmwareFileType& type = IsFirstDisplayTQ1() ? kRabbit : kMotorola;
    dlgCommon.Filter = type.filter;
    dlgCommon.Flags = kOpenFlags;
    dlgCommon.ShowOpen();

    // Kept: a cancel leaves the dialog's last name, which is then checked again against the type of now.
    if (!dlgCommon.FileName.empty()) {
        if (has_ending(dlgCommon.FileName, type.ending)) {
            txtFirmwareFilename.set_text(dlgCommon.FileName);
        } else {
            services_.toolkit.message_box({kApplicationTitle, type.refusal, forms::MessageButtons::ok});
        }
    }
    // Kept: written whatever happened, so a cancel before any choice empties the remembered folder.
    WriteHostSetting(services_, u"Brivola3", u"Firmware", u"LastFilePath", GetPathOnly(dlgCommon.FileName));
    RefreshStep();
}

}  // namespace vex
