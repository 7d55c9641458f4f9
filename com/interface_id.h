// Ties an interface type to its identity and to the interface it derives from, for QueryInterface by type.
#pragma once

#include "com/com.h"

#include <type_traits>

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
#define VEX_INTERFACE(Interface, Parent, Iid)              \
    template <>                                            \
    struct InterfaceTraits<Interface> {                    \
        using Base = Parent;                               \
        static const IID& id() noexcept { return Iid; }    \
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
VEX_INTERFACE(IPicture, IUnknown, IID_IPicture);
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

}  // namespace vex::com
