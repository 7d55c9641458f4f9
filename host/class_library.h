// The host's class library: its display collection, display picker, connection settings and sign
// information. Members carry the host's names; each call goes to the host, nothing is kept here.
#pragma once

#include <cstdint>
#include <string>

#include "host/dispatch_object.h"

namespace vex::host {

/// Opens the host's display file, makes one display current by name and tells that display's fields.
/// Errors of the host are raised as they come.
class HostDisplayList {
public:
    /// Raises 429 when the host offers no display collection.
    HostDisplayList();

    std::u16string ComPort() const { return to_text(object_.property(u"ComPort")); }
    std::u16string ComBaud() const { return to_text(object_.property(u"ComBaud")); }
    /// A decimal sign type code as text.
    std::u16string SignTypeCode() const { return to_text(object_.property(u"SignTypeCode")); }
    /// See ConnectionKind.
    std::int16_t ConnectionType() const { return to_int16(object_.property(u"ConnectionType")); }
    std::u16string NetworkAddress() const { return to_text(object_.property(u"NetworkAddress")); }
    std::u16string PhoneNumber() const { return to_text(object_.property(u"PhoneNumber")); }
    /// Master display IDs, separated by ",".
    std::u16string SignIDs() const { return to_text(object_.property(u"SignIDs")); }
    std::u16string DisplayName() const { return to_text(object_.property(u"DisplayName")); }
    /// The display type as shown to the user.
    std::u16string DisplayTypeName() const { return to_text(object_.property(u"DisplayTypeName")); }
    /// The controller's model and version.
    std::u16string FirmwareVersion() const { return to_text(object_.property(u"FirmwareVersion")); }

    void OpenDisplayFile(const std::u16string& file_name) const;
    /// The handle of a display. What the host answers for an unknown name is the host's business.
    std::int32_t FindDisplay(const std::u16string& name) const;
    /// Makes the display of that handle current.
    void SelectDisplay(std::int32_t handle) const;

private:
    DispatchObject object_;
};

/// The host's display file.
inline constexpr char16_t kDisplayFile[] = u"Displays.dat";

/// How a display is reached. Unknown values count as network.
enum ConnectionKind : std::int16_t { kSerialCable = 1, kNetwork = 2, kModem = 3 };

/// The host's own display-selection dialog.
class HostDisplayPicker {
public:
    /// Raises 429 when the host offers no picker.
    HostDisplayPicker();
    /// Shows the dialog modally; the chosen names joined by ",", empty when nothing was chosen.
    std::u16string ShowDisplayPicker() const { return to_text(object_.call(u"ShowDisplayPicker")); }

private:
    DispatchObject object_;
};

/// The settings of one connection attempt; write-only.
class HostConnection {
public:
    /// Raises 429 when the host offers no connection settings.
    HostConnection();

    void set_ConnectionType(std::int16_t type) { object_.set_property(u"ConnectionType", com::Variant::int16(type)); }
    void set_ComPort(const std::u16string& port) { object_.set_property(u"ComPort", com::Variant::text(port)); }
    void set_PhoneNumber(const std::u16string& number) {
        object_.set_property(u"PhoneNumber", com::Variant::text(number));
    }
    void set_NetworkAddress(const std::u16string& address) {
        object_.set_property(u"NetworkAddress", com::Variant::text(address));
    }
    void set_ComBaud(const std::u16string& baud) { object_.set_property(u"ComBaud", com::Variant::text(baud)); }
    void set_SignID(std::int16_t id) { object_.set_property(u"SignID", com::Variant::int16(id)); }

    IDispatch* get() const noexcept { return object_.get(); }
    /// Takes over what a callee put in the place of the object.
    void replace(com::ComPtr<IDispatch> object) noexcept { object_ = DispatchObject(std::move(object)); }

private:
    DispatchObject object_;
};

/// What a display reports of the slave units behind it.
class HostSignInfo {
public:
    explicit HostSignInfo(com::ComPtr<IDispatch> object) noexcept : object_(std::move(object)) {}

    bool HasSlaves() const { return to_boolean(object_.property(u"HasSlaves")); }
    std::int16_t SlaveCountY() const { return to_int16(object_.property(u"SlaveCountY")); }
    std::int16_t SlaveCountX() const { return to_int16(object_.property(u"SlaveCountX")); }

private:
    DispatchObject object_;
};

}  // namespace vex::host
