// A host's control on a form: the container that it gets, and where it raises its events.
#include <gtest/gtest.h>

#include "com/object.h"
#include "com/variant.h"
#include "forms/form.h"
#include "platform/event_source.h"
#include "platform/win32/window_name.h"
#include "simulator/win32/win32_screen.h"
#include "tests/shared/error_of.h"
#include "tests/toolkit/side.h"

namespace vex::com {

VEX_INTERFACE(IOleObject, IUnknown, IID_IOleObject);
VEX_INTERFACE(IOleClientSite, IUnknown, IID_IOleClientSite);
VEX_INTERFACE(IOleWindow, IUnknown, IID_IOleWindow);
VEX_INTERFACE(IOleInPlaceSite, IOleWindow, IID_IOleInPlaceSite);
VEX_INTERFACE(IOleInPlaceObject, IOleWindow, IID_IOleInPlaceObject);
VEX_INTERFACE(IPersist, IUnknown, IID_IPersist);
VEX_INTERFACE(IPersistStreamInit, IPersist, IID_IPersistStreamInit);
VEX_INTERFACE(ITypeInfo, IUnknown, IID_ITypeInfo);
VEX_INTERFACE(ITypeLib, IUnknown, IID_ITypeLib);

}  // namespace vex::com

namespace vex::test {
namespace {

com::ModuleLifetime test_lifetime;

/// Methods that nobody calls.
#define UNUSED(method) \
    HRESULT STDMETHODCALLTYPE method noexcept override { return E_NOTIMPL; }

/// A control that writes down what its container does, and uses the site in its turn.
class Control final : public com::Object<Control, IOleObject, IPersistStreamInit, IOleInPlaceObject> {
public:
    Control(DWORD misc_status, HRESULT result) noexcept
        : Object(test_lifetime), answer(result), misc_status_(misc_status) {}

    std::vector<std::string> log;
    HRESULT answer;
    bool user_mode = false;
    HWND place = nullptr;
    std::u16string place_name;
    HWND frame_window = nullptr;

    HRESULT STDMETHODCALLTYPE SetClientSite(IOleClientSite* site) noexcept override {
        site_ = com::ComPtr<IOleClientSite>(site);
        if (const auto ambient = site_.query<IDispatch>()) {
            DISPPARAMS none = {};
            com::Variant value;
            ambient->Invoke(DISPID_AMBIENT_USERMODE, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_PROPERTYGET, &none,
                            value.put(), nullptr, nullptr);
            user_mode = value.type() == VT_BOOL && value.get().boolVal == VARIANT_TRUE;
        }
        return noted(site != nullptr ? "site" : "no site");
    }
    HRESULT STDMETHODCALLTYPE DoVerb(LONG verb, MSG*, IOleClientSite*, LONG, HWND, LPCRECT) noexcept override {
        if (const auto site = site_.query<IOleInPlaceSite>()) {
            site->GetWindow(&place);
            place_name = platform::win32::window_name(place);
            com::ComPtr<IOleInPlaceFrame> frame;
            com::ComPtr<IOleInPlaceUIWindow> document;
            RECT position = {}, clip = {};
            site->GetWindowContext(frame.put(), document.put(), &position, &clip, nullptr);
            if (frame) frame->GetWindow(&frame_window);
        }
        return noted(verb == OLEIVERB_INPLACEACTIVATE ? "activate" : "verb");
    }
    HRESULT STDMETHODCALLTYPE GetMiscStatus(DWORD, DWORD* status) noexcept override {
        *status = misc_status_;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE Close(DWORD) noexcept override { return noted("close"); }
    HRESULT STDMETHODCALLTYPE InitNew() noexcept override { return noted("new"); }
    HRESULT STDMETHODCALLTYPE InPlaceDeactivate() noexcept override { return noted("deactivate"); }

    UNUSED(GetClientSite(IOleClientSite**)) UNUSED(SetHostNames(LPCOLESTR, LPCOLESTR)) UNUSED(SetMoniker(DWORD, IMoniker*))
    UNUSED(GetMoniker(DWORD, DWORD, IMoniker**)) UNUSED(InitFromData(IDataObject*, BOOL, DWORD))
    UNUSED(GetClipboardData(DWORD, IDataObject**)) UNUSED(EnumVerbs(IEnumOLEVERB**)) UNUSED(Update()) UNUSED(IsUpToDate())
    UNUSED(GetUserClassID(CLSID*)) UNUSED(GetUserType(DWORD, LPOLESTR*)) UNUSED(SetExtent(DWORD, SIZEL*))
    UNUSED(GetExtent(DWORD, SIZEL*)) UNUSED(Advise(IAdviseSink*, DWORD*)) UNUSED(Unadvise(DWORD))
    UNUSED(EnumAdvise(IEnumSTATDATA**)) UNUSED(SetColorScheme(LOGPALETTE*))
    UNUSED(GetClassID(CLSID*)) UNUSED(IsDirty()) UNUSED(Load(IStream*)) UNUSED(Save(IStream*, BOOL))
    UNUSED(GetSizeMax(ULARGE_INTEGER*)) UNUSED(GetWindow(HWND*)) UNUSED(ContextSensitiveHelp(BOOL)) UNUSED(UIDeactivate())
    UNUSED(SetObjectRects(LPCRECT, LPCRECT)) UNUSED(ReactivateAndUndo())

private:
    HRESULT noted(const char* call) {
        log.push_back(call);
        return answer;
    }

    DWORD misc_status_;
    com::ComPtr<IOleClientSite> site_;
};

class HostForm final : public forms::Form {
public:
    HostForm(forms::Toolkit& toolkit, Control& control)
        : Form(toolkit, {.name = "dlgHost", .width = 3000, .height = 1500}), control_(control) {
        lay_out({{.control = hosted_, .name = "hosted"}});
        hosted_.object = static_cast<IOleObject*>(&control);
    }

private:
    void Form_Activate() override {
        control_.log.push_back("shown");
        EXPECT_EQ(control_.frame_window, control_.place == nullptr ? nullptr : sim::top_form_window());
        EXPECT_FALSE(IsWindowVisible(control_.place));
        hide();
    }

    Control& control_;
    forms::HostControl hosted_;
};

TEST(HostControl, IsInitialisedInItsOrderActivatedInAHiddenPlaceAndTakenAway) {
    const auto side = make_side();
    const struct {
        DWORD status;
        HRESULT answer;
        std::vector<std::string> log;
    } cases[] = {
        {OLEMISC_INVISIBLEATRUNTIME, S_OK, {"new", "site"}},
        {OLEMISC_INVISIBLEATRUNTIME | OLEMISC_SETCLIENTSITEFIRST, S_OK, {"site", "new"}},
        {OLEMISC_ACTIVATEWHENVISIBLE, S_OK, {"new", "site", "activate"}},
        {OLEMISC_ACTIVATEWHENVISIBLE, E_FAIL, {"new", "site", "activate"}},  // what it refuses is tolerated
    };
    for (const auto& one : cases) {
        const auto control = com::make_object<Control>(one.status, one.answer);
        HostForm(side->toolkit(), *control).show_modal();
        std::vector<std::string> expected = one.log;
        expected.insert(expected.end(), {"shown", "deactivate", "close", "no site"});
        EXPECT_EQ(control->log, expected);
        EXPECT_EQ(control->place_name, one.log.size() == 3 ? u"hosted" : u"");
        EXPECT_TRUE(control->user_mode);
        EXPECT_EQ(test_lifetime.objects(), 1);
    }
}

// ---- Events

// The system's own web browser, the older of the two that it describes: its default source is not its first.
constexpr GUID kBrowserLibrary = {0xEAB22AC0, 0x30C1, 0x11CF, {0xA7, 0xEB, 0x00, 0x00, 0xC0, 0x5B, 0xAE, 0x0B}};
constexpr GUID kBrowser = {0xEAB22AC3, 0x30C1, 0x11CF, {0xA7, 0xEB, 0x00, 0x00, 0xC0, 0x5B, 0xAE, 0x0B}};
constexpr GUID kEvents = {0xEAB22AC2, 0x30C1, 0x11CF, {0xA7, 0xEB, 0x00, 0x00, 0xC0, 0x5B, 0xAE, 0x0B}};
constexpr DISPID kQuit = 103, kPosition = 9;

com::ComPtr<ITypeInfo> browser_description() {
    com::ComPtr<ITypeLib> library;
    com::ComPtr<ITypeInfo> description;
    LoadRegTypeLib(kBrowserLibrary, 1, 1, LOCALE_USER_DEFAULT, library.put());
    if (library) library->GetTypeInfoOfGuid(kBrowser, description.put());
    return description;
}

/// A control that raises events, with as much description as a test wants.
class Source final : public com::Object<Source, IProvideClassInfo2, IConnectionPointContainer, IConnectionPoint> {
public:
    explicit Source(const com::ComPtr<ITypeInfo>& description) noexcept
        : Object(test_lifetime), description_(description) {}

    HRESULT STDMETHODCALLTYPE GetClassInfo(ITypeInfo** info) noexcept override {
        *info = com::ComPtr<ITypeInfo>(description_).detach();
        return description_ ? S_OK : E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE GetGUID(DWORD kind, GUID* guid) noexcept override {
        *guid = kEvents;
        return kind == GUIDKIND_DEFAULT_SOURCE_DISP_IID ? S_OK : E_INVALIDARG;
    }
    HRESULT STDMETHODCALLTYPE FindConnectionPoint(REFIID iid, IConnectionPoint** point) noexcept override {
        *point = iid == kEvents ? com::ComPtr<IConnectionPoint>(this).detach() : nullptr;
        return *point != nullptr ? S_OK : CONNECT_E_NOCONNECTION;
    }
    UNUSED(EnumConnectionPoints(IEnumConnectionPoints**)) UNUSED(GetConnectionInterface(IID*)) UNUSED(Unadvise(DWORD))
    UNUSED(GetConnectionPointContainer(IConnectionPointContainer**)) UNUSED(Advise(IUnknown*, DWORD*))
    UNUSED(EnumConnections(IEnumConnections**))

private:
    com::ComPtr<ITypeInfo> description_;
};

TEST(EventSource, IsTheDefaultOneAndItsEventIsFoundByNameAndElseByPosition) {
    const auto side = make_side();
    const auto expect_member = [](const com::ComPtr<ITypeInfo>& description, std::u16string_view event, DISPID member) {
        const auto object = com::make_object<Source>(description);
        const auto source =
            platform::find_event_source(*static_cast<IProvideClassInfo2*>(object.get()), event, kPosition);
        EXPECT_TRUE(IsEqualGUID(source.iid, kEvents));
        EXPECT_EQ(source.member, member);
        EXPECT_TRUE(source.point);
    };
    expect_member(browser_description(), u"Quit", kQuit);
    expect_member(browser_description(), u"quit", kQuit);
    expect_member(browser_description(), u"NoSuchEvent", kPosition);
    expect_member({}, u"Quit", kPosition);
    const auto control = com::make_object<Control>(DWORD{0}, S_OK);
    EXPECT_EQ(error_of([&] { platform::find_event_source(*static_cast<IOleObject*>(control.get()), u"", 0); }),
              kNoSuchEvents);
}

}  // namespace
}  // namespace vex::test
