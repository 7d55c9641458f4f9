// The Windows side: real windows.
#include "com/com.h"
#include "platform/system.h"
#include "simulator/win32/win32_screen.h"
#include "tests/toolkit/side.h"

namespace vex::test {
namespace {

class Win32Side final : public Side {
public:
    Win32Side() { OleInitialize(nullptr); }
    ~Win32Side() override { OleUninitialize(); }

    forms::Toolkit& toolkit() override { return platform::desktop(); }
    sim::Screen& screen() override { return screen_; }

private:
    sim::Win32Screen screen_{u""};
};

}  // namespace

std::unique_ptr<Side> make_side() { return std::make_unique<Win32Side>(); }

}  // namespace vex::test
