// The simulated host's class library: display list, display picker, connection settings, sign information.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>

#include "simulator/automation.h"
#include "simulator/host.h"
#include "simulator/host_identities.h"

namespace vex::sim {

/// The displays of the host's file, one of them current: the first one after opening, then the one that was
/// selected last. Before opening, and of a host without displays, the fields are empty.
class HostDisplayList final : public AutomationObject<HostDisplayList, IHostDisplayList> {
public:
    explicit HostDisplayList(Host& host) noexcept : AutomationObject(host.lifetime), host_(host) {}

    static std::span<const Member<HostDisplayList>> members() noexcept;
    void on_call(const Member<HostDisplayList>& member, const Arguments& arguments);

private:
    /// Reads the file anew. Raises 53 for any other file and a missing one, 321 for a damaged one.
    void open(const std::u16string& file_name);
    /// A handle is a position from 1; 0 for a name that is not known.
    std::int32_t find(const std::u16string& name) const;
    /// An unknown handle leaves the current display as it is.
    void select(std::int32_t handle);
    bool is_handle(std::int32_t handle) const noexcept {
        return handle >= 1 && static_cast<std::size_t>(handle) <= displays_.size();
    }
    const Display& current() const;
    com::Variant text(std::u16string Display::*field) const { return com::Variant::text(current().*field); }

    template <std::u16string Display::*Field>
    static com::Variant get(HostDisplayList& list, const Arguments& /*none*/) {
        return list.text(Field);
    }

    Host& host_;
    Displays displays_;
    std::size_t current_ = 0;
};

/// The host's selection dialog.
class HostDisplayPicker final : public AutomationObject<HostDisplayPicker, IHostDisplayPicker> {
public:
    explicit HostDisplayPicker(Host& host) noexcept : AutomationObject(host.lifetime), host_(host) {}

    static std::span<const Member<HostDisplayPicker>> members() noexcept;

private:
    Host& host_;
};

/// What a connection is asked to use; what was not set has no value.
struct ConnectionSettings {
    std::optional<std::int16_t> connection_type;
    std::optional<std::u16string> com_port;
    std::optional<std::u16string> phone_number;
    std::optional<std::u16string> network_address;
    std::optional<std::u16string> com_baud;
    std::optional<std::int16_t> sign_id;

    /// `KEY=VALUE` of those that were set, in the order of the members.
    std::u16string describe() const;
    /// The line that these settings name.
    std::u16string line() const;
};

/// How the transmission control reads the settings, which are write-only to everybody else.
struct IConnectionSettings : IUnknown {
    virtual const ConnectionSettings& STDMETHODCALLTYPE settings() noexcept = 0;
};

}  // namespace vex::sim

namespace vex::com {
VEX_INTERFACE(sim::IConnectionSettings, IUnknown, sim::kConnectionSettingsInterface);
}

namespace vex::sim {

class HostConnection final : public AutomationObject<HostConnection, IDispatch, IConnectionSettings> {
public:
    explicit HostConnection(Host& host, ConnectionSettings settings = {}) noexcept
        : AutomationObject(host.lifetime), settings_(std::move(settings)) {}

    static std::span<const Member<HostConnection>> members() noexcept;
    const ConnectionSettings& STDMETHODCALLTYPE settings() noexcept override { return settings_; }

private:
    template <std::optional<std::u16string> ConnectionSettings::*Field>
    static com::Variant put_text(HostConnection& connection, const Arguments& arguments) {
        connection.settings_.*Field = arguments.text(0);
        return {};
    }
    template <std::optional<std::int16_t> ConnectionSettings::*Field>
    static com::Variant put_number(HostConnection& connection, const Arguments& arguments) {
        connection.settings_.*Field = arguments.int16(0);
        return {};
    }

    ConnectionSettings settings_;
};

/// What a display reports of the slaves behind one of its units.
class HostSignInfo final : public AutomationObject<HostSignInfo, IDispatch> {
public:
    explicit HostSignInfo(Host& host, std::optional<SlaveCounts> slaves = {}) noexcept
        : AutomationObject(host.lifetime), slaves_(slaves) {}

    static std::span<const Member<HostSignInfo>> members() noexcept;
    std::u16string describe() const;

private:
    std::optional<SlaveCounts> slaves_;
};

}  // namespace vex::sim
