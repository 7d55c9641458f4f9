// The small seams: what the plug-in asks of the system that it runs on. Each side defines the functions, and the
// linker picks the side.
#pragma once

#include <string>
#include <string_view>

namespace vex::forms {
class Toolkit;
}

namespace vex::platform {

// Wide text to and from the system's ANSI code page.

/// Characters that the code page cannot hold become "?", never another one that only looks like them.
std::string to_ansi(std::u16string_view text);
std::u16string from_ansi(std::string_view bytes);

/// Whether `path`, with a drive letter, names an ordinary file: not a folder, not hidden, not a system file. Doubled
/// separators count as one; bad or missing paths answer false, and so do paths that are not full.
bool ordinary_file_exists(const std::u16string& path);

/// Starts the program at `path`, a full path taken whole as one program without arguments, in a normal window that
/// receives the focus, and does not wait for it. False when it could not be started; a path that is not full is no
/// program, wherever the process happens to be.
bool start_program(const std::u16string& path);

/// The calling thread's windowing system. Raises kCannotCreateObject where there is none.
forms::Toolkit& desktop();

}  // namespace vex::platform
