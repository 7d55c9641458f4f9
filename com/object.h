// What COM objects of ours share: the reference count, QueryInterface by a list of interfaces, the module's count
// of living objects, and what IDispatch answers where there is no type information.
#pragma once

#include <atomic>

#include "com/com_ptr.h"

namespace vex::com {

/// How many objects and locks keep a module loaded. Process-wide and safe from any thread.
class ModuleLifetime {
public:
    void add_object() noexcept { ++objects_; }
    void remove_object() noexcept { --objects_; }
    void add_lock() noexcept { ++locks_; }
    /// Does nothing where no lock is left: clients are not trusted to count theirs.
    void remove_lock() noexcept {
        long locks = locks_;
        while (locks > 0 && !locks_.compare_exchange_weak(locks, locks - 1)) {
        }
    }
    /// True while no object is alive and no factory is locked.
    bool can_unload() const noexcept { return objects_ == 0 && locks_ == 0; }
    long objects() const noexcept { return objects_; }

private:
    std::atomic<long> objects_{0};
    std::atomic<long> locks_{0};
};

/// Base of a COM object: `class Foo final : public Object<Foo, IFirst, ISecond>`.
/// Made by `make_object`; deletes itself with the last reference. The first interface gives the identity
/// (IUnknown). Reference counting is atomic, every other call belongs to the creating thread.
template <class Derived, class First, class... More>
class Object : public First, public More... {
public:
    Object(const Object&) = delete;
    Object& operator=(const Object&) = delete;

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) noexcept override {
        if (object == nullptr) return E_POINTER;
        *object = nullptr;
        if (interface_matches<First>(iid)) {
            *object = static_cast<First*>(this);
        } else {
            ((interface_matches<More>(iid) ? void(*object = static_cast<More*>(this)) : void()), ...);
        }
        if (*object == nullptr) return E_NOINTERFACE;
        AddRef();
        return S_OK;
    }

    ULONG STDMETHODCALLTYPE AddRef() noexcept override { return ++references_; }

    ULONG STDMETHODCALLTYPE Release() noexcept override {
        const ULONG left = --references_;
        if (left == 0) delete static_cast<Derived*>(this);
        return left;
    }

protected:
    explicit Object(ModuleLifetime& module) noexcept : module_(module) { module_.add_object(); }
    ~Object() { module_.remove_object(); }

    ModuleLifetime& module() const noexcept { return module_; }

private:
    std::atomic<ULONG> references_{1};
    ModuleLifetime& module_;
};

/// Stands for `Dispatch`, IDispatch or an interface that adds no methods to it, in an object without type
/// information. Where a derived class says nothing else, its members have ids and no names.
template <class Dispatch>
class Untyped : public Dispatch {
public:
    HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) noexcept override {
        if (count == nullptr) return E_POINTER;
        *count = 0;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT /*index*/, LCID /*locale*/, ITypeInfo** info) noexcept override {
        if (info != nullptr) *info = nullptr;
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID /*reserved*/, LPOLESTR* /*names*/, UINT /*count*/, LCID /*locale*/,
                                            DISPID* /*ids*/) noexcept override {
        return DISP_E_UNKNOWNNAME;
    }
};

template <class Dispatch>
struct InterfaceTraits<Untyped<Dispatch>> : InterfaceTraits<Dispatch> {};

/// Makes an object and owns its first reference.
template <class Derived, class... Arguments>
ComPtr<Derived> make_object(Arguments&&... arguments) {
    return ComPtr<Derived>::adopt(new Derived(std::forward<Arguments>(arguments)...));
}

}  // namespace vex::com
