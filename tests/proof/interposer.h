// Stands between the plug-in and the simulated host: sees every call and every creation, and may break it.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "com/class_factory.h"
#include "com/variant.h"
#include "simulator/class_library.h"
#include "simulator/controls.h"
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

/// What the wrapper needs to know of the wrapped class.
struct ClassFacts {
    const char16_t* name;
    std::function<std::u16string(DISPID, WORD)> member_name;
};

template <class Wrapped>
ClassFacts facts(const char16_t* name) {
    return {name, [](DISPID id, WORD flags) {
                for (const auto& member : Wrapped::members()) {
                    if (member.id == id && (member.kind & flags) != 0) return std::u16string(member.name);
                }
                return std::u16string(u"?");
            }};
}

class Wrapper final : public com::Object<Wrapper, com::Untyped<IDispatch>> {
public:
    Wrapper(sim::Host& host, Meddling& meddling, const ClassFacts& facts, com::ComPtr<IDispatch> inner)
        : Object(host.lifetime), host_(host), meddling_(meddling), facts_(facts), inner_(std::move(inner)) {}

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
            const std::u16string call = facts_.name + (u"." + facts_.member_name(id, flags));
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
                static const ClassFacts kSignInfo = facts<sim::SignInfoObject>(u"HostSignInfo");
                result->pdispVal = com::make_object<Wrapper>(host_, meddling_, kSignInfo,
                                                             com::ComPtr<IDispatch>::adopt(result->pdispVal))
                                       .detach();
            }
            return outcome;
        });
    }

private:
    sim::Host& host_;
    Meddling& meddling_;
    const ClassFacts& facts_;
    com::ComPtr<IDispatch> inner_;
};

template <class Wrapped>
DWORD offer(sim::Host& host, Meddling& meddling, REFCLSID clsid, const char16_t* name) {
    return com::offer_class(host.lifetime, clsid, [&host, &meddling, known = facts<Wrapped>(name)] {
        const Side side(Side::host);
        meddling.before(std::u16string(u"new ") + known.name);
        auto inner = com::ComPtr<IDispatch>::adopt(com::make_object<Wrapped>(host).detach());
        return com::make_object<Wrapper>(host, meddling, known, std::move(inner));
    });
}

/// While it lives, the host's objects that the plug-in creates or is given are wrapped. Needs an initialised
/// apartment, and must be made before the host's own classes are offered. `host` and `meddling` outlive it.
class Interposer {
public:
    Interposer(sim::Host& host, Meddling& meddling)
        : cookies_{offer<sim::DisplayListObject>(host, meddling, sim::kHostDisplayListClass, u"HostDisplayList"),
                   offer<sim::DisplayPickerObject>(host, meddling, sim::kHostDisplayPickerClass, u"HostDisplayPicker"),
                   offer<sim::ConnectionObject>(host, meddling, sim::kHostConnectionClass, u"HostConnection"),
                   offer<sim::TransmissionControl>(host, meddling, sim::kTransmissionControlClass, u"vexDispTrans"),
                   offer<sim::BoxFinder>(host, meddling, sim::kBoxFinderClass, u"vexLANBoxFinder2")} {}
    Interposer(const Interposer&) = delete;
    Interposer& operator=(const Interposer&) = delete;
    ~Interposer() {
        for (const DWORD cookie : cookies_) CoRevokeClassObject(cookie);
    }

private:
    std::vector<DWORD> cookies_;
};

}  // namespace vex::proof
