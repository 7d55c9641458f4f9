// The native side: the simulated computer.
#include <filesystem>
#include <fstream>
#include <map>

#include "platform/native/machine.h"
#include "simulator/words.h"
#include "tests/system/side.h"

namespace vex::test {

using platform::native::real_path;

namespace {

std::map<std::filesystem::path, int> runs;

}  // namespace

bool is_windows_1252() { return true; }

std::u16string test_folder() {
    static const sim::PrivateFolder computer;
    platform::native::use_machine_folder(computer.path() / "machine");
    platform::native::on_program_started([](const std::u16string& path) { ++runs[real_path(path)]; });
    make_folder(u"C:\\contract");
    return u"C:\\contract\\";
}

void make_file(const std::u16string& path) { std::ofstream(real_path(path)) << "x"; }
void make_folder(const std::u16string& path) { std::filesystem::create_directory(real_path(path)); }
void hide_file(const std::u16string& path) { platform::native::hide(path); }
void make_program(const std::u16string& path) { make_file(path); }
bool has_run(const std::u16string& path) { return runs[real_path(path)] == 1; }

}  // namespace vex::test
