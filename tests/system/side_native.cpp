// The native side: the simulated computer.
#include <filesystem>
#include <fstream>
#include <map>

#include "platform/native/machine.h"
#include "simulator/words.h"
#include "tests/system/side.h"

namespace vex::test {
namespace {

class NativeSystemSide final : public SystemSide {
public:
    NativeSystemSide() {
        platform::native::use_machine_folder(machine_.path() / "machine");
        platform::native::on_program_started(
            [this](const std::u16string& path) { ++runs_[platform::native::real_path(path)]; });
        make_folder(folder());
    }
    ~NativeSystemSide() override { platform::native::on_program_started(nullptr); }

    bool is_windows_1252() const override { return true; }
    std::u16string folder() const override { return u"C:\\contract"; }
    void make_file(const std::u16string& path) override { std::ofstream(platform::native::real_path(path)) << "x"; }
    void make_folder(const std::u16string& path) override {
        std::filesystem::create_directory(platform::native::real_path(path));
    }
    void hide(const std::u16string& path) override { platform::native::hide(path); }
    void make_program(const std::u16string& path) override { make_file(path); }
    bool has_run(const std::u16string& path) override { return runs_[platform::native::real_path(path)] == 1; }

private:
    sim::PrivateFolder machine_;
    std::map<std::filesystem::path, int> runs_;
};

}  // namespace

std::unique_ptr<SystemSide> make_system_side() { return std::make_unique<NativeSystemSide>(); }

}  // namespace vex::test
