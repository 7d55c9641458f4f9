// The program that the process tests start: leaves a file beside itself that tells how it was started.
#include <filesystem>
#include <fstream>

#include "platform/win32/windows_api.h"
#include "simulator/win32/win32_session.h"

int main() {
    const std::filesystem::path sign(vex::platform::win32::module_path() + u".ran");
    const bool again = std::filesystem::exists(sign);
    const bool arguments = !vex::sim::program_arguments().empty();
    std::ofstream(sign) << (again ? "another" : "1") << " run with" << (arguments ? "" : "out") << " arguments\n";
}
