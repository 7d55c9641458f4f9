// The Windows program's composition.
#include "simulator/win32/win32_session.h"

#include "com/com.h"
#include "core/runtime_error.h"
#include "platform/library.h"
#include "platform/win32/system.h"
#include "simulator/class_library.h"
#include "simulator/win32/program.h"

namespace vex::sim {
namespace {

using UnregisterServer = HRESULT(STDAPICALLTYPE*)();

void refuse_beside_a_real_host() {
    for (const std::u16string_view name : host_class_names()) {
        if (!class_has_server(std::u16string(name))) continue;
        throw RuntimeError(kAutomationError, u"the class " + std::u16string(name) + u" of a real host is registered on this machine");
    }
}

}  // namespace

Win32Session::Win32Session(const CommandLine& options)
    : Session(options, std::filesystem::path(platform::win32::module_path()).parent_path(), "vexFirmwarePlugin.dll") {
    refuse_beside_a_real_host();
    std::filesystem::create_directories(data());
    OleInitialize(nullptr);
    machine_.emplace(plugin().filename().u16string(), data(), options.data.has_value());
    screen_.emplace(plugin().filename().u16string());
}

Win32Session::~Win32Session() {
    screen_.reset();
    machine_.reset();
    for (const std::u16string_view name : host_class_names()) remove_class(std::u16string(name));
    try {
        platform::Library(plugin()).function<UnregisterServer>("DllUnregisterServer")();
    } catch (const RuntimeError&) {
        // Without the library nothing was registered.
    }
    OleUninitialize();
}

}  // namespace vex::sim
