// Offers the simulated host's classes to the process.
#include "simulator/host_classes.h"

#include <string>

#include "core/runtime_error.h"
#include "core/unicode.h"
#include "simulator/box_finder.h"
#include "simulator/class_library.h"
#include "simulator/registry_store.h"
#include "simulator/transmission_control.h"
#include "support/boundary.h"

namespace vex::sim {
namespace {

using Maker = com::ComPtr<IDispatch> (*)(Host& host);

template <class Class>
com::ComPtr<IDispatch> make(Host& host) {
    return com::make_object<Class>(host).template query<IDispatch>();
}

struct HostClass {
    const CLSID& clsid;
    std::u16string_view programmatic_id;
    Maker make;
};

constexpr HostClass kClasses[] = {
    {kHostDisplayListClass, u"vexBrivolaClasses4.HostDisplayList", &make<HostDisplayList>},
    {kHostDisplayPickerClass, u"vexBrivolaClasses4.HostDisplayPicker", &make<HostDisplayPicker>},
    {kHostConnectionClass, u"vexBrivolaClasses4.HostConnection", &make<HostConnection>},
    {kHostSignInfoClass, u"vexBrivolaClasses4.HostSignInfo", &make<HostSignInfo>},
    {kTransmissionControlClass, u"vexDTCon4.vexDispTrans", &make<TransmissionControl>},
    {kBoxFinderClass, u"vexLantronixControls2.vexLANBoxFinder2", &make<BoxFinder>},
};

class Factory final : public com::Object<Factory, IClassFactory> {
public:
    Factory(Host& host, std::u16string_view name, Maker maker) noexcept
        : Object(host.lifetime), host_(host), name_(name.substr(name.find(u'.') + 1)), make_(maker) {}

    HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown* outer, REFIID iid, void** object) noexcept override {
        if (object == nullptr) return E_POINTER;
        *object = nullptr;
        if (outer != nullptr) return CLASS_E_NOAGGREGATION;
        return guarded_method(IID_IClassFactory, [&] {
            host_.begin({host_.display_asked_about, 0, parse_operation(name_)}, u"new " + std::u16string(name_));
            return make_(host_)->QueryInterface(iid, object);
        });
    }

    HRESULT STDMETHODCALLTYPE LockServer(BOOL lock) noexcept override {
        lock != FALSE ? module().add_lock() : module().remove_lock();
        return S_OK;
    }

private:
    Host& host_;
    std::u16string_view name_;
    Maker make_;
};

std::u16string text_of(REFCLSID clsid) {
    OLECHAR text[39];
    StringFromGUID2(clsid, text, 39);
    return reinterpret_cast<const char16_t*>(text);
}

void register_names(RegistryStore& registry, const HostClass& entry) {
    const std::u16string name(entry.programmatic_id);
    const std::u16string clsid = text_of(entry.clsid);
    registry.write_text(kHkeyClassesRoot, name, u"", name);
    registry.write_text(kHkeyClassesRoot, name + u"\\CLSID", u"", clsid);
    registry.write_text(kHkeyClassesRoot, u"CLSID\\" + clsid, u"", name);
    registry.write_text(kHkeyClassesRoot, u"CLSID\\" + clsid + u"\\ProgID", u"", name);
}

}  // namespace

HostClasses::HostClasses(Host& host) {
    RegistryStore registry(host.computer.registry(), host.computer.code_page());
    for (const HostClass& entry : kClasses) {
        register_names(registry, entry);
        const auto factory = com::make_object<Factory>(host, entry.programmatic_id, entry.make);
        DWORD cookie = 0;
        const HRESULT result =
            CoRegisterClassObject(entry.clsid, factory.get(), CLSCTX_INPROC_SERVER, REGCLS_MULTIPLEUSE, &cookie);
        if (FAILED(result))
            throw RuntimeError(result, u"the class " + std::u16string(entry.programmatic_id) + u" is refused");
        cookies_.push_back(cookie);
    }
}

std::vector<std::u16string> host_class_names() {
    std::vector<std::u16string> names;
    for (const HostClass& entry : kClasses) names.emplace_back(entry.programmatic_id);
    return names;
}

HostClasses::~HostClasses() {
    for (const DWORD cookie : cookies_) CoRevokeClassObject(cookie);
}

}  // namespace vex::sim
