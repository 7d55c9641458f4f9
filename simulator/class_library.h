// The simulated host's class library: display list, display picker, connection settings, sign information; and what
// offers the host's classes to the process, as its libraries would.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "com/com.h"
#include "simulator/automation.h"
#include "simulator/host.h"

namespace vex::sim {

inline constexpr CLSID kHostDisplayListClass = {
    0x2AF1D132, 0xAC50, 0x445B, {0xBE, 0x5B, 0x80, 0x59, 0xD3, 0x20, 0x64, 0x9C}};
inline constexpr IID kHostDisplayListInterface = {
    0xCE0CA7AB, 0x5688, 0x47D4, {0xBA, 0x69, 0xFC, 0xC9, 0xCF, 0xEC, 0xEC, 0x16}};
inline constexpr CLSID kHostDisplayPickerClass = {
    0x829CA34E, 0xAE00, 0x4DDB, {0x94, 0x0C, 0xDB, 0xF8, 0x94, 0x72, 0xB8, 0xFA}};
inline constexpr IID kHostDisplayPickerInterface = {
    0xB9E8076B, 0x9E1E, 0x4977, {0x90, 0x0F, 0x21, 0x98, 0x1F, 0x89, 0xF6, 0xE4}};

// Callers find the rest by programmatic identifier; these identities are the simulated host's own.
inline constexpr CLSID kHostConnectionClass = {
    0x6E0B2F4D, 0x3C51, 0x4A7E, {0x9D, 0x18, 0x42, 0xF6, 0x07, 0xB3, 0xC9, 0x51}};
inline constexpr IID kConnectionSettingsInterface = {
    0x6E0B2F4E, 0x3C51, 0x4A7E, {0x9D, 0x18, 0x42, 0xF6, 0x07, 0xB3, 0xC9, 0x51}};
inline constexpr CLSID kHostSignInfoClass = {
    0x6E0B2F4F, 0x3C51, 0x4A7E, {0x9D, 0x18, 0x42, 0xF6, 0x07, 0xB3, 0xC9, 0x51}};
inline constexpr CLSID kTransmissionControlClass = {
    0x6E0B2F50, 0x3C51, 0x4A7E, {0x9D, 0x18, 0x42, 0xF6, 0x07, 0xB3, 0xC9, 0x51}};
inline constexpr IID kTransmissionEvents = {
    0x6E0B2F51, 0x3C51, 0x4A7E, {0x9D, 0x18, 0x42, 0xF6, 0x07, 0xB3, 0xC9, 0x51}};
inline constexpr CLSID kBoxFinderClass = {0x6E0B2F52, 0x3C51, 0x4A7E, {0x9D, 0x18, 0x42, 0xF6, 0x07, 0xB3, 0xC9, 0x51}};
inline constexpr IID kBoxFinderEvents = {0x6E0B2F53, 0x3C51, 0x4A7E, {0x9D, 0x18, 0x42, 0xF6, 0x07, 0xB3, 0xC9, 0x51}};

/// Where the plug-in's event stands among the events of either control.
inline constexpr DISPID kHandledEvent = 9;

/// The class library's interfaces are called late; early-bound callers ask for them by identity.
struct IHostDisplayList : IDispatch {};
struct IHostDisplayPicker : IDispatch {};

}  // namespace vex::sim

namespace vex::com {
VEX_INTERFACE(sim::IHostDisplayList, IDispatch, sim::kHostDisplayListInterface);
VEX_INTERFACE(sim::IHostDisplayPicker, IDispatch, sim::kHostDisplayPickerInterface);
}  // namespace vex::com

namespace vex::sim {

/// The displays of the host's file, one of them current: the first one after opening, then the one that was
/// selected last. Before opening, and of a host without displays, the fields are empty.
class DisplayListObject final : public AutomationObject<DisplayListObject, IHostDisplayList> {
public:
    explicit DisplayListObject(Host& host) noexcept : AutomationObject(host.lifetime), host_(host) {}

    static std::span<const Member<DisplayListObject>> members() noexcept;
    void on_call(const Member<DisplayListObject>& member, const CallArguments& arguments);

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
    static com::Variant get(DisplayListObject& list, const CallArguments& /*none*/) {
        return list.text(Field);
    }

    Host& host_;
    Displays displays_;
    std::size_t current_ = 0;
};

/// The host's selection dialog.
class DisplayPickerObject final : public AutomationObject<DisplayPickerObject, IHostDisplayPicker> {
public:
    explicit DisplayPickerObject(Host& host) noexcept : AutomationObject(host.lifetime), host_(host) {}

    static std::span<const Member<DisplayPickerObject>> members() noexcept;

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

class ConnectionObject final : public AutomationObject<ConnectionObject, IDispatch, IConnectionSettings> {
public:
    explicit ConnectionObject(Host& host, ConnectionSettings settings = {}) noexcept
        : AutomationObject(host.lifetime), settings_(std::move(settings)) {}

    static std::span<const Member<ConnectionObject>> members() noexcept;
    const ConnectionSettings& STDMETHODCALLTYPE settings() noexcept override { return settings_; }

private:
    template <std::optional<std::u16string> ConnectionSettings::*Field>
    static com::Variant put_text(ConnectionObject& connection, const CallArguments& arguments) {
        connection.settings_.*Field = arguments.text(0);
        return {};
    }
    template <std::optional<std::int16_t> ConnectionSettings::*Field>
    static com::Variant put_number(ConnectionObject& connection, const CallArguments& arguments) {
        connection.settings_.*Field = arguments.int16(0);
        return {};
    }

    ConnectionSettings settings_;
};

/// What a display reports of the slaves behind one of its units.
class SignInfoObject final : public AutomationObject<SignInfoObject, IDispatch> {
public:
    explicit SignInfoObject(Host& host, std::optional<SlaveCounts> slaves = {}) noexcept
        : AutomationObject(host.lifetime), slaves_(slaves) {}

    static std::span<const Member<SignInfoObject>> members() noexcept;
    std::u16string describe() const;

private:
    std::optional<SlaveCounts> slaves_;
};

/// While it lives, the host's classes can be created by class id and by programmatic identifier. Needs an
/// initialised apartment. `host` must outlive it and every object made meanwhile.
class HostClasses {
public:
    /// Raises `RuntimeError` when COM refuses.
    explicit HostClasses(Host& host);
    HostClasses(const HostClasses&) = delete;
    HostClasses& operator=(const HostClasses&) = delete;
    ~HostClasses();

private:
    std::vector<DWORD> cookies_;
};

/// The programmatic identifiers of the host's classes.
std::vector<std::u16string_view> host_class_names();

}  // namespace vex::sim
