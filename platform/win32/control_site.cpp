#include "platform/win32/control_site.h"

#include "com/object.h"

namespace vex::com {

VEX_INTERFACE(IOleObject, IUnknown, IID_IOleObject);
VEX_INTERFACE(IOleClientSite, IUnknown, IID_IOleClientSite);
VEX_INTERFACE(IOleWindow, IUnknown, IID_IOleWindow);
VEX_INTERFACE(IOleInPlaceSite, IOleWindow, IID_IOleInPlaceSite);
VEX_INTERFACE(IOleInPlaceUIWindow, IOleWindow, IID_IOleInPlaceUIWindow);
VEX_INTERFACE(IOleInPlaceFrame, IOleInPlaceUIWindow, IID_IOleInPlaceFrame);
VEX_INTERFACE(IOleInPlaceObject, IOleWindow, IID_IOleInPlaceObject);
VEX_INTERFACE(IPersistStreamInit, IUnknown, IID_IPersistStreamInit);
VEX_INTERFACE(IPersistPropertyBag, IUnknown, IID_IPersistPropertyBag);

}  // namespace vex::com

namespace vex::platform::win32 {
namespace {

/// A site lives no longer than the form that it is on, and the form keeps the library loaded.
com::ModuleLifetime& site_lifetime() noexcept {
    static com::ModuleLifetime lifetime;
    return lifetime;
}

/// The frame window that an in-place active control may ask for: it has no menu, border or status line to share.
class ControlFrame final : public com::Object<ControlFrame, IOleInPlaceFrame> {
public:
    explicit ControlFrame(HWND form) noexcept : Object(site_lifetime()), form_(form) {}

    HRESULT STDMETHODCALLTYPE GetWindow(HWND* window) noexcept override {
        if (window == nullptr) return E_POINTER;
        *window = form_;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE ContextSensitiveHelp(BOOL) noexcept override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetBorder(RECT*) noexcept override { return INPLACE_E_NOTOOLSPACE; }
    HRESULT STDMETHODCALLTYPE RequestBorderSpace(LPCBORDERWIDTHS) noexcept override { return INPLACE_E_NOTOOLSPACE; }
    HRESULT STDMETHODCALLTYPE SetBorderSpace(LPCBORDERWIDTHS) noexcept override { return S_OK; }
    HRESULT STDMETHODCALLTYPE SetActiveObject(IOleInPlaceActiveObject*, LPCOLESTR) noexcept override { return S_OK; }
    HRESULT STDMETHODCALLTYPE InsertMenus(HMENU, OLEMENUGROUPWIDTHS*) noexcept override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE SetMenu(HMENU, HOLEMENU, HWND) noexcept override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE RemoveMenus(HMENU) noexcept override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE SetStatusText(LPCOLESTR) noexcept override { return S_OK; }
    HRESULT STDMETHODCALLTYPE EnableModeless(BOOL) noexcept override { return S_OK; }
    HRESULT STDMETHODCALLTYPE TranslateAccelerator(MSG*, WORD) noexcept override { return S_FALSE; }

private:
    HWND form_;
};

}  // namespace

/// The client site: where the control is, and what it may know of its surroundings.
class ControlSite final : public com::Object<ControlSite, IOleClientSite, IOleInPlaceSite, com::Untyped<IDispatch>> {
public:
    explicit ControlSite(HWND window) noexcept : Object(site_lifetime()), window_(window) {}

    // IOleClientSite
    HRESULT STDMETHODCALLTYPE SaveObject() noexcept override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetMoniker(DWORD, DWORD, IMoniker** moniker) noexcept override {
        if (moniker != nullptr) *moniker = nullptr;
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE GetContainer(IOleContainer** container) noexcept override {
        if (container != nullptr) *container = nullptr;
        return E_NOINTERFACE;
    }
    HRESULT STDMETHODCALLTYPE ShowObject() noexcept override { return S_OK; }
    HRESULT STDMETHODCALLTYPE OnShowWindow(BOOL) noexcept override { return S_OK; }
    HRESULT STDMETHODCALLTYPE RequestNewObjectLayout() noexcept override { return E_NOTIMPL; }

    // IOleInPlaceSite
    HRESULT STDMETHODCALLTYPE GetWindow(HWND* window) noexcept override {
        if (window == nullptr) return E_POINTER;
        *window = window_;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE ContextSensitiveHelp(BOOL) noexcept override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE CanInPlaceActivate() noexcept override { return S_OK; }
    HRESULT STDMETHODCALLTYPE OnInPlaceActivate() noexcept override { return S_OK; }
    // It cannot be seen, so it takes neither the focus nor a part of the frame.
    HRESULT STDMETHODCALLTYPE OnUIActivate() noexcept override { return E_FAIL; }
    HRESULT STDMETHODCALLTYPE GetWindowContext(IOleInPlaceFrame** frame, IOleInPlaceUIWindow** document, RECT* place,
                                               RECT* clip, OLEINPLACEFRAMEINFO* information) noexcept override {
        if (frame == nullptr || document == nullptr || place == nullptr || clip == nullptr) return E_POINTER;
        *frame = nullptr;
        *document = nullptr;
        const HWND form = GetAncestor(window_, GA_ROOT);
        try {
            *frame = com::make_object<ControlFrame>(form).detach();
        } catch (const std::bad_alloc&) {
            return E_OUTOFMEMORY;
        }
        GetClientRect(window_, place);
        *clip = *place;
        if (information != nullptr) {
            information->fMDIApp = FALSE;
            information->hwndFrame = form;
            information->haccel = nullptr;
            information->cAccelEntries = 0;
        }
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE Scroll(SIZE) noexcept override { return S_FALSE; }
    HRESULT STDMETHODCALLTYPE OnUIDeactivate(BOOL) noexcept override { return S_OK; }
    HRESULT STDMETHODCALLTYPE OnInPlaceDeactivate() noexcept override { return S_OK; }
    HRESULT STDMETHODCALLTYPE DiscardUndoState() noexcept override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE DeactivateAndUndo() noexcept override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE OnPosRectChange(LPCRECT) noexcept override { return S_OK; }

    // IDispatch: the ambient properties.
    HRESULT STDMETHODCALLTYPE Invoke(DISPID member, REFIID, LCID, WORD flags, DISPPARAMS*, VARIANT* result, EXCEPINFO*,
                                     UINT*) noexcept override {
        if ((flags & DISPATCH_PROPERTYGET) == 0 || result == nullptr) return DISP_E_MEMBERNOTFOUND;
        VariantInit(result);
        switch (member) {
            case DISPID_AMBIENT_USERMODE:
                return answer(*result, true);
            case DISPID_AMBIENT_UIDEAD:
            case DISPID_AMBIENT_SHOWGRABHANDLES:
            case DISPID_AMBIENT_SHOWHATCHING:
            case DISPID_AMBIENT_DISPLAYASDEFAULT:
            case DISPID_AMBIENT_SUPPORTSMNEMONICS:
                return answer(*result, false);
            case DISPID_AMBIENT_BACKCOLOR:
                return answer(*result, GetSysColor(COLOR_3DFACE));
            case DISPID_AMBIENT_FORECOLOR:
                return answer(*result, GetSysColor(COLOR_BTNTEXT));
            case DISPID_AMBIENT_LOCALEID:
                return answer(*result, GetUserDefaultLCID());
            default:
                return DISP_E_MEMBERNOTFOUND;
        }
    }

private:
    static HRESULT answer(VARIANT& result, bool truth) noexcept {
        result.vt = VT_BOOL;
        result.boolVal = truth ? VARIANT_TRUE : VARIANT_FALSE;
        return S_OK;
    }
    static HRESULT answer(VARIANT& result, DWORD number) noexcept {
        result.vt = VT_I4;
        result.lVal = static_cast<LONG>(number);
        return S_OK;
    }

    HWND window_;
};

namespace {

void initialise_as_new(const com::ComPtr<IOleObject>& object) noexcept {
    if (const auto stream = object.query<IPersistStreamInit>()) {
        stream->InitNew();
    } else if (const auto bag = object.query<IPersistPropertyBag>()) {
        bag->InitNew();
    }
}

}  // namespace

HostedControl::HostedControl(IUnknown& object, HWND window)
    : object_(com::ComPtr<IUnknown>(&object).query<IOleObject>()) {
    if (!object_) return;
    site_ = com::make_object<ControlSite>(window);
    DWORD status = 0;
    object_->GetMiscStatus(DVASPECT_CONTENT, &status);
    const bool site_first = (status & OLEMISC_SETCLIENTSITEFIRST) != 0;
    if (site_first) object_->SetClientSite(site_.get());
    initialise_as_new(object_);
    if (!site_first) object_->SetClientSite(site_.get());
    if ((status & OLEMISC_ACTIVATEWHENVISIBLE) != 0 && (status & OLEMISC_INVISIBLEATRUNTIME) == 0) {
        RECT place;
        GetClientRect(window, &place);
        object_->DoVerb(OLEIVERB_INPLACEACTIVATE, nullptr, site_.get(), 0, window, &place);
    }
}

HostedControl::~HostedControl() {
    if (!object_) return;
    if (const auto active = object_.query<IOleInPlaceObject>()) active->InPlaceDeactivate();
    object_->Close(OLECLOSE_NOSAVE);
    object_->SetClientSite(nullptr);
}

HostControlWindow::HostControlWindow(Surface& parent, forms::HostControl& control, int id)
    : ControlWindow(parent, control) {
    create(WC_STATICW, 0, 0, id);
    hosted_.emplace(*control.object, window());
}

}  // namespace vex::platform::win32
