// brivola-sim, the simulated host: the native program.
#include "simulator/native/native_session.h"

int main(int count, char** words) {
    using namespace vex::sim;
    return run_program(std::vector<std::string>(words + 1, words + count),
                       [](const CommandLine& options) -> std::unique_ptr<Session> {
                           return std::make_unique<NativeSession>(options);
                       });
}
