// The connection to the one event of a host control that the plug-in handles.
#include "host/event_sink.h"

#include <gtest/gtest.h>

#include "com/variant.h"

namespace vex::host {
namespace {

constexpr IID kEvents = {0x1B6B7A52, 0x2E0C, 0x4B7B, {0x8E, 0x2F, 0x33, 0x0D, 0x5C, 0x4A, 0x61, 0x07}};
constexpr DISPID kEvent = 9;

/// A control that keeps the sink until it is told to let it go.
class Control final : public com::Object<Control, IProvideClassInfo2, IConnectionPointContainer, IConnectionPoint> {
public:
    explicit Control(com::ModuleLifetime& module) : Object(module) {}
    HRESULT GetClassInfo(ITypeInfo**) noexcept override { return E_NOTIMPL; }
    HRESULT GetGUID(DWORD, GUID* guid) noexcept override {
        *guid = kEvents;
        return S_OK;
    }
    HRESULT EnumConnectionPoints(IEnumConnectionPoints**) noexcept override { return E_NOTIMPL; }
    HRESULT FindConnectionPoint(REFIID, IConnectionPoint** point) noexcept override {
        AddRef();
        *point = this;
        return S_OK;
    }
    HRESULT GetConnectionInterface(IID*) noexcept override { return E_NOTIMPL; }
    HRESULT GetConnectionPointContainer(IConnectionPointContainer**) noexcept override { return E_NOTIMPL; }
    HRESULT Advise(IUnknown* heard_by, DWORD* cookie) noexcept override {
        *cookie = 7;
        return heard_by->QueryInterface(kEvents, sink.put_void());
    }
    HRESULT Unadvise(DWORD cookie) noexcept override {
        left = cookie;
        return S_OK;
    }
    HRESULT EnumConnections(IEnumConnections**) noexcept override { return E_NOTIMPL; }

    HRESULT raise(DISPID event, std::vector<VARIANTARG> arguments) {
        DISPPARAMS parameters{arguments.data(), nullptr, static_cast<UINT>(arguments.size()), 0};
        return sink->Invoke(event, IID_NULL, 0, DISPATCH_METHOD, &parameters, nullptr, nullptr, nullptr);
    }

    com::ComPtr<IDispatch> sink;
    DWORD left = 0;
};

TEST(EventConnection, HearsItsOwnEventWhileItLives) {
    com::ModuleLifetime module;
    const auto control = com::make_object<Control>(module);
    auto& object = *static_cast<IProvideClassInfo2*>(control.get());
    std::vector<std::u16string> heard;
    com::Bstr text(u"Sending");
    BSTR place = text.get();
    const VARIANTARG argument = com::Variant::text_reference(&place).get();
    {
        const EventConnection connection(object, u"StatusMessage", kEvent, module,
                                         [&](std::u16string told) { heard.push_back(std::move(told)); });
        EXPECT_EQ(control->raise(kEvent, {argument}), S_OK);
        EXPECT_EQ(control->raise(kEvent - 1, {argument}), S_OK) << "another event of the control";
        EXPECT_EQ(control->raise(kEvent, {}), DISP_E_BADPARAMCOUNT);
        EXPECT_EQ(heard, std::vector<std::u16string>{u"Sending"});
    }
    EXPECT_EQ(control->left, 7U);
    EXPECT_EQ(control->raise(kEvent, {argument}), S_OK) << "cut off, though the control has kept it";
    EXPECT_EQ(heard.size(), 1U);
}

}  // namespace
}  // namespace vex::host
