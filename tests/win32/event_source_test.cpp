// Where an object of the host raises its events: its default source interface, and an event by its name.
#include "platform/event_source.h"

#include <gtest/gtest.h>

#include "com/bstr.h"
#include "com/object.h"
#include "core/runtime_error.h"

namespace vex::com {

VEX_INTERFACE(ITypeInfo, IUnknown, IID_ITypeInfo);
VEX_INTERFACE(ICreateTypeInfo, IUnknown, IID_ICreateTypeInfo);
VEX_INTERFACE(ICreateTypeLib2, IUnknown, IID_ICreateTypeLib2);

}  // namespace vex::com

namespace vex::test {
namespace {

constexpr GUID kEvents = {0x5B1F2D10, 0x7A10, 0x4C33, {0x9B, 0x01, 0x3C, 0x5D, 0x7E, 0x11, 0x22, 0x01}};
constexpr GUID kOtherEvents = {0x5B1F2D11, 0x7A10, 0x4C33, {0x9B, 0x01, 0x3C, 0x5D, 0x7E, 0x11, 0x22, 0x01}};
constexpr GUID kClass = {0x5B1F2D12, 0x7A10, 0x4C33, {0x9B, 0x01, 0x3C, 0x5D, 0x7E, 0x11, 0x22, 0x01}};
constexpr DISPID kStatusMessage = 42;
constexpr DISPID kPosition = 9;

com::ModuleLifetime test_lifetime;

LPOLESTR name(const char16_t* text) noexcept { return const_cast<LPOLESTR>(reinterpret_cast<LPCOLESTR>(text)); }

void add_event(ICreateTypeInfo& interface_type, UINT index, DISPID member, const char16_t* text) {
    FUNCDESC function = {};
    function.memid = member;
    function.funckind = FUNC_DISPATCH;
    function.invkind = INVOKE_FUNC;
    function.callconv = CC_STDCALL;
    function.elemdescFunc.tdesc.vt = VT_VOID;
    interface_type.AddFuncDesc(index, &function);
    LPOLESTR names[] = {name(text)};
    interface_type.SetFuncAndParamNames(index, names, 1);
}

/// A class description whose default source interface has the event StatusMessage, and which has another.
com::ComPtr<ITypeInfo> describe_class() {
    com::ComPtr<ICreateTypeLib2> library;
    CreateTypeLib2(SYS_WIN32, name(u"event_source_test.tlb"), library.put());
    com::ComPtr<ICreateTypeInfo> class_type;
    library->CreateTypeInfo(name(u"Control"), TKIND_COCLASS, class_type.put());
    class_type->SetGuid(kClass);
    constexpr int kFlags[] = {IMPLTYPEFLAG_FSOURCE, IMPLTYPEFLAG_FSOURCE | IMPLTYPEFLAG_FDEFAULT};
    for (UINT index = 0; index < 2; ++index) {
        com::ComPtr<ICreateTypeInfo> events;
        library->CreateTypeInfo(name(index == 0 ? u"_OtherEvents" : u"_Events"), TKIND_DISPATCH, events.put());
        events->SetGuid(index == 0 ? kOtherEvents : kEvents);
        add_event(*events, 0, 7, u"Click");
        add_event(*events, 1, index == 0 ? 8 : kStatusMessage, u"StatusMessage");
        events->LayOut();
        HREFTYPE reference = 0;
        class_type->AddRefTypeInfo(events.query<ITypeInfo>().get(), &reference);
        class_type->AddImplType(index, reference);
        class_type->SetImplTypeFlags(index, kFlags[index]);
    }
    class_type->LayOut();
    return class_type.query<ITypeInfo>();
}

/// A control that raises events, with as much description as a test wants.
class Source final : public com::Object<Source, IProvideClassInfo2, IConnectionPointContainer, IConnectionPoint> {
public:
    explicit Source(com::ComPtr<ITypeInfo> description) noexcept
        : Object(test_lifetime), description_(std::move(description)) {}

    HRESULT STDMETHODCALLTYPE GetClassInfo(ITypeInfo** info) noexcept override {
        *info = com::ComPtr<ITypeInfo>(description_).detach();
        return description_ ? S_OK : E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE GetGUID(DWORD kind, GUID* guid) noexcept override {
        *guid = kEvents;
        return kind == GUIDKIND_DEFAULT_SOURCE_DISP_IID ? S_OK : E_INVALIDARG;
    }
    HRESULT STDMETHODCALLTYPE EnumConnectionPoints(IEnumConnectionPoints**) noexcept override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE FindConnectionPoint(REFIID iid, IConnectionPoint** point) noexcept override {
        *point = nullptr;
        if (iid != kEvents) return CONNECT_E_NOCONNECTION;
        AddRef();
        *point = this;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE GetConnectionInterface(IID* iid) noexcept override {
        *iid = kEvents;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE GetConnectionPointContainer(IConnectionPointContainer**) noexcept override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE Advise(IUnknown*, DWORD*) noexcept override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Unadvise(DWORD) noexcept override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE EnumConnections(IEnumConnections**) noexcept override { return E_NOTIMPL; }

private:
    com::ComPtr<ITypeInfo> description_;
};

class Silent final : public com::Object<Silent, IUnknown> {
public:
    Silent() noexcept : Object(test_lifetime) {}
};

class EventSourceTest : public testing::Test {
protected:
    EventSourceTest() { OleInitialize(nullptr); }
    ~EventSourceTest() override { OleUninitialize(); }

    static platform::EventSource find(const com::ComPtr<Source>& object, std::u16string_view event) {
        return platform::find_event_source(*static_cast<IProvideClassInfo2*>(object.get()), event, kPosition);
    }
};

TEST_F(EventSourceTest, DescribedEventIsFoundByItsName) {
    const auto source = find(com::make_object<Source>(describe_class()), u"StatusMessage");
    EXPECT_TRUE(IsEqualGUID(source.iid, kEvents));
    EXPECT_EQ(source.member, kStatusMessage);
    EXPECT_TRUE(source.point);
}

TEST_F(EventSourceTest, NameIsComparedAsAutomationDoes) {
    EXPECT_EQ(find(com::make_object<Source>(describe_class()), u"statusmessage").member, kStatusMessage);
}

TEST_F(EventSourceTest, UnknownNameAndMissingDescriptionLeaveThePosition) {
    EXPECT_EQ(find(com::make_object<Source>(describe_class()), u"NoSuchEvent").member, kPosition);
    const auto source = find(com::make_object<Source>(com::ComPtr<ITypeInfo>()), u"StatusMessage");
    EXPECT_TRUE(IsEqualGUID(source.iid, kEvents));
    EXPECT_EQ(source.member, kPosition);
}

TEST_F(EventSourceTest, ObjectWithoutEventsIsRefused) {
    const auto object = com::make_object<Silent>();
    try {
        platform::find_event_source(*object, u"StatusMessage", kPosition);
        FAIL() << "no error arrived";
    } catch (const RuntimeError& error) {
        EXPECT_EQ(error.number(), kNoSuchEvents);
    }
}

}  // namespace
}  // namespace vex::test
