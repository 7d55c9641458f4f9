// The least that a registrable COM server can be: the yardstick for what ours costs. Written straight against the
// system and sharing nothing with the product, so that it cannot hide a cost of it.
#include "bench/windows/minimal_server.h"

#include <atomic>
#include <cstring>
#include <new>

namespace {

constexpr char kMinimalClassKey[] = "CLSID\\{6F3B9A52-1C0D-4E7B-9A41-5D2E83B716C4}";

std::atomic<long> objects{0};

/// The life of an object with one interface.
template <class Interface, const IID& kIid>
class Counted : public Interface {
public:
    Counted() noexcept { ++objects; }
    Counted(const Counted&) = delete;
    Counted& operator=(const Counted&) = delete;

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) noexcept override {
        const bool known = IsEqualGUID(iid, IID_IUnknown) || IsEqualGUID(iid, kIid);
        *object = known ? this : nullptr;
        if (known) this->AddRef();
        return known ? S_OK : E_NOINTERFACE;
    }
    ULONG STDMETHODCALLTYPE AddRef() noexcept override { return ++references_; }
    ULONG STDMETHODCALLTYPE Release() noexcept override {
        const ULONG left = --references_;
        if (left == 0) delete this;
        return left;
    }

protected:
    virtual ~Counted() { --objects; }

private:
    std::atomic<ULONG> references_{1};
};

/// Makes an object for its first reference's owner.
template <class Made>
HRESULT give(REFIID iid, void** object) noexcept {
    auto* made = new (std::nothrow) Made;
    if (made == nullptr) return E_OUTOFMEMORY;
    const HRESULT result = made->QueryInterface(iid, object);
    made->Release();
    return result;
}

/// An automation object without members.
class Empty final : public Counted<IDispatch, IID_IDispatch> {
public:
    HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) noexcept override {
        *count = 0;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo**) noexcept override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) noexcept override {
        return DISP_E_UNKNOWNNAME;
    }
    HRESULT STDMETHODCALLTYPE Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*,
                                     UINT*) noexcept override {
        return DISP_E_MEMBERNOTFOUND;
    }
};

class Factory final : public Counted<IClassFactory, IID_IClassFactory> {
public:
    HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown* outer, REFIID iid, void** object) noexcept override {
        *object = nullptr;
        if (outer != nullptr) return CLASS_E_NOAGGREGATION;
        return give<Empty>(iid, object);
    }
    HRESULT STDMETHODCALLTYPE LockServer(BOOL lock) noexcept override {
        objects += lock != 0 ? 1 : -1;
        return S_OK;
    }
};

bool set(HKEY key, const char* name, const char* text) noexcept {
    const auto size = static_cast<DWORD>(std::strlen(text) + 1);
    return RegSetValueExA(key, name, 0, REG_SZ, reinterpret_cast<const BYTE*>(text), size) == ERROR_SUCCESS;
}

}  // namespace

extern "C" {

HRESULT STDAPICALLTYPE DllCanUnloadNow() { return objects == 0 ? S_OK : S_FALSE; }

HRESULT STDAPICALLTYPE DllGetClassObject(REFCLSID clsid, REFIID iid, LPVOID* object) {
    *object = nullptr;
    if (!IsEqualGUID(clsid, vex::bench::kMinimalClass)) return CLASS_E_CLASSNOTAVAILABLE;
    return give<Factory>(iid, object);
}

HRESULT STDAPICALLTYPE DllRegisterServer() {
    char path[MAX_PATH];
    HMODULE own = nullptr;
    constexpr DWORD kByAddress = GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT;
    GetModuleHandleExA(kByAddress, reinterpret_cast<LPCSTR>(&objects), &own);
    GetModuleFileNameA(own, path, MAX_PATH);

    HKEY type = nullptr;
    HKEY server = nullptr;
    const bool written =
        RegCreateKeyExA(HKEY_CLASSES_ROOT, kMinimalClassKey, 0, nullptr, 0, KEY_WRITE, nullptr, &type, nullptr) ==
            ERROR_SUCCESS &&
        set(type, nullptr, "Minimal server") &&
        RegCreateKeyExA(type, "InprocServer32", 0, nullptr, 0, KEY_WRITE, nullptr, &server, nullptr) == ERROR_SUCCESS &&
        set(server, nullptr, path) && set(server, "ThreadingModel", "Apartment");
    if (server != nullptr) RegCloseKey(server);
    if (type != nullptr) RegCloseKey(type);
    return written ? S_OK : SELFREG_E_CLASS;
}

HRESULT STDAPICALLTYPE DllUnregisterServer() {
    HKEY type = nullptr;
    if (RegOpenKeyExA(HKEY_CLASSES_ROOT, kMinimalClassKey, 0, KEY_WRITE, &type) != ERROR_SUCCESS)
        return SELFREG_E_CLASS;
    RegDeleteKeyA(type, "InprocServer32");
    RegCloseKey(type);
    return RegDeleteKeyA(HKEY_CLASSES_ROOT, kMinimalClassKey) == ERROR_SUCCESS ? S_OK : SELFREG_E_CLASS;
}

}  // extern "C"
