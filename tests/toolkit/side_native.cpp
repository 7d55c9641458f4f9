// The native side: forms for a scripted user.
#include "simulator/native/native_screen.h"
#include "tests/toolkit/side.h"

namespace vex::test {
namespace {

class NativeSide final : public Side, private sim::NativeScreen {
public:
    forms::Toolkit& toolkit() override { return NativeScreen::toolkit(); }
    sim::Screen& screen() override { return *this; }
};

}  // namespace

std::unique_ptr<Side> make_side() { return std::make_unique<NativeSide>(); }

}  // namespace vex::test
