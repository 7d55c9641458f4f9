// The Windows program's composition.
#include "simulator/win32/win32_session.h"
#include "platform/win32/windows_api.h"

#include <iostream>
#include <stdexcept>

#include "core/unicode.h"
#include "platform/library.h"
#include "platform/system.h"
#include "simulator/class_library.h"
#include "simulator/registry_editor.h"
#include "simulator/trial.h"

#include <shellapi.h>

namespace vex::sim {

using namespace platform::win32;

std::vector<std::string> program_arguments() {
    int count = 0;
    LPWSTR* const words = CommandLineToArgvW(GetCommandLineW(), &count);
    std::vector<std::string> arguments;
    for (int index = 1; words != nullptr && index < count; ++index) {
        arguments.push_back(to_utf8(reinterpret_cast<const char16_t*>(words[index])));
    }
    LocalFree(words);
    return arguments;
}

bool class_has_server(const std::u16string& programmatic_id) {
    const auto class_text = [](const std::u16string& key) {
        return show_registry({platform::kHkeyClassesRoot, key}, u"");
    };
    const std::u16string key = u"CLSID\\" + class_text(programmatic_id + u"\\CLSID");
    return class_text(key + u"\\InprocServer32") != kNoValue || class_text(key + u"\\LocalServer32") != kNoValue;
}

Win32Session::Win32Session(const CommandLine& options)
    : Session(options, std::filesystem::path(platform::win32::module_path()).parent_path(), "vexFirmwarePlugin.dll") {
    for (const HostClass& known : host_classes()) {
        if (class_has_server(known.programmatic_id))
            throw RuntimeError(kAutomationError, u"the class " + known.programmatic_id +
                                                     u" of a real host is registered on this machine");
    }
    std::filesystem::create_directories(data_);
    OleInitialize(nullptr);
    machine_.emplace(plugin_.filename().u16string(), data_, options.data.has_value());
    screen_.emplace(plugin_.filename().u16string());
}

Win32Session::~Win32Session() {
    screen_.reset();
    machine_.reset();
    for (const HostClass& known : host_classes()) RegDeleteTreeW(HKEY_CLASSES_ROOT, wide(known.programmatic_id));
    try {
        platform::Library(plugin_).function<HRESULT(STDAPICALLTYPE*)()>("DllUnregisterServer")();
    } catch (const RuntimeError&) {
        // Without the library nothing was registered.
    }
    OleUninitialize();
}

int Win32Session::play_without_scenario() {
    machine_->show_real_disks();
    return try_out(std::cout, std::cerr, [&](Host& host, PluginHost& plugin, bool fresh) {
        // The Open dialog shows the real disks, so it begins where the sample firmware really is.
        if (fresh)
            write_registry({.key = u"Software\\Norvan\\Brivola3\\Firmware"}, u"LastFilePath", u"sz",
                           samples_.u16string());
        RunProgress progress(host);
        const Trial trial(host, platform::desktop(), progress, options_.speed, [] { return false; });
        machine_->on_program_started([](const std::u16string& path) {
            std::cout << "not started, since this is a simulation: " << to_utf8(path) << '\n';
        });
        const ExitStatus status = start(plugin, std::cerr);
        machine_->on_program_started(nullptr);
        return status;
    });
}

int Win32Session::print_controls() { throw std::invalid_argument("controls are printed natively only"); }

}  // namespace vex::sim
