// Expansion of %NAME% from the process's environment.
#pragma once

#include <string>
#include <string_view>

namespace vex::platform::native {

/// Names are found without regard to case; what is no variable stays as it is.
std::u16string expand_environment(std::u16string_view text);

}  // namespace vex::platform::native
