// An owning reference to a COM object, and the identities of interfaces for asking by type.
#pragma once

#include <cstddef>
#include <type_traits>
#include <utility>

#include "com/com.h"

namespace vex::com {

/// Specialised for every interface in use: `id()` is its identity, `Base` the interface it derives from.
template <class Interface>
struct InterfaceTraits;

template <>
struct InterfaceTraits<IUnknown> {
    using Base = void;
    static const IID& id() noexcept { return IID_IUnknown; }
};

/// Declares, at namespace vex::com, that `Interface` has the identity `Iid` and derives from `Parent`.
#define VEX_INTERFACE(Interface, Parent, Iid)           \
    template <>                                         \
    struct InterfaceTraits<Interface> {                 \
        using Base = Parent;                            \
        static const IID& id() noexcept { return Iid; } \
    }

VEX_INTERFACE(IClassFactory, IUnknown, IID_IClassFactory);
VEX_INTERFACE(IDispatch, IUnknown, IID_IDispatch);
VEX_INTERFACE(IErrorInfo, IUnknown, IID_IErrorInfo);
VEX_INTERFACE(ICreateErrorInfo, IUnknown, IID_ICreateErrorInfo);
VEX_INTERFACE(ISupportErrorInfo, IUnknown, IID_ISupportErrorInfo);
VEX_INTERFACE(IConnectionPointContainer, IUnknown, IID_IConnectionPointContainer);
VEX_INTERFACE(IConnectionPoint, IUnknown, IID_IConnectionPoint);
VEX_INTERFACE(IProvideClassInfo, IUnknown, IID_IProvideClassInfo);
VEX_INTERFACE(IProvideClassInfo2, IProvideClassInfo, IID_IProvideClassInfo2);
VEX_INTERFACE(IPictureDisp, IDispatch, IID_IPictureDisp);

/// Whether `iid` names `Interface` or one that it derives from.
template <class Interface>
bool interface_matches(REFIID iid) noexcept {
    if constexpr (std::is_void_v<Interface>) {
        return false;
    } else {
        return IsEqualGUID(iid, InterfaceTraits<Interface>::id()) ||
               interface_matches<typename InterfaceTraits<Interface>::Base>(iid);
    }
}

/// Owns one reference to an object, or nothing. Copying adds a reference, the destructor releases it.
template <class Interface>
class ComPtr {
public:
    ComPtr() noexcept = default;
    ComPtr(std::nullptr_t) noexcept {}
    /// Shares `object`: adds a reference of its own.
    explicit ComPtr(Interface* object) noexcept : object_(object) {
        if (object_ != nullptr) object_->AddRef();
    }
    ComPtr(const ComPtr& other) noexcept : ComPtr(other.object_) {}
    ComPtr(ComPtr&& other) noexcept : object_(std::exchange(other.object_, nullptr)) {}
    ComPtr& operator=(ComPtr other) noexcept {
        std::swap(object_, other.object_);
        return *this;
    }
    ~ComPtr() {
        if (object_ != nullptr) object_->Release();
    }

    /// Takes over a reference that the caller owns.
    static ComPtr adopt(Interface* object) noexcept {
        ComPtr result;
        result.object_ = object;
        return result;
    }

    Interface* get() const noexcept { return object_; }
    Interface* operator->() const noexcept { return object_; }
    Interface& operator*() const noexcept { return *object_; }
    explicit operator bool() const noexcept { return object_ != nullptr; }

    /// Gives the reference up to the caller.
    Interface* detach() noexcept { return std::exchange(object_, nullptr); }
    void reset() noexcept { *this = ComPtr(); }

    /// For out-parameters: releases what is held and offers the empty place.
    Interface** put() noexcept {
        reset();
        return &object_;
    }
    void** put_void() noexcept { return reinterpret_cast<void**>(put()); }

    /// The same object under another interface, or nothing when it does not offer it.
    template <class Other>
    ComPtr<Other> query() const noexcept {
        ComPtr<Other> result;
        if (object_ == nullptr || FAILED(object_->QueryInterface(InterfaceTraits<Other>::id(), result.put_void()))) {
            return {};
        }
        return result;
    }

private:
    Interface* object_ = nullptr;
};

}  // namespace vex::com
