// Stands between the plug-in and the simulated host.
#include "tests/proof/interposer.h"

#include "com/class_factory.h"
#include "com/variant.h"
#include "simulator/class_library.h"

namespace vex::proof {
namespace {

std::u16string member_name(const sim::HostClass& wrapped, DISPID id, WORD flags) {
    const auto member = std::ranges::find_if(
        wrapped.members, [&](const sim::MemberFacts& facts) { return facts.is_called(id, flags); });
    return std::u16string(member == wrapped.members.end() ? u"?" : member->name);
}

class Wrapper final : public com::Object<Wrapper, com::Untyped<IDispatch>> {
public:
    Wrapper(sim::Host& host, Meddling& meddling, const sim::HostClass& wrapped, com::ComPtr<IDispatch> inner)
        : Object(host.lifetime), host_(host), meddling_(meddling), class_(wrapped), inner_(std::move(inner)) {}

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) noexcept override {
        const bool own = com::interface_matches<IDispatch>(iid);
        return own ? Object::QueryInterface(iid, object) : inner_->QueryInterface(iid, object);
    }
    HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID reserved, LPOLESTR* names, UINT count, LCID locale,
                                            DISPID* ids) noexcept override {
        return inner_->GetIDsOfNames(reserved, names, count, locale, ids);
    }
    HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID reserved, LCID locale, WORD flags, DISPPARAMS* parameters,
                                     VARIANT* result, EXCEPINFO* exception, UINT* argument_error) noexcept override {
        const com::ComPtr<Wrapper> alive(this);
        std::u16string call;
        if (meddling_.judge || meddling_.substitute || meddling_.amend)
            call = std::u16string(class_.name()) + u"." + member_name(class_, id, flags);
        switch (meddling_.judge ? meddling_.judge(call) : Verdict::pass) {
            case Verdict::pass:
                break;
            case Verdict::answer_false:
                if (result != nullptr) *result = com::Variant::boolean(false).detach();
                return S_OK;
            case Verdict::raise:
                if (exception != nullptr) {
                    *exception = {};
                    exception->scode = static_cast<HRESULT>(0x800A0000U + kRaisedNumber);
                    exception->bstrDescription = com::allocate_bstr(u"raised by the test");
                }
                return DISP_E_EXCEPTION;
        }
        if (auto answer = meddling_.substitute ? meddling_.substitute(call) : std::nullopt;
            answer && result != nullptr) {
            *result = answer->detach();
            return S_OK;
        }
        const HRESULT outcome =
            inner_->Invoke(id, reserved, locale, flags, parameters, result, exception, argument_error);
        if (SUCCEEDED(outcome) && result != nullptr && meddling_.amend) meddling_.amend(call, *result);
        if (SUCCEEDED(outcome) && result != nullptr && result->vt == VT_DISPATCH) {
            // Sign information is the only object that the host gives away.
            static const sim::HostClass& sign_info =
                *std::ranges::find(sim::host_classes(), u"HostSignInfo", &sim::HostClass::name);
            auto wrapped =
                com::make_object<Wrapper>(host_, meddling_, sign_info, com::ComPtr<IDispatch>::adopt(result->pdispVal));
            result->pdispVal = wrapped.detach();
        }
        return outcome;
    }

private:
    sim::Host& host_;
    Meddling& meddling_;
    const sim::HostClass& class_;
    com::ComPtr<IDispatch> inner_;
};

}  // namespace

Interposer::Interposer(sim::Host& host, Meddling& meddling) {
    for (const sim::HostClass& wrapped : sim::host_classes()) {
        cookies_.push_back(com::offer_class(host.lifetime, wrapped.clsid, [&host, &meddling, &wrapped] {
            if (meddling.judge && meddling.judge(u"new " + std::u16string(wrapped.name())) != Verdict::pass)
                throw RuntimeError(kAutomationError);
            return com::make_object<Wrapper>(host, meddling, wrapped, wrapped.make(host));
        }));
    }
}

Interposer::~Interposer() {
    for (const DWORD cookie : cookies_) CoRevokeClassObject(cookie);
}

}  // namespace vex::proof
