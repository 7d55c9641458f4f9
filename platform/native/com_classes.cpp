// The COM runtime: apartments, class objects, and the in-process servers that the registry names.
#include <dlfcn.h>

#include <map>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

#include "com/com_ptr.h"
#include "core/runtime_error.h"
#include "platform/native/machine.h"

namespace vex::platform::native {
namespace {

struct ClassRegistration {
    DWORD cookie;
    CLSID clsid;
    com::ComPtr<IUnknown> factory;
};

/// What one thread has of COM. Objects never change threads here, so class objects are the thread's too.
struct Apartment {
    int initialisations = 0;
    DWORD last_cookie = 0;
    std::vector<ClassRegistration> classes;
};

thread_local Apartment apartment;

using GetClassObjectFunction = HRESULT (*)(REFCLSID, REFIID, void**);
using CanUnloadFunction = HRESULT (*)();

/// A loaded in-process server.
struct Server {
    void* library;
    GetClassObjectFunction get_class_object;
    CanUnloadFunction can_unload_now;
    /// Calls of DllGetClassObject under way; the library must not go meanwhile.
    int calls = 0;
};

/// The servers that the process has loaded, by the file's path. The lock guards the table and the counts
/// of calls, and is never held while a server's code runs that may create objects itself.
struct Servers {
    std::mutex mutex;
    std::map<std::filesystem::path, Server> by_path;
};

Servers& servers() {
    // Never destroyed: objects of a server may be released while the process ends.
    static auto& instance = *new Servers;
    return instance;
}

/// The default value of a key below HKEY_CLASSES_ROOT, or an empty text.
std::string class_value(const std::string& path) {
    RegistryKey key = 0;
    Registry& store = registry();
    if (store.open_key(registry_key(kHkeyClassesRoot), path.c_str(), kKeyRead, key) != kSuccess) return {};
    std::uint32_t type = kRegNone;
    std::uint32_t size = 0;
    std::string text;
    if (store.query_value(key, "", type, nullptr, size) == kSuccess && (type == kRegSz || type == kRegExpandSz)) {
        text.resize(size);
        auto* bytes = reinterpret_cast<std::uint8_t*>(text.data());
        if (store.query_value(key, "", type, bytes, size) != kSuccess) text.clear();
        text.resize(std::string_view(text.c_str()).size());
    }
    store.close_key(key);
    return text;
}

std::string clsid_text(REFCLSID clsid) {
    OLECHAR text[39];
    StringFromGUID2(clsid, text, 39);
    return code_page().to_ansi(text);
}

/// Finds or loads the server at `path` and counts a call of it. To be called under the lock.
HRESULT enter_server(Servers& loaded, const std::filesystem::path& path, Server*& server) {
    const auto known = loaded.by_path.find(path);
    if (known != loaded.by_path.end()) {
        server = &known->second;
    } else {
        // No path leads to no file; the loader would take it for the program itself.
        if (path.empty()) return CO_E_DLLNOTFOUND;
        void* library = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
        if (library == nullptr) return CO_E_DLLNOTFOUND;
        const auto get_class_object = reinterpret_cast<GetClassObjectFunction>(dlsym(library, "DllGetClassObject"));
        const auto can_unload_now = reinterpret_cast<CanUnloadFunction>(dlsym(library, "DllCanUnloadNow"));
        if (get_class_object == nullptr) {
            dlclose(library);
            return CO_E_ERRORINDLL;
        }
        server = &loaded.by_path.emplace(path, Server{library, get_class_object, can_unload_now}).first->second;
    }
    ++server->calls;
    return S_OK;
}

HRESULT class_object_of_server(REFCLSID clsid, REFIID iid, LPVOID* object) {
    const std::string path = class_value("CLSID\\" + clsid_text(clsid) + "\\InprocServer32");
    if (path.empty()) return REGDB_E_CLASSNOTREG;
    Servers& loaded = servers();
    std::unique_lock lock(loaded.mutex);
    Server* server = nullptr;
    HRESULT result = enter_server(loaded, real_path(code_page().from_ansi(path)), server);
    if (FAILED(result)) return result;
    lock.unlock();
    result = server->get_class_object(clsid, iid, object);
    lock.lock();
    --server->calls;
    return result;
}

/// Runs a function of the runtime whose tables and texts may run out of memory.
template <class Function>
HRESULT guarded(Function function) noexcept {
    try {
        return function();
    } catch (const std::bad_alloc&) {
        return E_OUTOFMEMORY;
    } catch (...) {
        return E_UNEXPECTED;
    }
}

}  // namespace
}  // namespace vex::platform::native

using vex::platform::native::apartment;
using vex::platform::native::guarded;

HRESULT CoInitializeEx(LPVOID /*reserved*/, DWORD /*concurrency*/) noexcept {
    return ++apartment.initialisations == 1 ? S_OK : S_FALSE;
}

void CoUninitialize() noexcept {
    if (apartment.initialisations == 0 || --apartment.initialisations > 0) return;
    // Releasing a factory may run code that comes back here.
    const auto classes = std::exchange(apartment.classes, {});
}

HRESULT CoRegisterClassObject(REFCLSID clsid, IUnknown* factory, DWORD /*context*/, DWORD /*flags*/,
                              DWORD* cookie) noexcept {
    if (factory == nullptr || cookie == nullptr) return E_INVALIDARG;
    *cookie = 0;
    if (apartment.initialisations == 0) return CO_E_NOTINITIALIZED;
    return guarded([&] {
        apartment.classes.push_back({apartment.last_cookie + 1, clsid, vex::com::ComPtr<IUnknown>(factory)});
        *cookie = ++apartment.last_cookie;
        return S_OK;
    });
}

HRESULT CoRevokeClassObject(DWORD cookie) noexcept {
    for (auto entry = apartment.classes.begin(); entry != apartment.classes.end(); ++entry) {
        if (entry->cookie != cookie) continue;
        const auto factory = entry->factory;
        apartment.classes.erase(entry);
        return S_OK;
    }
    return E_INVALIDARG;
}

HRESULT CoGetClassObject(REFCLSID clsid, DWORD /*context*/, LPVOID /*reserved*/, REFIID iid, LPVOID* object) noexcept {
    if (object == nullptr) return E_INVALIDARG;
    *object = nullptr;
    if (apartment.initialisations == 0) return CO_E_NOTINITIALIZED;
    for (const auto& entry : apartment.classes) {
        if (entry.clsid != clsid) continue;
        const auto factory = entry.factory;
        return factory->QueryInterface(iid, object);
    }
    return guarded([&] { return vex::platform::native::class_object_of_server(clsid, iid, object); });
}

HRESULT CoCreateInstance(REFCLSID clsid, IUnknown* outer, DWORD context, REFIID iid, LPVOID* object) noexcept {
    if (object == nullptr) return E_POINTER;
    *object = nullptr;
    vex::com::ComPtr<IClassFactory> factory;
    const HRESULT result = CoGetClassObject(clsid, context, nullptr, IID_IClassFactory, factory.put_void());
    return FAILED(result) ? result : factory->CreateInstance(outer, iid, object);
}

void CoFreeUnusedLibraries() noexcept {
    auto& loaded = vex::platform::native::servers();
    const std::lock_guard lock(loaded.mutex);
    for (auto entry = loaded.by_path.begin(); entry != loaded.by_path.end();) {
        const auto& server = entry->second;
        if (server.calls == 0 && server.can_unload_now != nullptr && server.can_unload_now() == S_OK) {
            dlclose(server.library);
            entry = loaded.by_path.erase(entry);
        } else {
            ++entry;
        }
    }
}

HRESULT CLSIDFromProgID(LPCOLESTR programmatic_id, CLSID* clsid) noexcept {
    if (programmatic_id == nullptr || clsid == nullptr) return E_INVALIDARG;
    *clsid = GUID_NULL;
    return guarded([&] {
        using namespace vex::platform::native;
        const std::string text = class_value(code_page().to_ansi(programmatic_id) + "\\CLSID");
        if (text.empty()) return CO_E_CLASSSTRING;
        return CLSIDFromString(code_page().from_ansi(text).c_str(), clsid);
    });
}
