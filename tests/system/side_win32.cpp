// The Windows side: real files, and a program that leaves a file behind as a sign that it ran.
#include <filesystem>
#include <fstream>

#include "platform/win32/windows_api.h"
#include "simulator/win32/win32_session.h"
#include "simulator/words.h"
#include "tests/system/side.h"

namespace vex::test {

using platform::win32::wide;

bool is_windows_1252() { return GetACP() == 1252; }

std::u16string test_folder() {
    static const sim::PrivateFolder folder;
    return folder.path().u16string() + u"\\";
}

void make_file(const std::u16string& path) { std::ofstream(std::filesystem::path(path)) << "x"; }
void make_folder(const std::u16string& path) { std::filesystem::create_directory(path); }
void hide_file(const std::u16string& path) { SetFileAttributesW(wide(path), FILE_ATTRIBUTE_HIDDEN); }

void make_program(const std::u16string& path) {
    const std::filesystem::path program(platform::win32::module_path());
    std::filesystem::copy_file(program.parent_path() / "system_contract_program.exe", path);
}

bool has_run(const std::u16string& path) {
    constexpr int kPatience = 30;
    const std::filesystem::path sign(path + u".ran");
    for (int wait = 0; wait < kPatience && !std::filesystem::exists(sign); ++wait) Sleep(100);
    // A program that is still running cannot be removed with its folder.
    for (int wait = 0; wait < kPatience && std::filesystem::exists(sign); ++wait) {
        if (std::filesystem::exists(path) && DeleteFileW(wide(path))) break;
        Sleep(100);
    }
    std::ifstream file(sign);
    std::string text;
    std::getline(file, text);
    return text == "1 run without arguments";
}

}  // namespace vex::test
