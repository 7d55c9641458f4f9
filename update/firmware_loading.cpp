// The work steps of a session: resetting and clearing, and the ways of loading firmware.
#include "platform/system.h"
#include "support/mod_reg_access.h"
#include "support/text.h"
#include "update/dlg_handle_sign_option.h"

namespace vex {
namespace {

constexpr char16_t kLoader[] = u"BIN\\FIRMWARE\\SL-RCM2000B.BIN";
constexpr char16_t kLoaderBehindXPort[] = u"BIN\\FIRMWARE\\SL-RCM2000D.BIN";
/// Kept: with its leading backslash, so that the path holds a doubled one.
constexpr char16_t kDownloader[] = u"\\BIN\\FIRMWARE\\nvSerDownload.exe";

}  // namespace

// Both loops walk backwards on purpose: a master stays as it was until everything behind it succeeded.

bool dlgHandleSignOption::ResetAndClearDisplays() {
    bool result = false;
    for (auto id = iDisplayIDs.rbegin(); id != iDisplayIDs.rend(); ++id) {
        if (bCancelled) return false;
        transmission_->set_SignID(*id);
        lblID.set_caption(decimal_text(*id));
        result = transmission_->ResetAndClear();
        if (!result) return false;
    }
    return result;
}

bool dlgHandleSignOption::DownloadFirmwareToDisplays() {
    bool result = false;
    for (auto id = iDisplayIDs.rbegin(); id != iDisplayIDs.rend(); ++id) {
        if (bCancelled) return false;
        lblID.set_caption(decimal_text(*id));
        transmission_->set_SignID(*id);
        result = transmission_->DownloadFirmware(sFirmwareFilename);
        if (!result) return false;
    }
    return result;
}

bool dlgHandleSignOption::LoadFirmwareWithFlashLoader() {
    const std::u16string folder = host_installation_folder(services_);
    if (bCancelled) return false;
    transmission_->PrepareForFirmware();
    const std::u16string loader_name = sLANBoxType == u"XPort" ? kLoaderBehindXPort : kLoader;
    const std::u16string loader_path = folder + loader_name;
    bool result = false;
    if (platform::ordinary_file_exists(loader_path)) {
        result = transmission_->DownloadFirmwareWithLoader(sFirmwareFilename, loader_path);
    } else {
        ShowStatus(u"Flash Loader [" + loader_name + u"] not found");
    }
    transmission_->CloseConnection();
    return result;
}

bool dlgHandleSignOption::RunExternalDownloader() {
    const std::u16string folder = host_installation_folder(services_);
    if (bCancelled) return false;
    const bool result = transmission_->PrepareForFirmware();
    // Frees the port for the tool.
    transmission_->CloseConnection();
    const std::u16string tool = folder + kDownloader;
    if (platform::ordinary_file_exists(tool)) platform::start_program(tool);
    return result;
}

}  // namespace vex
