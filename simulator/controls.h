// The simulated host's two controls: the transmission control, which has one connection to a display and works on its
// units, and the finder of LAN device servers.
#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <span>
#include <string>

#include "simulator/class_library.h"
#include "simulator/host.h"

namespace vex::sim {

/// Every operation answers whether it succeeded and says in its status event why not. While it says something,
/// callers may call back: to cancel, to close, or to find that an operation is in progress.
class TransmissionControl final : public EventfulControl<TransmissionControl> {
public:
    static constexpr const IID& kSourceInterface = kTransmissionEvents;

    using EventfulControl::EventfulControl;

    static std::span<const Member<TransmissionControl>> members() noexcept;

private:
    com::Variant open_connection(const CallArguments& arguments);
    com::Variant close_connection(const CallArguments& arguments);
    com::Variant cancel_transmission(const CallArguments& arguments);
    com::Variant put_sign_id(const CallArguments& arguments);
    com::Variant get_sign_info(const CallArguments& arguments);
    com::Variant reset_and_clear(const CallArguments& arguments);
    com::Variant prepare_for_firmware(const CallArguments& arguments);
    com::Variant download_firmware(const CallArguments& arguments);
    com::Variant download_firmware_with_loader(const CallArguments& arguments);

    /// Work on the connection or a unit; answers its success.
    using Work = std::function<bool(const ScriptedCall& scripted)>;
    using UnitWork = std::function<bool(const Display& display, const ScriptedCall& scripted)>;

    /// A call that answers its success: traced, and refused while another one is in progress. `arguments`: as the
    /// trace shows them.
    com::Variant operate(Operation operation, const std::u16string& arguments, const Work& work);
    /// The same for the selected unit, which must be connected and answer.
    com::Variant operate_unit(Operation operation, const std::u16string& arguments, const UnitWork& work);
    /// A call that may come in the midst of another one: traced when it begins.
    ScriptedCall begin_at_once(const Call& call, const std::u16string& shown);
    /// Says what the script has for the call. False when it cannot go on: cancelled, or a fault.
    bool goes_on(const ScriptedCall& scripted, Operation operation);
    /// Writes the firmware that `read` checks into the selected unit.
    com::Variant download(Operation operation, const CallArguments& arguments, const std::function<Firmware()>& read);
    bool transfer(const Display& display, const Firmware& firmware, const ScriptedCall& scripted, Operation operation);
    /// Says why the operation fails; answers false.
    bool refuse(const std::u16string& text);
    void say(ScriptedMessage message);
    void say_all(const ScriptedCall& scripted);
    void tell(const LinkEvent& event);

    Call call_of(Operation operation) const;
    std::u16string unit(std::u16string_view text) const;

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

/// Reports the device servers in front of the displays at the addresses that it searches.
class BoxFinder final : public EventfulControl<BoxFinder> {
public:
    static constexpr const IID& kSourceInterface = kBoxFinderEvents;

    using EventfulControl::EventfulControl;

    static std::span<const Member<BoxFinder>> members() noexcept;
    void on_call(const Member<BoxFinder>& member, const CallArguments& arguments);

private:
    /// A simulated search takes no time.
    com::Variant put_timeout(const CallArguments& /*seconds*/) { return {}; }
    /// Searches the hosts from the second argument to the third of the network that the address lies in. An address
    /// without a "." has no host number: it stands for itself, as host 0.
    com::Variant find_boxes(const CallArguments& arguments);
    void report(const std::u16string& address);
};

/// Whether the transmission control can speak during the operation, which is one of its own.
bool speaks(Operation operation) noexcept;
/// Whether the operation answers its success, and so can fail without an error.
bool answers_success(Operation operation) noexcept;
/// The operation of that name. Raises `std::invalid_argument` naming all.
Operation parse_operation(std::u16string_view name);

}  // namespace vex::sim
