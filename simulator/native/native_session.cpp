// The native program's composition.
#include "simulator/native/native_session.h"

#include <iostream>
#include <utility>

#include "com/com.h"
#include "platform/native/machine.h"
#include "simulator/native/pictured_screen.h"
#include "simulator/words.h"

namespace vex::sim {
namespace {

constexpr char kPluginFile[] = "libvexFirmwarePlugin.so";
constexpr char kStandardInput[] = "-";

Scenario parse(const std::string& name, const std::string& text, const std::filesystem::path& folder) {
    return parse_scenario(name, text, [&folder](const std::u16string& included) {
        return read_file(folder / std::filesystem::path(included));
    });
}

}  // namespace

NativeSession::NativeSession(CommandLine options) : options_(std::move(options)) {
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
        return play_text("standard input", read_stream("standard input", std::cin), {}, out, errors);
    }
    return play_text(file, read_file(file), std::filesystem::path(file).parent_path(), out, errors);
}

ExitStatus NativeSession::play_text(const std::string& name, const std::string& text,
                                    const std::filesystem::path& folder, std::ostream& out, std::ostream& errors) {
    const Scenario scenario = parse(name, text, folder);
    Pictures pictures(out);
    screen_.set_onlooker(options_.pictures ? &pictures : nullptr);
    return run_scenario(scenario, computer_, screen_, folders(folder), options_.quiet, out, errors);
}

RunFolders NativeSession::folders(const std::filesystem::path& scenario) const {
    return {
        .data = data_,
        .plugin_library = options_.plugin.value_or(program_folder() / kPluginFile),
        .scenario = scenario,
    };
}

Scenario NativeSession::read_scenario(const std::filesystem::path& file) {
    return parse(file.string(), read_file(file), file.parent_path());
}

std::filesystem::path NativeSession::program_folder() {
    return std::filesystem::read_symlink("/proc/self/exe").parent_path();
}

}  // namespace vex::sim
