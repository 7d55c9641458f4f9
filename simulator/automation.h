// Automation objects by table: members with names, dispatch ids and argument types behind IDispatch; controls that
// raise events; calls by name.
#pragma once

#include <algorithm>
#include <array>
#include <initializer_list>
#include <iterator>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "com/boundary.h"
#include "com/object.h"
#include "com/variant.h"
#include "simulator/host.h"

namespace vex::sim {

inline constexpr WORD kGet = DISPATCH_PROPERTYGET;
inline constexpr WORD kPut = DISPATCH_PROPERTYPUT;
inline constexpr WORD kMethod = DISPATCH_METHOD;

inline constexpr VARTYPE kTextReference = VT_BYREF | VT_BSTR;
inline constexpr VARTYPE kObjectReference = VT_BYREF | VT_DISPATCH;

/// A member as its callers know it.
struct MemberFacts {
    std::u16string_view name;
    std::uint32_t id;
    /// kGet, kPut or kMethod.
    WORD kind;
    /// Of the arguments, in the order in which they are written; VT_EMPTY ends them.
    std::array<VARTYPE, 3> types = {};

    bool is_called(DISPID called, WORD flags) const noexcept {
        return static_cast<DISPID>(id) == called && (kind & flags) != 0;
    }
};

/// The arguments of one call, in the order in which they are written. They are taken as they are declared:
/// a real host may convert, and a caller that counts on it finds out here.
class CallArguments {
public:
    /// The references outlive it. Raises 13 for an argument that is missing or of another kind than declared, naming
    /// its place, which `wrong` gets as automation counts (from the last, 0), too; 450 for one too many.
    CallArguments(const DISPPARAMS& parameters, const MemberFacts& member, UINT* wrong);

    const MemberFacts& member() const noexcept { return member_; }
    std::u16string text(std::size_t index) const;
    std::int16_t int16(std::size_t index) const { return at(index).iVal; }
    std::int32_t int32(std::size_t index) const { return at(index).lVal; }
    double real(std::size_t index) const { return at(index).dblVal; }
    /// The caller's place of an object: what is in it belongs to the caller, also where it was replaced.
    IDispatch** object_place(std::size_t index) const { return at(index).ppdispVal; }
    /// Each as the trace shows it, with a blank before it; objects are left out.
    std::u16string shown() const;
    /// How the trace begins to tell of the call: "call OBJECT.MEMBER ARGUMENTS", "put OBJECT.MEMBER = VALUE" or
    /// "get OBJECT.MEMBER".
    std::u16string shown_call(std::u16string_view object) const;

private:
    // Last argument first, as automation passes them.
    const VARIANTARG& at(std::size_t index) const { return parameters_.rgvarg[parameters_.cArgs - 1 - index]; }

    const DISPPARAMS& parameters_;
    const MemberFacts& member_;
};

/// A member of the automation class `Object`.
template <class Object>
struct Member : MemberFacts {
    com::Variant (Object::*call)(const CallArguments& arguments);
};

/// Base of the host's automation objects, whose name is `Derived::kClass` and whose table `Derived::kMembers`.
/// `Derived::on_call`, where there is one, is told of each call first and may raise an error in place of it.
template <class Derived, class... Interfaces>
class AutomationObject : public com::Object<Derived, com::Untyped<IDispatch>, Interfaces...> {
public:
    explicit AutomationObject(Host& host) noexcept
        : com::Object<Derived, com::Untyped<IDispatch>, Interfaces...>(host.lifetime), host_(host) {}

    HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID /*reserved*/, LPOLESTR* names, UINT count, LCID /*locale*/,
                                            DISPID* ids) noexcept override {
        if (names == nullptr || ids == nullptr || count == 0) return E_INVALIDARG;
        // Only the member's name: parameters are not named here.
        std::fill_n(ids, count, DISPID_UNKNOWN);
        const std::u16string_view name = names[0] == nullptr ? u"" : reinterpret_cast<const char16_t*>(names[0]);
        for (const MemberFacts& member : Derived::kMembers) {
            if (equal_ignoring_case(name, member.name)) ids[0] = static_cast<DISPID>(member.id);
        }
        return ids[0] == DISPID_UNKNOWN || count > 1 ? DISP_E_UNKNOWNNAME : S_OK;
    }

    HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID reserved, LCID /*locale*/, WORD flags, DISPPARAMS* parameters,
                                     // NOLINTNEXTLINE(readability-non-const-parameter): the interface's
                                     VARIANT* result, EXCEPINFO* exception, UINT* argument_error) noexcept override {
        if (result != nullptr) VariantInit(result);
        if (!IsEqualGUID(reserved, IID_NULL)) return DISP_E_UNKNOWNINTERFACE;
        if (parameters == nullptr) return E_INVALIDARG;
        const auto* const member = std::ranges::find_if(
            Derived::kMembers, [&](const MemberFacts& facts) { return facts.is_called(id, flags); });
        if (member == std::end(Derived::kMembers)) return DISP_E_MEMBERNOTFOUND;
        // The one named argument is the value of a property, which has no answer.
        const bool puts_value = parameters->cNamedArgs == 1 && parameters->rgdispidNamedArgs != nullptr &&
                                *parameters->rgdispidNamedArgs == DISPID_PROPERTYPUT && result == nullptr;
        if ((member->kind == kPut) != puts_value) return DISP_E_PARAMNOTFOUND;
        // Called back in the middle of a call, the object may lose its last other reference.
        const com::ComPtr<Derived> alive(static_cast<Derived*>(this));
        return guarded_invoke(exception, [&] {
            const auto answer = [&] {
                const CallArguments arguments(*parameters, *member, argument_error);
                if constexpr (requires { alive->on_call(arguments); }) alive->on_call(arguments);
                return (alive.get()->*member->call)(arguments);
            };
            com::Variant value = host_.outcome_of({Derived::kClass, member, flags, parameters}, answer);
            if (result != nullptr) *result = value.detach();
            return S_OK;
        });
    }

protected:
    Host& host_;
};

/// Where the plug-in's event stands among the events of each control.
inline constexpr DISPID kHandledEvent = 9;

/// Base of a control with one source interface, `Derived::kSourceInterface`, whose connection point it is.
template <class Derived>
class EventfulControl
    : public AutomationObject<Derived, IConnectionPointContainer, IConnectionPoint, IProvideClassInfo2> {
public:
    using AutomationObject<Derived, IConnectionPointContainer, IConnectionPoint, IProvideClassInfo2>::AutomationObject;

    /// Callers know controls by dispatch ids.
    HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID /*reserved*/, LPOLESTR* /*names*/, UINT /*count*/, LCID /*locale*/,
                                            DISPID* /*ids*/) noexcept override {
        return DISP_E_UNKNOWNNAME;
    }
    HRESULT STDMETHODCALLTYPE EnumConnectionPoints(IEnumConnectionPoints** points) noexcept override {
        return offers_none(points);
    }
    HRESULT STDMETHODCALLTYPE FindConnectionPoint(REFIID iid, IConnectionPoint** point) noexcept override {
        if (point == nullptr) return E_POINTER;
        const bool own = IsEqualGUID(iid, Derived::kSourceInterface);
        *point = com::ComPtr<IConnectionPoint>(own ? this : nullptr).detach();
        return own ? S_OK : CONNECT_E_NOCONNECTION;
    }
    HRESULT STDMETHODCALLTYPE GetConnectionInterface(IID* iid) noexcept override {
        return GetGUID(GUIDKIND_DEFAULT_SOURCE_DISP_IID, iid);
    }
    HRESULT STDMETHODCALLTYPE GetConnectionPointContainer(IConnectionPointContainer** container) noexcept override {
        if (container == nullptr) return E_POINTER;
        *container = com::ComPtr<IConnectionPointContainer>(this).detach();
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE Advise(IUnknown* sink, DWORD* cookie) noexcept override {
        if (sink == nullptr || cookie == nullptr) return E_POINTER;
        *cookie = 0;
        return guarded_method(IID_IConnectionPoint, [&] {
            com::ComPtr<IDispatch> target;
            if (FAILED(sink->QueryInterface(Derived::kSourceInterface, target.put_void())))
                return CONNECT_E_CANNOTCONNECT;
            sinks_[++last_cookie_] = target;
            *cookie = last_cookie_;
            if (this->host_.on_listener) this->host_.on_listener(Derived::kClass, *target, true);
            return S_OK;
        });
    }
    HRESULT STDMETHODCALLTYPE Unadvise(DWORD cookie) noexcept override {
        const auto gone = sinks_.extract(cookie);
        if (gone.empty()) return CONNECT_E_NOCONNECTION;
        if (this->host_.on_listener) this->host_.on_listener(Derived::kClass, *gone.mapped(), false);
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE EnumConnections(IEnumConnections** connections) noexcept override {
        return offers_none(connections);
    }
    HRESULT STDMETHODCALLTYPE GetClassInfo(ITypeInfo** info) noexcept override { return offers_none(info); }
    HRESULT STDMETHODCALLTYPE GetGUID(DWORD kind, GUID* guid) noexcept override {
        if (guid == nullptr) return E_POINTER;
        const bool source = kind == GUIDKIND_DEFAULT_SOURCE_DISP_IID;
        *guid = source ? Derived::kSourceInterface : GUID_NULL;
        return source ? S_OK : E_INVALIDARG;
    }

protected:
    /// Calls every sink with the texts, by reference. What the sinks answer does not concern the control.
    void raise_event(DISPID event, std::initializer_list<std::u16string_view> texts) {
        std::vector<com::Bstr> owned;
        std::vector<VARIANT> arguments;
        owned.reserve(texts.size());
        // Last argument first.
        for (auto text = std::rbegin(texts); text != std::rend(texts); ++text)
            arguments.push_back(com::Variant::text_reference(owned.emplace_back(*text).put_reference()).detach());
        // A sink may connect or disconnect anybody while it is called.
        for (const auto sinks = sinks_; const auto& [cookie, sink] : sinks) {
            DISPPARAMS parameters = {arguments.data(), nullptr, static_cast<UINT>(arguments.size()), 0};
            sink->Invoke(event, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_METHOD, &parameters, nullptr, nullptr, nullptr);
        }
    }

private:
    template <class Interface>
    static HRESULT offers_none(Interface** object) noexcept {
        if (object != nullptr) *object = nullptr;
        return E_NOTIMPL;
    }

    /// Who hears the events.
    std::map<DWORD, com::ComPtr<IDispatch>> sinks_;
    DWORD last_cookie_ = 0;
};

/// Creates an object by programmatic identifier. Raises `RuntimeError` naming it.
com::ComPtr<IDispatch> create_object(const std::u16string& programmatic_id);

/// Calls a method or reads a property; `flags` say where it is something else. Raises `RuntimeError` with the number
/// and the text that the object answers, or the result code of a call that did not come about.
com::Variant call_late(IDispatch& object, const std::u16string& name,
                       std::initializer_list<com::Variant> arguments = {}, WORD flags = kMethod | kGet);

}  // namespace vex::sim
