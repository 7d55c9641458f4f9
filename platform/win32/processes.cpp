// The process seam on CreateProcess.
#include "platform/processes.h"

#include "platform/paths.h"
#include "platform/win32/system.h"
#include "platform/win32/windows_api.h"

namespace vex::platform::win32 {
namespace {

class SystemProcesses final : public Processes {
public:
    bool start(const std::u16string& path) override {
        // The system would complete any other from the current folder, and end one early at a null.
        if (!is_full_path(path)) return false;
        // The program is named by its path alone, so that no part of a path with blanks is ever tried as a
        // program, and neither the current folder nor the search path is looked through for it.
        std::u16string command_line = u"\"" + path + u"\"";
        STARTUPINFOW startup = {};
        startup.cb = sizeof startup;
        startup.dwFlags = STARTF_USESHOWWINDOW;
        startup.wShowWindow = SW_SHOWNORMAL;
        PROCESS_INFORMATION process = {};
        if (!CreateProcessW(wide(path), wide(command_line), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup,
                            &process)) {
            return false;
        }
        AllowSetForegroundWindow(process.dwProcessId);
        CloseHandle(process.hThread);
        CloseHandle(process.hProcess);
        return true;
    }
};

}  // namespace

Processes& processes() {
    static SystemProcesses instance;
    return instance;
}

}  // namespace vex::platform::win32
