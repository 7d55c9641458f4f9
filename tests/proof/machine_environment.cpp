// The machine of the proof tests: there before the first test, gone after the last while the runtime still stands.
#include <gtest/gtest.h>

#include <memory>

#include "tests/proof/rig.h"

namespace vex::proof {
namespace {

class MachineEnvironment final : public ::testing::Environment {
public:
    void SetUp() override { machine_ = std::make_unique<Machine>(); }
    void TearDown() override { machine_.reset(); }

private:
    std::unique_ptr<Machine> machine_;
};

[[maybe_unused]] auto* const environment = ::testing::AddGlobalTestEnvironment(new MachineEnvironment);

}  // namespace
}  // namespace vex::proof
