// The simulated computer that a native process runs on: what an operating system would give the process.
// Like an operating system's, its state is the process's; the plug-in reaches it through the seams only.
#pragma once

#include <filesystem>
#include <functional>
#include <string>

#include "forms/toolkit.h"
#include "platform/code_page.h"
#include "platform/files.h"
#include "platform/processes.h"
#include "platform/registry.h"

#define VEX_RUNTIME_API __attribute__((visibility("default")))

namespace vex::platform::native {

/// Puts the computer's disks and registry into `folder` (made for its owner alone when it is missing, and
/// refused where everybody may write): drive C: is `folder`/drive_c and so on, the registry is
/// `folder`/registry. Z: is the real root folder.
/// To be called before anything else touches the computer; calling it again changes computers, for tests.
/// Throws RuntimeError naming the folder or the damaged file and line.
VEX_RUNTIME_API void use_machine_folder(const std::filesystem::path& folder);
VEX_RUNTIME_API const std::filesystem::path& machine_folder();

/// Any thread. Until `use_machine_folder`, an empty registry in memory.
VEX_RUNTIME_API Registry& registry();
VEX_RUNTIME_API Files& files();
VEX_RUNTIME_API Processes& processes();
VEX_RUNTIME_API const CodePage& code_page();

/// The real file behind a drive-letter path (letters of a path are matched without regard to case), or an
/// empty path when its drive does not exist. The file itself need not exist.
VEX_RUNTIME_API std::filesystem::path real_path(const std::u16string& path);
/// The drive-letter path of a real file, on Z: unless it lies on one of the machine's drives.
VEX_RUNTIME_API std::u16string drive_path(const std::filesystem::path& path);
/// Hides or shows a file or folder: what the "hidden" attribute is on Windows.
VEX_RUNTIME_API void set_hidden(const std::u16string& path, bool hidden);

/// Told the path of each program that is started; null: programs really start nothing and are forgotten.
VEX_RUNTIME_API void on_program_started(std::function<void(const std::u16string&)> listener);

/// The calling thread's windowing system: not owned, null for none. Throws RuntimeError (429) when asked
/// for where there is none.
VEX_RUNTIME_API void set_desktop(forms::Toolkit* toolkit);
VEX_RUNTIME_API forms::Toolkit& desktop();

}  // namespace vex::platform::native
