// The computer of the proof tests: there before the first test, gone after the last while the runtime still stands.
#include <gtest/gtest.h>

#include <memory>

#include "tests/proof/rig.h"

namespace vex::proof {
namespace {

class ComputerEnvironment final : public ::testing::Environment {
public:
    void SetUp() override { computer_ = std::make_unique<Computer>(); }
    void TearDown() override { computer_.reset(); }

private:
    std::unique_ptr<Computer> computer_;
};

[[maybe_unused]] auto* const environment = ::testing::AddGlobalTestEnvironment(new ComputerEnvironment);

}  // namespace
}  // namespace vex::proof
