// The host's display transmission control, driven by dispatch id. Every call blocks until the control has
// finished; meanwhile the control raises its status event, and calls back into it are allowed.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <utility>

#include "host/class_library.h"
#include "host/event_sink.h"

namespace vex::host {

class DisplayTransmission {
public:
    /// Creates the control and connects to its status event. Raises 429 or 459.
    DisplayTransmission(com::ModuleLifetime& module, EventConnection::Handler on_status_message);

    /// The control as an object that can be given a place on a form.
    IUnknown* object() const noexcept { return control_.get(); }

    /// Success flag. The control may replace the connection object.
    bool OpenConnection(HostConnection& connection);
    void CloseConnection();
    /// Selects the display unit that the next command addresses.
    void set_SignID(std::int16_t id);
    HostSignInfo GetSignInfo();
    bool ResetAndClear();
    bool PrepareForFirmware();
    bool DownloadFirmware(const std::u16string& firmware_path);
    bool DownloadFirmwareWithLoader(const std::u16string& firmware_path, const std::u16string& loader_path);
    /// Makes the operation in progress return false.
    void CancelTransmission();

    /// Gives away the connection to the status event, which lasts as long as the new owner keeps it.
    std::unique_ptr<EventConnection> take_status_event() noexcept { return std::move(status_); }

private:
    DispatchObject control_;
    std::unique_ptr<EventConnection> status_;
};

/// The host's finder of LAN device servers.
class LanBoxFinder {
public:
    /// Creates the control and connects to its event, of which the box's description is told. Raises 429 or 459.
    LanBoxFinder(com::ModuleLifetime& module, EventConnection::Handler on_box_found);

    IUnknown* object() const noexcept { return control_.get(); }

    void set_SearchTimeout(std::int16_t timeout);
    /// Searches a range of host numbers; tells every box found before it returns.
    void FindBoxes(const std::u16string& address, double first_host, double last_host);

private:
    DispatchObject control_;
    EventConnection boxes_;
};

}  // namespace vex::host
