// The simulated host's transmission control: one connection to a display, and the work on its units.
#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <span>
#include <string>

#include "simulator/class_library.h"
#include "simulator/event_point.h"

namespace vex::sim {

/// Every operation answers whether it succeeded and says in its status event why not. While it says something,
/// callers may call back: to cancel, to close, or to find that an operation is in progress.
class TransmissionControl final : public EventfulControl<TransmissionControl> {
public:
    static constexpr const IID& kSourceInterface = kTransmissionEvents;

    explicit TransmissionControl(Host& host) : EventfulControl(host.lifetime), host_(host) {}

    static std::span<const Member<TransmissionControl>> members() noexcept;

private:
    com::Variant open_connection(const Arguments& arguments);
    com::Variant close_connection();
    com::Variant cancel_transmission();
    com::Variant put_sign_id(std::int16_t id);
    com::Variant get_sign_info();
    com::Variant reset_and_clear();
    com::Variant prepare_for_firmware();
    com::Variant download_firmware(const Arguments& arguments);
    com::Variant download_firmware_with_loader(const Arguments& arguments);

    /// Work on the connection or a unit; answers its success.
    using Work = std::function<bool(const ScriptedCall& scripted)>;
    using UnitWork = std::function<bool(const Display& display, const ScriptedCall& scripted)>;

    /// A call that answers its success: traced, and refused while another one is in progress.
    com::Variant operate(const Call& call, const std::u16string& shown, const Work& work);
    /// The same for the selected unit, which must be connected and answer. `arguments`: as the trace shows them.
    com::Variant operate_unit(Operation operation, const std::u16string& arguments, const UnitWork& work);
    /// Says what the script has for the call. False when it cannot go on: cancelled, or a fault.
    bool goes_on(const ScriptedCall& scripted, Operation operation);
    /// Writes firmware into the selected unit.
    bool transfer(const Display& display, const Firmware& firmware, const ScriptedCall& scripted, Operation operation);
    /// Says why the operation fails; answers false.
    bool refuse(const std::u16string& text);
    void say(ScriptedMessage message);
    void tell(const LinkEvent& event);

    Call call_of(Operation operation) const;
    std::u16string unit(std::u16string_view text) const;

    Host& host_;
    /// The connected display, by its position.
    std::optional<std::size_t> display_;
    /// The display that was connected last, or asked for: whose calls these are, also when it is gone.
    std::u16string called_display_;
    /// The unit that operations address.
    std::int16_t sign_id_ = 0;
    bool busy_ = false;
    /// What is in progress while busy.
    Operation operation_ = Operation::OpenConnection;
    /// The operation in progress was cancelled or lost its connection.
    bool interrupted_ = false;
};

}  // namespace vex::sim
