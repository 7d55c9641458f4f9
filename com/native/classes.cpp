// The COM runtime: identities as text, apartments, class objects, and the in-process servers that the registry
// names.
#include <dlfcn.h>

#include <algorithm>
#include <bit>
#include <cstdint>
#include <filesystem>
#include <iterator>
#include <list>
#include <map>
#include <new>
#include <string>
#include <utility>

#include "com/native/server.h"
#include "core/digits.h"
#include "core/runtime_error.h"
#include "platform/library.h"
#include "platform/native/machine.h"
#include "platform/registry.h"
#include "platform/system.h"

namespace vex::com::native {
namespace {

using platform::from_ansi;
using platform::to_ansi;

struct ClassRegistration {
    CLSID clsid;
    ComPtr<IUnknown> factory;
};

/// An in-process server that the thread has loaded; others may have loaded it, too, each for itself. It goes with the
/// thread at the latest.
struct Server {
    /// Raises RuntimeError where there is no such library, or it is no server.
    explicit Server(const std::filesystem::path& its_file) : file(its_file), library(its_file) {}

    std::filesystem::path file;
    platform::Library library;
    decltype(&DllGetClassObject) get_class_object = library.function<decltype(&DllGetClassObject)>("DllGetClassObject");
    decltype(&DllCanUnloadNow) can_unload_now = library.function<decltype(&DllCanUnloadNow)>("DllCanUnloadNow");
};

/// What one thread has of COM. Objects never change threads here, so class objects are the thread's too.
struct Apartment {
    int initialisations = 0;
    DWORD last_cookie = 0;
    /// By their cookies.
    std::map<DWORD, ClassRegistration> classes;
    std::list<Server> servers;
};

thread_local Apartment apartment;

/// How much room an identity as text needs, its null included.
constexpr int kTextSize = 39;

/// The default value of a key below HKEY_CLASSES_ROOT, or an empty text.
std::string class_value(const std::string& path) {
    using namespace platform;
    struct OpenKey {
        RegistryKey key{};
        ~OpenKey() { registry().close_key(key); }
    } open;
    if (registry().open_key(registry_key(kHkeyClassesRoot), path.c_str(), kKeyRead, open.key) != kSuccess) return {};
    std::uint32_t type{}, size{};
    registry().query_value(open.key, "", type, nullptr, size);
    std::string text(size, '\0');
    const std::int32_t result =
        registry().query_value(open.key, "", type, reinterpret_cast<std::uint8_t*>(text.data()), size);
    return result == kSuccess ? text.c_str() : "";
}

/// The class object of the server that the registry names.
HRESULT find_in_server(REFCLSID clsid, ComPtr<IClassFactory>& factory) {
    OLECHAR name[kTextSize];
    StringFromGUID2(clsid, name, kTextSize);
    const std::string path = class_value("CLSID\\" + to_ansi(name) + "\\InprocServer32");
    if (path.empty()) return REGDB_E_CLASSNOTREG;
    const std::filesystem::path file = platform::native::real_path(from_ansi(path));
    if (file.empty()) return CO_E_DLLNOTFOUND;
    const auto known = std::ranges::find(apartment.servers, file, &Server::file);
    try {
        const Server& server = known != apartment.servers.end() ? *known : apartment.servers.emplace_back(file);
        return server.get_class_object(clsid, IID_IClassFactory, factory.put_void());
    } catch (const RuntimeError&) {
        return CO_E_DLLNOTFOUND;
    }
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

/// An identity as text: its bytes in the order in which they are written, numbers with their highest byte first.
constexpr std::size_t kWritten[] = {3, 2, 1, 0, 5, 4, 7, 6, 8, 9, 10, 11, 12, 13, 14, 15};
static_assert(std::endian::native == std::endian::little && std::size(kWritten) == sizeof(GUID));

/// Whether a hyphen stands before the byte at that place in the text.
constexpr bool has_hyphen(std::size_t place) noexcept {
    return place == 4 || place == 6 || place == 8 || place == 10;
}

}  // namespace

std::u16string module_path(const void* address) {
    Dl_info info{};
    if (dladdr(address, &info) == 0) {
        throw RuntimeError(kCannotCreateObject, u"The module's path is unknown");
    }
    return platform::native::drive_path(std::filesystem::absolute(info.dli_fname));
}

}  // namespace vex::com::native

using namespace vex::com::native;

int StringFromGUID2(REFGUID guid, LPOLESTR text, int capacity) noexcept {
    if (text == nullptr || capacity < kTextSize) return 0;
    const auto* bytes = reinterpret_cast<const std::uint8_t*>(&guid);
    *text++ = u'{';
    for (std::size_t i = 0; i < sizeof guid; ++i) {
        if (has_hyphen(i)) *text++ = u'-';
        for (const char16_t digit : vex::digits_of(bytes[kWritten[i]], 16, 2)) *text++ = digit;
    }
    *text++ = u'}';
    *text = 0;
    return kTextSize;
}

HRESULT CLSIDFromString(LPCOLESTR text, CLSID* clsid) noexcept {
    if (clsid == nullptr) return E_INVALIDARG;
    *clsid = GUID_NULL;
    if (text == nullptr) return S_OK;
    GUID guid;
    auto* bytes = reinterpret_cast<std::uint8_t*>(&guid);
    if (*text++ != u'{') return CO_E_CLASSSTRING;
    for (std::size_t i = 0; i < sizeof guid; ++i) {
        if (has_hyphen(i) && *text++ != u'-') return CO_E_CLASSSTRING;
        const int high = vex::hex_value(*text++);
        // A text that ends here is read no further.
        const int low = high < 0 ? high : vex::hex_value(*text++);
        if (low < 0) return CO_E_CLASSSTRING;
        bytes[kWritten[i]] = static_cast<std::uint8_t>(high * 16 + low);
    }
    if (text[0] != u'}' || text[1] != 0) return CO_E_CLASSSTRING;
    *clsid = guid;
    return S_OK;
}

HRESULT CLSIDFromProgID(LPCOLESTR programmatic_id, CLSID* clsid) noexcept {
    *clsid = GUID_NULL;
    return guarded([&] {
        const std::string text = class_value(to_ansi(programmatic_id) + "\\CLSID");
        if (text.empty()) return CO_E_CLASSSTRING;
        return CLSIDFromString(from_ansi(text).c_str(), clsid);
    });
}

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
    if (apartment.initialisations == 0) return CO_E_NOTINITIALIZED;
    return guarded([&] {
        apartment.classes[apartment.last_cookie + 1] = {clsid, vex::com::ComPtr<IUnknown>(factory)};
        *cookie = ++apartment.last_cookie;
        return S_OK;
    });
}

HRESULT CoRevokeClassObject(DWORD cookie) noexcept {
    return apartment.classes.extract(cookie).empty() ? E_INVALIDARG : S_OK;
}

HRESULT CoCreateInstance(REFCLSID clsid, IUnknown* outer, DWORD /*context*/, REFIID iid, LPVOID* object) noexcept {
    if (object == nullptr) return E_POINTER;
    *object = nullptr;
    if (apartment.initialisations == 0) return CO_E_NOTINITIALIZED;
    const auto offered =
        std::ranges::find(apartment.classes, clsid, [](const auto& entry) { return entry.second.clsid; });
    vex::com::ComPtr<IClassFactory> factory;
    HRESULT result = S_OK;
    if (offered != apartment.classes.end()) {
        // A copy: what is asked may revoke the class.
        const auto held = offered->second.factory;
        result = held->QueryInterface(IID_IClassFactory, factory.put_void());
    } else {
        result = guarded([&] { return find_in_server(clsid, factory); });
    }
    return FAILED(result) ? result : factory->CreateInstance(outer, iid, object);
}

void CoFreeUnusedLibraries() noexcept {
    std::erase_if(apartment.servers, [](const Server& server) { return server.can_unload_now() == S_OK; });
}
