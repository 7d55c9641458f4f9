// The end of the wizard: the external download tool's settings, and the hand-over to the update run.
#include "support/mod_reg_access.h"
#include "support/registry_routines.h"
#include "support/text.h"
#include "update/dlg_disp_updater.h"
#include "wizard/dlg_firmware_wizard.h"

namespace vex {

void dlgFirmwareWizard::FinishWizard() {
    // Whatever the options: also when only resetting, and when the tool was not asked for.
    if (IsFirstDisplayTQ1()) WriteDownloaderSettings();

    dlgDispUpdater updater(services_);
    updater.bIsTQ1 = IsFirstDisplayTQ1();
    updater.bJustReset = optJustResetDisplays.value();
    updater.sFirmFile = txtFirmwareFilename.text();
    updater.sDisplays = SelectedDisplays;
    updater.bUseExternalApp = chkUseExternalApp.value() == 1;
    updater.show_modal(this);
    updater.unload();
    unload();
}

void dlgFirmwareWizard::WriteDownloaderSettings() {
    RegistryRoutines registry(services_.registry);
    registry.set_hKey(platform::kHkeyCurrentUser);
    const std::u16string installation = host_installation_folder(services_);

    // One level at a time; what fails here fails silently, and the run starts anyway.
    registry.set_KeyRoot(u"Software");
    registry.CreateKey(u"Tarvex");
    registry.set_KeyRoot(u"Software\\Tarvex");
    registry.CreateKey(u"nvSerDownload");
    registry.set_KeyRoot(u"Software\\Tarvex\\nvSerDownload");
    registry.CreateKey(u"Settings");
    registry.set_KeyRoot(u"Software\\Tarvex\\nvSerDownload\\Settings");

    const auto write = [&registry](const char16_t* name, std::u16string text) {
        registry.SetRegistryValue(name, AutomationValue(std::move(text)), platform::kRegSz);
    };
    // The tool serves the first display only. What is not written keeps its value of an earlier run.
    const std::u16string& port = lstvDisplays.sub_item(0, kPortColumn);
    const std::u16string& baud = lstvDisplays.sub_item(0, kBaudColumn);
    write(u"RAM File", installation + u"BIN\\FIRMWARE\\SL-RCM2000B.BIN");
    write(u"ROM File", txtFirmwareFilename.text());
    if (port.starts_with(u"COM")) write(u"Com Port", port + u":");
    if (leading_number(baud) > 0) write(u"Com Baud", baud);
    write(u"Phone Number", lstvDisplays.sub_item(0, kPhoneColumn));
}

}  // namespace vex
