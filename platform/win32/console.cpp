// What a console program needs of the system.
#include "platform/win32/console.h"

#include <cstdio>

#include "core/unicode.h"
#include "platform/win32/windows_api.h"

#include <fcntl.h>
#include <io.h>
#include <shellapi.h>

namespace vex::platform::win32 {

std::vector<std::string> program_arguments() {
    int count = 0;
    LPWSTR* const words = CommandLineToArgvW(GetCommandLineW(), &count);
    std::vector<std::string> arguments;
    for (int index = 1; words != nullptr && index < count; ++index) {
        arguments.push_back(to_utf8(reinterpret_cast<const char16_t*>(words[index])));
    }
    LocalFree(words);
    return arguments;
}

void use_plain_streams() noexcept {
    for (std::FILE* stream : {stdin, stdout, stderr}) _setmode(_fileno(stream), _O_BINARY);
    SetConsoleOutputCP(CP_UTF8);
}

}  // namespace vex::platform::win32
