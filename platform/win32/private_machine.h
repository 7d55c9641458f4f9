// A computer of a run's own inside the real one: what the plug-in finds on drives and in the registry, and the
// programs that it starts. For the simulated host.
#pragma once

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "platform/win32/handles.h"
#include "platform/win32/import_hook.h"

namespace vex::platform::win32 {

using OwnedKey = Owned<HKEY, RegCloseKey>;

/// One at a time in a process. Only this module and the watched one see the private drives and branches: the
/// rest of the process, the system's own libraries first of all, must find what it needs.
class PrivateMachine {
public:
    /// Drive C: is `folder`\drive_c and so on. The machine and user branches of the registry, as far as the
    /// narrow-character functions go, are those of a private key, which is removed in the end unless `keep`;
    /// then it belongs to `folder`, and is there again for the next machine of that folder. Throws RuntimeError.
    PrivateMachine(std::filesystem::path folder, bool keep);
    PrivateMachine(const PrivateMachine&) = delete;
    PrivateMachine& operator=(const PrivateMachine&) = delete;
    ~PrivateMachine();

    /// From now on the loaded module of that file name looks for files on the private drives, and the programs
    /// that it starts are only told of. It must stay loaded until `unwatch`. Throws RuntimeError.
    void watch(const std::u16string& module);
    void unwatch() noexcept { watched_.clear(); }

    /// From now on a file that is not on the private drives is the real one of that path.
    void show_real_disks() noexcept { real_disks_ = true; }
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

    static LSTATUS WINAPI open_key(HKEY parent, LPCSTR path, DWORD options, REGSAM access, HKEY* key) noexcept;
    static LSTATUS WINAPI create_key(HKEY parent, LPCSTR path, DWORD reserved, LPSTR class_name, DWORD options,
                                     REGSAM access, SECURITY_ATTRIBUTES* security, HKEY* key,
                                     DWORD* disposition) noexcept;
    static LSTATUS WINAPI delete_key(HKEY parent, LPCSTR path) noexcept;
    /// The private key in place of the machine's or the user's branch, else the key itself.
    static HKEY own(HKEY key) noexcept;
    static void redirect_registry(HMODULE module, std::vector<ImportHook>& hooks);

    static PrivateMachine* current_;

    std::filesystem::path folder_;
    std::u16string key_;
    bool keep_;
    bool real_disks_ = false;
    OwnedKey machine_branch_;
    OwnedKey user_branch_;
    std::vector<ImportHook> redirected_;
    std::vector<ImportHook> watched_;
};

}  // namespace vex::platform::win32
