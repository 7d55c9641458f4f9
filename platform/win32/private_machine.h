// A computer of a run's own inside the real one: what the plug-in finds on drives and in the registry, and the
// programs that it starts. For the simulated host.
#pragma once

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "platform/win32/import_hook.h"

namespace vex::platform::win32 {

/// One at a time in a process. The plug-in and everything else of this process see the private registry; only
/// a watched module sees the private drives.
class PrivateMachine {
public:
    /// Drive C: is `folder`\drive_c and so on. The machine and user branches of the registry are those of a
    /// private key, which is removed in the end unless `keep`; then it belongs to `folder`, and is there again
    /// for the next machine of that folder. Throws RuntimeError.
    PrivateMachine(std::filesystem::path folder, bool keep);
    PrivateMachine(const PrivateMachine&) = delete;
    PrivateMachine& operator=(const PrivateMachine&) = delete;
    ~PrivateMachine();

    /// From now on the loaded module of that file name looks for files on the private drives, and the programs
    /// that it starts are only told of. It must stay loaded until `unwatch`. Throws RuntimeError.
    void watch(const std::u16string& module);
    void unwatch() noexcept { hooks_.clear(); }

    /// The file behind a drive-letter path; empty for other paths.
    std::filesystem::path real_path(const std::u16string& path) const;
    void hide(const std::u16string& path) const;
    /// Told the path of each program that the watched module starts.
    std::function<void(const std::u16string&)> on_program_started;

private:
    static DWORD WINAPI get_file_attributes(LPCWSTR path) noexcept;
    static BOOL WINAPI create_process(LPCWSTR program, LPWSTR command_line, SECURITY_ATTRIBUTES* process,
                                      SECURITY_ATTRIBUTES* thread, BOOL inherit, DWORD flags, void* environment,
                                      LPCWSTR folder, STARTUPINFOW* startup, PROCESS_INFORMATION* information) noexcept;

    void redirect(HKEY root, LPCWSTR branch);

    static PrivateMachine* current_;

    std::filesystem::path folder_;
    std::u16string key_;
    bool keep_;
    std::vector<ImportHook> hooks_;
};

}  // namespace vex::platform::win32
