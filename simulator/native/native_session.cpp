// The native program's composition.
#include "simulator/native/native_session.h"

#include <iostream>
#include <iterator>

#include "com/com.h"
#include "platform/native/machine.h"
#include "simulator/words.h"

namespace vex::sim {
namespace {

constexpr char kPluginFile[] = "libvexFirmwarePlugin.so";
constexpr char kStandardInput[] = "-";

}  // namespace

NativeSession::NativeSession(const CommandLine& options) : options_(options) {
    if (!options_.data) private_.emplace();
    data_ = options_.data ? *options_.data : private_->path();
    platform::native::use_machine_folder(data_);
    platform::native::set_desktop(&screen_.toolkit());
    CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
}

NativeSession::~NativeSession() {
    CoUninitialize();
    platform::native::set_desktop(nullptr);
}

ExitStatus NativeSession::play(const std::string& file, std::ostream& out, std::ostream& errors) {
    if (file == kStandardInput) {
        return play_text("standard input", std::string{std::istreambuf_iterator<char>(std::cin), {}}, {}, out, errors);
    }
    return play_text(file, read_file(file), std::filesystem::path(file).parent_path(), out, errors);
}

ExitStatus NativeSession::play_text(const std::string& name, const std::string& text,
                                    const std::filesystem::path& folder, std::ostream& out, std::ostream& errors) {
    const Scenario scenario = parse_scenario(
        name, text, [&folder](const std::u16string& included) { return read_file(folder / std::filesystem::path(included)); });
    const RunFolders folders{
        .data = data_,
        .plugin_library = options_.plugin.value_or(program_folder() / kPluginFile),
        .scenario = folder,
    };
    return run_scenario(scenario, computer_, screen_, folders, options_.quiet, out, errors);
}

std::filesystem::path NativeSession::program_folder() {
    return std::filesystem::read_symlink("/proc/self/exe").parent_path();
}

}  // namespace vex::sim
