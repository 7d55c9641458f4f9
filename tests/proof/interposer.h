// Stands between the plug-in and the simulated host: sees every call and every creation, and may break it.
#pragma once

#include <algorithm>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "com/class_factory.h"
#include "com/variant.h"
#include "simulator/class_library.h"
#include "simulator/host.h"
#include "tests/proof/memory.h"

namespace vex::proof {

/// The number of the errors that tests raise.
inline constexpr std::int32_t kRaisedNumber = 1234;

/// What becomes of a call, "Class.Member": nothing: it happens; a value: it does not, and is answered so; an error that
/// is thrown here: it raises that one. Of a creation, "new Class": an error makes it fail.
using Meddle = std::function<std::optional<com::Variant>(const std::u16string& call)>;

/// Changes what a call has answered.
using Amend = std::function<void(const std::u16string& call, VARIANT& answer)>;

struct Meddling {
    Meddle before;
    Amend after;
};

class Wrapper final : public com::Object<Wrapper, com::Untyped<IDispatch>> {
public:
    Wrapper(sim::Host& host, Meddling& meddling, const sim::HostClass& wrapped, com::ComPtr<IDispatch> inner)
        : Object(host.lifetime), host_(host), meddling_(meddling), class_(wrapped), inner_(std::move(inner)) {}

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) noexcept override {
        const Side side(Side::host);
        const bool own = com::interface_matches<IDispatch>(iid);
        return own ? Object::QueryInterface(iid, object) : inner_->QueryInterface(iid, object);
    }
    HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID reserved, LPOLESTR* names, UINT count, LCID locale,
                                            DISPID* ids) noexcept override {
        const Side side(Side::host);
        return inner_->GetIDsOfNames(reserved, names, count, locale, ids);
    }
    HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID reserved, LCID locale, WORD flags, DISPPARAMS* parameters,
                                     VARIANT* result, EXCEPINFO* exception, UINT* argument_error) noexcept override {
        const Side side(Side::host);
        const com::ComPtr<Wrapper> alive(this);
        return guarded_invoke(exception, [&] {
            const std::u16string call = std::u16string(class_.name()) + u"." + member_name(id, flags);
            if (auto answer = meddling_.before(call); answer && result != nullptr) {
                *result = answer->detach();
                return S_OK;
            }
            const HRESULT outcome =
                inner_->Invoke(id, reserved, locale, flags, parameters, result, exception, argument_error);
            if (FAILED(outcome) || result == nullptr) return outcome;
            meddling_.after(call, *result);
            if (result->vt == VT_DISPATCH) {
                // Sign information is the only object that the host gives away.
                static const sim::HostClass& sign_info =
                    *std::ranges::find(sim::host_classes(), u"HostSignInfo", &sim::HostClass::name);
                result->pdispVal = com::make_object<Wrapper>(host_, meddling_, sign_info,
                                                             com::ComPtr<IDispatch>::adopt(result->pdispVal))
                                       .detach();
            }
            return outcome;
        });
    }

private:
    std::u16string member_name(DISPID id, WORD flags) const {
        const auto member = std::ranges::find_if(
            class_.members, [&](const sim::MemberFacts& facts) { return facts.is_called(id, flags); });
        return std::u16string(member == class_.members.end() ? u"?" : member->name);
    }

    sim::Host& host_;
    Meddling& meddling_;
    const sim::HostClass& class_;
    com::ComPtr<IDispatch> inner_;
};

/// While it lives, the host's objects that the plug-in creates or is given are wrapped. Needs an initialised
/// apartment, and must be made before the host's own classes are offered. `host` and `meddling` outlive it.
class Interposer {
public:
    Interposer(sim::Host& host, Meddling& meddling) {
        for (const sim::HostClass& wrapped : sim::host_classes()) {
            cookies_.push_back(com::offer_class(host.lifetime, wrapped.clsid, [&host, &meddling, &wrapped] {
                const Side side(Side::host);
                meddling.before(u"new " + std::u16string(wrapped.name()));
                return com::make_object<Wrapper>(host, meddling, wrapped, wrapped.make(host));
            }));
        }
    }
    Interposer(const Interposer&) = delete;
    Interposer& operator=(const Interposer&) = delete;
    ~Interposer() {
        for (const DWORD cookie : cookies_) CoRevokeClassObject(cookie);
    }

private:
    std::vector<DWORD> cookies_;
};

}  // namespace vex::proof
