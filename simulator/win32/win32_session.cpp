// The Windows program's composition.
#include "simulator/win32/win32_session.h"
#include "platform/win32/windows_api.h"

#include <algorithm>
#include <cstdio>

#include "core/unicode.h"
#include "platform/library.h"
#include "simulator/class_library.h"

#include <fcntl.h>
#include <io.h>
#include <shellapi.h>

namespace vex::sim {

using namespace platform::win32;

namespace {

/// The key of the class behind a name, or empty text. Only an identity names a class: anything else that
/// stands in the registry there could lead to the key of all classes, which is not ours to remove.
std::u16string class_key(const std::u16string& programmatic_id) {
    constexpr DWORD kGuidLength = 39;
    std::u16string clsid(kGuidLength, u'\0');
    DWORD size = kGuidLength * sizeof(char16_t);
    const LSTATUS result = RegGetValueW(HKEY_CLASSES_ROOT, wide(programmatic_id + u"\\CLSID"), nullptr, RRF_RT_REG_SZ,
                                        nullptr, clsid.data(), &size);
    clsid.resize(result == ERROR_SUCCESS ? std::min(clsid.size(), clsid.find(u'\0')) : 0);
    IID identity;
    const bool known = !clsid.empty() && SUCCEEDED(IIDFromString(wide(clsid), &identity));
    return known ? u"CLSID\\" + clsid : std::u16string();
}

bool key_exists(const std::u16string& path) noexcept {
    HKEY key = nullptr;
    const bool exists = RegOpenKeyExW(HKEY_CLASSES_ROOT, wide(path), 0, KEY_READ, &key) == ERROR_SUCCESS;
    if (exists) RegCloseKey(key);
    return exists;
}

}  // namespace

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

void use_plain_streams() noexcept {
    for (std::FILE* stream : {stdin, stdout, stderr}) _setmode(_fileno(stream), _O_BINARY);
    SetConsoleOutputCP(CP_UTF8);
}

bool class_has_server(const std::u16string& programmatic_id) {
    const std::u16string key = class_key(programmatic_id);
    return !key.empty() && (key_exists(key + u"\\InprocServer32") || key_exists(key + u"\\LocalServer32"));
}

void remove_class(const std::u16string& programmatic_id) {
    const std::u16string key = class_key(programmatic_id);
    if (!key.empty()) RegDeleteTreeW(HKEY_CLASSES_ROOT, wide(key));
    RegDeleteTreeW(HKEY_CLASSES_ROOT, wide(programmatic_id));
}

Win32Session::Win32Session(const CommandLine& options)
    : Session(options, std::filesystem::path(platform::win32::module_path()).parent_path(), "vexFirmwarePlugin.dll") {
    for (const std::u16string& name : host_class_names()) {
        if (class_has_server(name))
            throw RuntimeError(kAutomationError,
                               u"the class " + name + u" of a real host is registered on this machine");
    }
    std::filesystem::create_directories(data());
    OleInitialize(nullptr);
    machine_.emplace(plugin().filename().u16string(), data(), options.data.has_value());
    screen_.emplace(plugin().filename().u16string());
}

Win32Session::~Win32Session() {
    screen_.reset();
    machine_.reset();
    for (const std::u16string& name : host_class_names()) remove_class(name);
    try {
        platform::Library(plugin()).function<HRESULT(STDAPICALLTYPE*)()>("DllUnregisterServer")();
    } catch (const RuntimeError&) {
        // Without the library nothing was registered.
    }
    OleUninitialize();
}

}  // namespace vex::sim
