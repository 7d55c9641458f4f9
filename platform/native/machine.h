// The simulated computer that a native process runs on: what an operating system would give the process.
// Like an operating system's, its state is the process's; the plug-in reaches it through the seams only.
#pragma once

#include <filesystem>
#include <functional>
#include <string>

#include "forms/toolkit.h"

namespace vex::platform::native {

/// Puts the computer's disks and registry into `folder` (made for its owner alone when it is missing, and
/// refused where everybody may write): drive C: is `folder`/drive_c and so on, the registry is
/// `folder`/registry. Z: is the real root folder.
/// To be called before anything else touches the computer; calling it again changes computers, for tests.
/// Until then there are an empty registry in memory and Z: alone. Throws RuntimeError naming the folder or the
/// damaged file and line.
void use_machine_folder(const std::filesystem::path& folder);
const std::filesystem::path& machine_folder();

/// The real file behind a drive-letter path, or an empty path when its drive does not exist. The file itself need not
/// exist. Names are found without regard to case; where two differ in nothing else, the one spelled as asked comes
/// first.
std::filesystem::path real_path(const std::u16string& path);
/// The drive-letter path of a real file, on Z: unless it lies on one of the machine's drives.
std::u16string drive_path(const std::filesystem::path& file);
/// Hides a file or folder that is there: adds its name to its folder's list of hidden names (the file ".hidden", as
/// file managers read it). Raises std::system_error.
void hide(const std::u16string& path);

/// Told the path of each program that is started; null: programs really start nothing and are forgotten.
void on_program_started(std::function<void(const std::u16string&)> listener);

/// The calling thread's windowing system: not owned, null for none.
void set_desktop(forms::Toolkit* toolkit);

}  // namespace vex::platform::native
