// The simulated host's class library: display list, display picker, connection settings, sign information; and what
// offers the host's classes to the process, as its libraries would.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
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

/// Callers find the rest by programmatic identifier; these identities are the simulated host's own.
constexpr GUID own_identity(unsigned char last) noexcept {
    return {0x6E0B2F00U + last, 0x3C51, 0x4A7E, {0x9D, 0x18, 0x42, 0xF6, 0x07, 0xB3, 0xC9, 0x51}};
}
inline constexpr CLSID kHostConnectionClass = own_identity(0x4D);
inline constexpr IID kConnectionSettingsInterface = own_identity(0x4E);
inline constexpr CLSID kHostSignInfoClass = own_identity(0x4F);
inline constexpr CLSID kTransmissionControlClass = own_identity(0x50);
inline constexpr IID kTransmissionEvents = own_identity(0x51);
inline constexpr CLSID kBoxFinderClass = own_identity(0x52);
inline constexpr IID kBoxFinderEvents = own_identity(0x53);

/// Where the plug-in's event stands among the events of either control.
inline constexpr DISPID kHandledEvent = 9;

/// The class library's interfaces are called late; early-bound callers ask for them by identity.
struct IHostDisplayList : IDispatch {};
struct IHostDisplayPicker : IDispatch {};

/// What a connection is asked to use.
struct ConnectionSettings {
    /// Of which only what names its line counts.
    Display target = Display::none();
    std::int16_t sign_id = 0;
    /// ` KEY=VALUE` of those that were set, in the order of the members.
    std::array<std::u16string, 6> shown;
};

/// How the transmission control reads the settings, which are write-only to everybody else.
struct IConnectionSettings : IUnknown {
    virtual const ConnectionSettings& STDMETHODCALLTYPE settings() noexcept = 0;
};

}  // namespace vex::sim

namespace vex::com {
VEX_INTERFACE(sim::IHostDisplayList, IDispatch, sim::kHostDisplayListInterface);
VEX_INTERFACE(sim::IHostDisplayPicker, IDispatch, sim::kHostDisplayPickerInterface);
VEX_INTERFACE(sim::IConnectionSettings, IUnknown, sim::kConnectionSettingsInterface);
}  // namespace vex::com

namespace vex::sim {

/// The displays of the host's file, one of them current: the first one after opening, then the one that was
/// selected last. Before opening, and of a host without displays, the fields are empty.
class DisplayListObject final : public AutomationObject<DisplayListObject, IHostDisplayList> {
public:
    using AutomationObject::AutomationObject;

    static std::span<const Member<DisplayListObject>> members() noexcept;
    void on_call(const Member<DisplayListObject>& member, const CallArguments& arguments);

private:
    /// Reads the file anew. Raises 53 for any other file and a missing one, 321 for a damaged one.
    com::Variant open(const CallArguments& arguments);
    /// A handle is a position from 1; 0 for a name that is not known.
    com::Variant find(const CallArguments& arguments);
    /// An unknown handle leaves the current display as it is.
    com::Variant select(const CallArguments& arguments);
    template <auto Field>
    com::Variant get(const CallArguments& /*none*/) {
        return com::Variant::text(current().*Field);
    }
    com::Variant connection(const CallArguments& /*none*/) { return com::Variant::int16(current().connection); }

    bool is_handle(std::int32_t handle) const noexcept {
        return handle >= 1 && static_cast<std::size_t>(handle) <= displays_.size();
    }
    const Display& current();

    Displays displays_;
    std::size_t current_ = 0;
};

/// The host's selection dialog.
class DisplayPickerObject final : public AutomationObject<DisplayPickerObject, IHostDisplayPicker> {
public:
    using AutomationObject::AutomationObject;

    static std::span<const Member<DisplayPickerObject>> members() noexcept;

private:
    com::Variant show(const CallArguments& /*none*/) { return com::Variant::text(host_.choose_displays()); }
};

class ConnectionObject final : public AutomationObject<ConnectionObject, IDispatch, IConnectionSettings> {
public:
    explicit ConnectionObject(Host& host, ConnectionSettings settings = {}) noexcept
        : AutomationObject(host), settings_(std::move(settings)) {}

    static std::span<const Member<ConnectionObject>> members() noexcept;
    void on_call(const Member<ConnectionObject>& member, const CallArguments& arguments);
    const ConnectionSettings& STDMETHODCALLTYPE settings() noexcept override { return settings_; }

private:
    template <auto Field>
    com::Variant put_text(const CallArguments& arguments) {
        settings_.target.*Field = arguments.text(0);
        return {};
    }
    com::Variant put_connection(const CallArguments& arguments);
    com::Variant put_sign_id(const CallArguments& arguments);

    ConnectionSettings settings_;
};

/// What a display reports of the slaves behind one of its units.
class SignInfoObject final : public AutomationObject<SignInfoObject, IDispatch> {
public:
    explicit SignInfoObject(Host& host, std::optional<SlaveCounts> slaves = {}) noexcept
        : AutomationObject(host), has_slaves_(slaves.has_value()), counts_(slaves.value_or(SlaveCounts())) {}

    static std::span<const Member<SignInfoObject>> members() noexcept;
    std::u16string describe() const;

private:
    com::Variant has_slaves(const CallArguments& /*none*/) { return com::Variant::boolean(has_slaves_); }
    template <auto Field>
    com::Variant count(const CallArguments& /*none*/) {
        return com::Variant::int16(counts_.*Field);
    }

    bool has_slaves_;
    SlaveCounts counts_;
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
std::vector<std::u16string> host_class_names();

}  // namespace vex::sim
