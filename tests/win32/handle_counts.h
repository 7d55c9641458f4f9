// Whether window and graphics handles of this process stay behind.
#pragma once

#include <functional>

namespace vex::test {

/// Expects as many handles after so many uses of something as before them.
void expect_no_handle_stays(int times, const std::function<void()>& use);

}  // namespace vex::test
