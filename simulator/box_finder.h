// The simulated host's finder of LAN device servers.
#pragma once

#include <span>
#include <string>

#include "simulator/event_point.h"
#include "simulator/host.h"
#include "simulator/host_identities.h"

namespace vex::sim {

/// Reports the device servers in front of the displays at the addresses that it searches.
class BoxFinder final : public EventfulControl<BoxFinder> {
public:
    static constexpr const IID& kSourceInterface = kBoxFinderEvents;

    explicit BoxFinder(Host& host) : EventfulControl(host.lifetime), host_(host) {}

    static std::span<const Member<BoxFinder>> members() noexcept;
    void on_call(const Member<BoxFinder>& member, const Arguments& arguments);

private:
    /// Searches the hosts `first` to `last` of the network that `address` lies in. An address without a "."
    /// has no host number: it stands for itself, as host 0.
    void find_boxes(const std::u16string& address, double first, double last);
    void report(const std::u16string& address);

    Host& host_;
};

}  // namespace vex::sim
