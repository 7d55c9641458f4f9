// The Windows side of the seams: the system itself, behind the interfaces that the plug-in knows.
#pragma once

#include <string>

#include "forms/toolkit.h"
#include "platform/code_page.h"
#include "platform/files.h"
#include "platform/processes.h"
#include "platform/registry.h"

namespace vex::platform::win32 {

// Each is one object for the whole process, without state of its own, for use on any thread.

Registry& registry();
Files& files();
Processes& processes();
const CodePage& code_page();

/// The windowing system, for the calling thread's forms.
forms::Toolkit& desktop();

/// The full path of the file (library or program) that this code is linked into.
/// Throws RuntimeError with the system's result code when the system does not tell.
std::u16string module_path();

}  // namespace vex::platform::win32
