// The classes of the simulated host: display list, display picker and finder of LAN device servers; and what offers all
// of them to the process, as the host's libraries would.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "simulator/automation.h"
#include "simulator/host.h"

namespace vex::sim {

/// The identity of a class that callers find by programmatic identifier, or of what goes with it: the simulated host's
/// own.
constexpr GUID own_identity(unsigned char last) noexcept {
    return {0x6E0B2F00U + last, 0x3C51, 0x4A7E, {0x9D, 0x18, 0x42, 0xF6, 0x07, 0xB3, 0xC9, 0x51}};
}

/// One class, and what it can do.
struct HostClass {
    CLSID clsid;
    std::u16string programmatic_id;
    /// Else callers find it by its class id alone.
    bool found_by_name;
    com::ComPtr<IDispatch> (*make)(Host& host);
    std::vector<MemberFacts> members;

    /// The programmatic identifier without its library.
    std::u16string_view name() const {
        return std::u16string_view(programmatic_id).substr(programmatic_id.find(u'.') + 1);
    }
};

template <class Class>
HostClass host_class(const CLSID& clsid, const std::u16string& library, bool found_by_name = true) {
    const auto make = [](Host& host) { return com::make_object<Class>(host).template query<IDispatch>(); };
    const std::vector<MemberFacts> members(std::begin(Class::kMembers), std::end(Class::kMembers));
    return {clsid, library + u'.' + Class::kClass, found_by_name, make, members};
}

/// Those of `transmission_control.h` first.
const std::vector<HostClass>& host_classes();

/// The class, or the member of a class, of that name. Raises `std::invalid_argument` naming all.
Operation parse_operation(std::u16string_view name);

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

}  // namespace vex::sim
