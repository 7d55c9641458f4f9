// The native side: forms for a scripted user.
#include "simulator/native/native_screen.h"
#include "tests/toolkit/side.h"

namespace vex::test {
namespace {

class NativeSide final : public Side {
public:
    forms::Toolkit& toolkit() override { return screen_.toolkit(); }
    sim::Screen& screen() override { return screen_; }

private:
    sim::NativeScreen screen_;
};

}  // namespace

std::unique_ptr<Side> make_side() { return std::make_unique<NativeSide>(); }

}  // namespace vex::test
