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

ExitStatus NativeSession::play(const std::string& file) {
    const bool from_input = file == kStandardInput;
    const std::string text =
        from_input ? std::string{std::istreambuf_iterator<char>(std::cin), {}} : read_file(file);
    const Scenario scenario = parse_scenario(from_input ? "standard input" : file, text);
    const RunFolders folders{
        .data = data_,
        .plugin_library = options_.plugin.value_or(program_folder() / kPluginFile),
        .scenario = from_input ? std::filesystem::path() : std::filesystem::path(file).parent_path(),
    };
    return run_scenario(scenario, computer_, screen_, folders, options_.quiet, std::cout, std::cerr);
}

std::filesystem::path NativeSession::program_folder() {
    return std::filesystem::read_symlink("/proc/self/exe").parent_path();
}

}  // namespace vex::sim
