// The side under test: its files, programs and code page, and a folder to try them in. Implemented once for each side;
// the build picks.
#pragma once

#include <string>

namespace vex::test {

/// Whether the code page is Windows-1252, as the cases with its characters need.
bool is_windows_1252();
/// A folder of this side's own, as a drive-letter path with a backslash at its end. Empty at first; it goes with the
/// process.
std::u16string test_folder();
void make_file(const std::u16string& path);
void make_folder(const std::u16string& path);
void hide_file(const std::u16string& path);
/// A program that can be started, in a folder that exists.
void make_program(const std::u16string& path);
/// Whether that program has run, once and without arguments. Waits for it a little.
bool has_run(const std::u16string& path);

}  // namespace vex::test
