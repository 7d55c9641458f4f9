// The Windows side: real files, and a program that leaves a file behind as a sign that it ran.
#include <filesystem>
#include <fstream>

#include "platform/win32/windows_api.h"
#include "simulator/win32/win32_session.h"
#include "simulator/words.h"
#include "tests/system/side.h"

namespace vex::test {
namespace {

constexpr char16_t kSign[] = u".ran";

class Win32SystemSide final : public SystemSide {
public:
    bool is_windows_1252() const override { return GetACP() == 1252; }
    std::u16string folder() const override { return folder_.path().u16string(); }
    void make_file(const std::u16string& path) override { std::ofstream(std::filesystem::path(path)) << "x"; }
    void make_folder(const std::u16string& path) override { std::filesystem::create_directory(path); }
    void hide(const std::u16string& path) override {
        SetFileAttributesW(platform::win32::wide(path), FILE_ATTRIBUTE_HIDDEN);
    }
    void make_program(const std::u16string& path) override {
        CopyFileW(
            platform::win32::wide(std::filesystem::path(platform::win32::module_path()).parent_path().u16string() +
                                  u"\\system_contract_program.exe"),
            platform::win32::wide(path), TRUE);
    }
    bool has_run(const std::u16string& path) override {
        constexpr int kPatience = 30;
        const std::filesystem::path sign(path + kSign);
        for (int wait = 0; wait < kPatience && !std::filesystem::exists(sign); ++wait) Sleep(100);
        // A program that is still running cannot be removed with its folder.
        for (int wait = 0; wait < kPatience && std::filesystem::exists(sign); ++wait) {
            if (std::filesystem::exists(path) && DeleteFileW(platform::win32::wide(path))) break;
            Sleep(100);
        }
        std::ifstream file(sign);
        std::string text;
        std::getline(file, text);
        return text == "1 run without arguments";
    }

private:
    sim::PrivateFolder folder_;
};

}  // namespace

std::unique_ptr<SystemSide> make_system_side() { return std::make_unique<Win32SystemSide>(); }

}  // namespace vex::test
