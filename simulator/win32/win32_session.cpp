// The Windows program's composition.
#include "simulator/win32/win32_session.h"

#include <iostream>
#include <utility>

#include "com/com.h"
#include "core/runtime_error.h"
#include "core/unicode.h"
#include "platform/library.h"
#include "platform/win32/class_registration.h"
#include "platform/win32/system.h"
#include "simulator/host_classes.h"
#include "simulator/words.h"

namespace vex::sim {
namespace {

constexpr char kPluginFile[] = "vexFirmwarePlugin.dll";
constexpr char kStandardInput[] = "-";

using UnregisterServer = HRESULT(STDAPICALLTYPE*)();

Scenario parse(const std::string& name, const std::string& text, const std::filesystem::path& folder) {
    return parse_scenario(name, text, [&folder](const std::u16string& included) {
        return read_file(folder / std::filesystem::path(included));
    });
}

void refuse_beside_a_real_host() {
    for (const std::u16string& name : host_class_names()) {
        if (!platform::win32::class_has_server(name)) continue;
        throw RuntimeError(kAutomationError, u"the class " + name + u" of a real host is registered on this computer");
    }
}

}  // namespace

Win32Session::Win32Session(CommandLine options)
    : options_(std::move(options)), plugin_(options_.plugin.value_or(program_folder() / kPluginFile)) {
    refuse_beside_a_real_host();
    if (!options_.data) private_.emplace();
    data_ = options_.data ? *options_.data : private_->path();
    std::filesystem::create_directories(data_);
    OleInitialize(nullptr);
    computer_.emplace(plugin_.filename().u16string(), data_, options_.data.has_value());
    screen_.emplace(plugin_.filename().u16string());
}

Win32Session::~Win32Session() {
    screen_.reset();
    computer_.reset();
    for (const std::u16string& name : host_class_names()) platform::win32::remove_class(name);
    try {
        platform::Library(plugin_).function<UnregisterServer>("DllUnregisterServer")();
    } catch (const RuntimeError&) {
        // Without the library nothing was registered.
    }
    OleUninitialize();
}

ExitStatus Win32Session::play(const std::string& file, std::ostream& out, std::ostream& errors) {
    const bool standard_input = file == kStandardInput;
    const std::string text =
        standard_input ? read_stream("standard input", std::cin) : read_file(file);
    const std::filesystem::path folder =
        standard_input ? std::filesystem::path() : std::filesystem::path(file).parent_path();
    const Scenario scenario = parse(standard_input ? "standard input" : file, text, folder);
    return run_scenario(scenario, *computer_, *screen_, folders(folder), options_.quiet, out, errors);
}

RunFolders Win32Session::folders(const std::filesystem::path& scenario) const {
    return {.data = data_, .plugin_library = plugin_, .scenario = scenario};
}

Scenario Win32Session::read_scenario(const std::filesystem::path& file) {
    return parse(file.string(), read_file(file), file.parent_path());
}

std::filesystem::path Win32Session::program_folder() {
    return std::filesystem::path(platform::win32::module_path()).parent_path();
}

}  // namespace vex::sim
