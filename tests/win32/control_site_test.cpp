// The container that a host's control gets on a form.
#include <gmock/gmock.h>

#include "com/object.h"
#include "com/variant.h"
#include "tests/win32/window_fixture.h"

namespace vex::com {

VEX_INTERFACE(IOleObject, IUnknown, IID_IOleObject);
VEX_INTERFACE(IOleClientSite, IUnknown, IID_IOleClientSite);
VEX_INTERFACE(IOleWindow, IUnknown, IID_IOleWindow);
VEX_INTERFACE(IOleInPlaceSite, IOleWindow, IID_IOleInPlaceSite);
VEX_INTERFACE(IOleInPlaceObject, IOleWindow, IID_IOleInPlaceObject);
VEX_INTERFACE(IPersist, IUnknown, IID_IPersist);
VEX_INTERFACE(IPersistStreamInit, IPersist, IID_IPersistStreamInit);

}  // namespace vex::com

namespace vex::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

com::ModuleLifetime test_lifetime;

/// A control that writes down what its container does, and uses the site in its turn.
class FakeControl final : public com::Object<FakeControl, IOleObject, IPersistStreamInit, IOleInPlaceObject> {
public:
    explicit FakeControl(DWORD misc_status) noexcept : Object(test_lifetime), misc_status_(misc_status) {}

    std::vector<std::string> log;
    HRESULT answer = S_OK;
    bool user_mode = false;
    HWND in_place_parent = nullptr;
    HWND frame_window = nullptr;

    // IOleObject
    HRESULT STDMETHODCALLTYPE SetClientSite(IOleClientSite* site) noexcept override {
        log.push_back(site != nullptr ? "site" : "no site");
        site_ = com::ComPtr<IOleClientSite>(site);
        if (const auto ambient = site_.query<IDispatch>()) {
            DISPPARAMS none = {};
            com::Variant value;
            const HRESULT told = ambient->Invoke(DISPID_AMBIENT_USERMODE, IID_NULL, LOCALE_USER_DEFAULT,
                                                 DISPATCH_PROPERTYGET, &none, value.put(), nullptr, nullptr);
            user_mode = SUCCEEDED(told) && value.get().boolVal == VARIANT_TRUE;
        }
        return answer;
    }
    HRESULT STDMETHODCALLTYPE GetClientSite(IOleClientSite**) noexcept override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE SetHostNames(LPCOLESTR, LPCOLESTR) noexcept override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Close(DWORD) noexcept override {
        log.push_back("close");
        return answer;
    }
    HRESULT STDMETHODCALLTYPE SetMoniker(DWORD, IMoniker*) noexcept override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetMoniker(DWORD, DWORD, IMoniker**) noexcept override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE InitFromData(IDataObject*, BOOL, DWORD) noexcept override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetClipboardData(DWORD, IDataObject**) noexcept override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE DoVerb(LONG verb, MSG*, IOleClientSite*, LONG, HWND, LPCRECT) noexcept override {
        log.push_back(verb == OLEIVERB_INPLACEACTIVATE ? "activate" : "verb");
        if (const auto place = site_.query<IOleInPlaceSite>()) {
            place->GetWindow(&in_place_parent);
            com::ComPtr<IOleInPlaceFrame> frame;
            com::ComPtr<IOleInPlaceUIWindow> document;
            RECT position = {};
            RECT clip = {};
            OLEINPLACEFRAMEINFO information = {sizeof information, FALSE, nullptr, nullptr, 0};
            if (SUCCEEDED(place->GetWindowContext(frame.put(), document.put(), &position, &clip, &information)) &&
                frame) {
                frame->GetWindow(&frame_window);
            }
        }
        return answer;
    }
    HRESULT STDMETHODCALLTYPE EnumVerbs(IEnumOLEVERB**) noexcept override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Update() noexcept override { return S_OK; }
    HRESULT STDMETHODCALLTYPE IsUpToDate() noexcept override { return S_OK; }
    HRESULT STDMETHODCALLTYPE GetUserClassID(CLSID*) noexcept override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetUserType(DWORD, LPOLESTR*) noexcept override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE SetExtent(DWORD, SIZEL*) noexcept override { return S_OK; }
    HRESULT STDMETHODCALLTYPE GetExtent(DWORD, SIZEL*) noexcept override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Advise(IAdviseSink*, DWORD*) noexcept override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Unadvise(DWORD) noexcept override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE EnumAdvise(IEnumSTATDATA**) noexcept override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetMiscStatus(DWORD, DWORD* status) noexcept override {
        *status = misc_status_;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE SetColorScheme(LOGPALETTE*) noexcept override { return E_NOTIMPL; }

    // IPersistStreamInit
    HRESULT STDMETHODCALLTYPE GetClassID(CLSID*) noexcept override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE IsDirty() noexcept override { return S_FALSE; }
    HRESULT STDMETHODCALLTYPE Load(IStream*) noexcept override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Save(IStream*, BOOL) noexcept override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetSizeMax(ULARGE_INTEGER*) noexcept override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE InitNew() noexcept override {
        log.push_back("new");
        return answer;
    }

    // IOleInPlaceObject
    HRESULT STDMETHODCALLTYPE GetWindow(HWND*) noexcept override { return E_FAIL; }
    HRESULT STDMETHODCALLTYPE ContextSensitiveHelp(BOOL) noexcept override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE InPlaceDeactivate() noexcept override {
        log.push_back("deactivate");
        return answer;
    }
    HRESULT STDMETHODCALLTYPE UIDeactivate() noexcept override { return S_OK; }
    HRESULT STDMETHODCALLTYPE SetObjectRects(LPCRECT, LPCRECT) noexcept override { return S_OK; }
    HRESULT STDMETHODCALLTYPE ReactivateAndUndo() noexcept override { return E_NOTIMPL; }

private:
    DWORD misc_status_;
    com::ComPtr<IOleClientSite> site_;
};

/// An object that is no control.
class PlainObject final : public com::Object<PlainObject, IUnknown> {
public:
    PlainObject() noexcept : Object(test_lifetime) {}
};

/// A form with a control of the host on it.
class HostForm final : public forms::Form {
public:
    HostForm(forms::Toolkit& toolkit, IUnknown* object)
        : Form(toolkit, {.name = "dlgHost", .width = 3000, .height = 1500}) {
        lay_out({{.control = hosted, .name = "hosted"}});
        hosted.object = object;
    }

    forms::HostControl hosted;
    std::function<void()> on_activate;

private:
    void Form_Activate() override {
        if (on_activate) on_activate();
        hide();
    }
};

class ControlSiteTest : public testing::Test {
protected:
    void show(FakeControl& control) {
        HostForm form(side->toolkit(), static_cast<IOleObject*>(&control));
        form.on_activate = [&] { control.log.push_back("shown"); };
        form.show_modal();
    }

    std::unique_ptr<Side> side = make_side();
};

TEST_F(ControlSiteTest, ControlIsSitedAndInitialisedAndTakenAway) {
    const auto control = com::make_object<FakeControl>(DWORD{OLEMISC_INVISIBLEATRUNTIME});
    show(*control);
    EXPECT_THAT(control->log, ElementsAre("new", "site", "shown", "deactivate", "close", "no site"));
    EXPECT_TRUE(control->user_mode);
}

TEST_F(ControlSiteTest, SiteComesFirstWhereTheControlAsksForIt) {
    const auto control = com::make_object<FakeControl>(DWORD{OLEMISC_SETCLIENTSITEFIRST | OLEMISC_INVISIBLEATRUNTIME});
    show(*control);
    EXPECT_THAT(control->log, ElementsAre("site", "new", "shown", "deactivate", "close", "no site"));
}

TEST_F(ControlSiteTest, ControlThatNeedsAWindowIsActiveInAHiddenPlace) {
    const auto control = com::make_object<FakeControl>(DWORD{OLEMISC_ACTIVATEWHENVISIBLE});
    HostForm form(side->toolkit(), static_cast<IOleObject*>(control.get()));
    form.on_activate = [&] {
        EXPECT_EQ(control->frame_window, sim::top_form_window());
        EXPECT_EQ(platform::win32::window_name(control->in_place_parent), u"hosted");
        EXPECT_FALSE(IsWindowVisible(control->in_place_parent));
    };
    form.show_modal();
    EXPECT_THAT(control->log, ElementsAre("new", "site", "activate", "deactivate", "close", "no site"));
    EXPECT_NE(control->frame_window, nullptr);
}

TEST_F(ControlSiteTest, WhatAControlRefusesIsTolerated) {
    const auto control = com::make_object<FakeControl>(DWORD{OLEMISC_ACTIVATEWHENVISIBLE});
    control->answer = E_FAIL;
    show(*control);
    EXPECT_THAT(control->log, ElementsAre("new", "site", "activate", "shown", "deactivate", "close", "no site"));
}

TEST_F(ControlSiteTest, ObjectsThatAreNoControlsAreLeftAlone) {
    const auto object = com::make_object<PlainObject>();
    HostForm form(side->toolkit(), object.get());
    form.show_modal();
    EXPECT_FALSE(form.running());
    HostForm without(side->toolkit(), nullptr);
    without.show_modal();
}

TEST_F(ControlSiteTest, NothingIsKept) {
    EXPECT_THAT(test_lifetime.objects(), 0);
    {
        const auto control = com::make_object<FakeControl>(DWORD{OLEMISC_ACTIVATEWHENVISIBLE});
        show(*control);
        EXPECT_EQ(test_lifetime.objects(), 1);
    }
    EXPECT_EQ(test_lifetime.objects(), 0);
}

}  // namespace
}  // namespace vex::test
