// Offers the simulated host's classes to the process, as its libraries would.
#pragma once

#include <string>
#include <vector>

#include "com/com.h"
#include "simulator/host.h"

namespace vex::sim {

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
