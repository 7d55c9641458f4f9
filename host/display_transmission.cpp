// The host's two controls, driven by dispatch id.
#include "host/display_transmission.h"

#include <utility>

namespace vex::host {
namespace {

constexpr DISPID dispatch_id(std::uint32_t id) noexcept { return static_cast<DISPID>(id); }

// The transmission control.
constexpr DISPID kPrepareForFirmware = dispatch_id(0x6003004E);
constexpr DISPID kGetSignInfo = dispatch_id(0x60030053);
constexpr DISPID kOpenConnection = dispatch_id(0x60030065);
constexpr DISPID kCloseConnection = dispatch_id(0x60030066);
constexpr DISPID kDownloadFirmware = dispatch_id(0x60030067);
constexpr DISPID kResetAndClear = dispatch_id(0x60030068);
constexpr DISPID kCancelTransmission = dispatch_id(0x60030069);
constexpr DISPID kDownloadFirmwareWithLoader = dispatch_id(0x600300B2);
constexpr DISPID kSignID = dispatch_id(0x68030001);

// The finder.
constexpr DISPID kSearchTimeout = dispatch_id(0x68030001);
constexpr DISPID kFindBoxes = dispatch_id(0x6003000A);

/// Where the handled event stands among the events of either control.
constexpr DISPID kEventPosition = 9;

}  // namespace

DisplayTransmission::DisplayTransmission(com::ModuleLifetime& module, EventConnection::Handler on_status_message)
    : control_(create_object(u"vexDTCon4.vexDispTrans")),
      status_(std::make_unique<EventConnection>(*control_.get(), u"StatusMessage", kEventPosition, module,
                                                std::move(on_status_message))) {}

bool DisplayTransmission::OpenConnection(HostConnection& connection) {
    IDispatch* object = connection.get();
    object->AddRef();
    const auto take_back = [&connection, &object] { connection.replace(com::ComPtr<IDispatch>::adopt(object)); };
    try {
        const bool opened = to_boolean(control_.call(kOpenConnection, {com::Variant::object_reference(&object)}));
        take_back();
        return opened;
    } catch (...) {
        take_back();
        throw;
    }
}

void DisplayTransmission::CloseConnection() { control_.call(kCloseConnection); }

void DisplayTransmission::set_SignID(std::int16_t id) { control_.set_property(kSignID, com::Variant::int16(id)); }

HostSignInfo DisplayTransmission::GetSignInfo() { return HostSignInfo(to_object(control_.call(kGetSignInfo))); }

bool DisplayTransmission::ResetAndClear() { return to_boolean(control_.call(kResetAndClear)); }

bool DisplayTransmission::PrepareForFirmware() { return to_boolean(control_.call(kPrepareForFirmware)); }

bool DisplayTransmission::DownloadFirmware(const std::u16string& firmware_path) {
    com::Bstr path(firmware_path);
    return to_boolean(control_.call(kDownloadFirmware, {com::Variant::text_reference(path.put_reference())}));
}

bool DisplayTransmission::DownloadFirmwareWithLoader(const std::u16string& firmware_path,
                                                     const std::u16string& loader_path) {
    com::Bstr path(firmware_path);
    return to_boolean(control_.call(kDownloadFirmwareWithLoader, {com::Variant::text_reference(path.put_reference()),
                                                                  com::Variant::text(loader_path)}));
}

void DisplayTransmission::CancelTransmission() { control_.call(kCancelTransmission); }

LanBoxFinder::LanBoxFinder(com::ModuleLifetime& module, EventConnection::Handler on_box_found)
    : control_(create_object(u"vexLantronixControls2.vexLANBoxFinder2")),
      boxes_(*control_.get(), u"BoxFound", kEventPosition, module, std::move(on_box_found)) {}

void LanBoxFinder::set_SearchTimeout(std::int16_t timeout) {
    control_.set_property(kSearchTimeout, com::Variant::int16(timeout));
}

void LanBoxFinder::FindBoxes(const std::u16string& address, double first_host, double last_host) {
    control_.call(kFindBoxes,
                  {com::Variant::text(address), com::Variant::real(first_host), com::Variant::real(last_host)});
}

}  // namespace vex::host
