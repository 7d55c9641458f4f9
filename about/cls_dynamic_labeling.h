// The name of the company under whose label the host is sold.
#pragma once

#include <optional>
#include <string>

#include "support/registry_routines.h"

namespace vex {

class clsDynamicLabeling {
public:
    /// `registry` outlives the object.
    explicit clsDynamicLabeling(platform::Registry& registry) noexcept : registry_(registry) {}

    /// The private label's company, or the maker's name where the host has no private label or one that is no
    /// text. Read afresh at every call.
    const std::u16string& CompanyName();

private:
    RegistryRoutines& routines();

    platform::Registry& registry_;
    /// Made on first use.
    std::optional<RegistryRoutines> routines_;
    std::u16string company_name_;
};

}  // namespace vex
