// brivola-sim, the simulated host: the Windows program.
#include <cstdio>

#include "simulator/win32/win32_session.h"

#include <fcntl.h>
#include <io.h>

int main() {
    using namespace vex::sim;
    // Standard input and output carry the bytes that the program reads and writes; a console shows UTF-8.
    for (std::FILE* stream : {stdin, stdout, stderr}) _setmode(_fileno(stream), _O_BINARY);
    SetConsoleOutputCP(CP_UTF8);
    return run_program(program_arguments(), [](const CommandLine& options) -> std::unique_ptr<Session> {
        return std::make_unique<Win32Session>(options);
    });
}
