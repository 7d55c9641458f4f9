// The Windows side.
#include "platform/win32/windows_api.h"

#include <thread>

#include "com/object.h"
#include "tests/plugin/plugin_fixture.h"

namespace vex::plugin_test {
namespace {

com::ModuleLifetime clients;

class Described final : public com::Object<Described, com::Untyped<IDispatch>> {
public:
    explicit Described(const com::ComPtr<IDispatch>& object) : Object(clients), object_(object) {
        com::ComPtr<ITypeInfo> late;
        EXPECT_EQ(object->GetTypeInfo(0, LOCALE_USER_DEFAULT, late.put()), S_OK);
        // A dual interface shows its dispatch side, which leads to the side with the virtual table.
        HREFTYPE table = 0;
        EXPECT_EQ(late->GetRefTypeOfImplType(static_cast<UINT>(-1), &table), S_OK);
        EXPECT_EQ(late->GetRefTypeInfo(table, type_.put()), S_OK);
        TYPEATTR* attributes = nullptr;
        EXPECT_EQ(type_->GetTypeAttr(&attributes), S_OK);
        EXPECT_EQ(object->QueryInterface(attributes->guid, own_.put_void()), S_OK);
        type_->ReleaseTypeAttr(attributes);
    }

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** result) noexcept override {
        const bool own = IsEqualGUID(iid, IID_IUnknown) || IsEqualGUID(iid, IID_IDispatch);
        return own ? Object::QueryInterface(iid, result) : object_->QueryInterface(iid, result);
    }
    HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR* names, UINT count, LCID, DISPID* ids) noexcept override {
        return type_->GetIDsOfNames(names, count, ids);
    }
    HRESULT STDMETHODCALLTYPE Invoke(DISPID member, REFIID, LCID, WORD flags, DISPPARAMS* parameters, VARIANT* result,
                                     EXCEPINFO* exception, UINT* argument) noexcept override {
        return type_->Invoke(own_.get(), member, flags, parameters, result, exception, argument);
    }

private:
    com::ComPtr<IDispatch> object_;
    com::ComPtr<ITypeInfo> type_;
    com::ComPtr<IUnknown> own_;
};

}  // namespace

std::filesystem::path plugin_file() {
    return std::filesystem::path(platform::win32::module_path()).replace_filename("vexFirmwarePlugin.dll");
}

const char* const kPlatform = sizeof(void*) == 8 ? "win64" : "win32";
const bool kAnyFolderIsRegistered = true;

com::ComPtr<IDispatch> as_described(const com::ComPtr<IDispatch>& object) {
    return com::make_object<Described>(object).query<IDispatch>();
}

void call_from_other_apartments(const std::function<void(const Create& create)>& use) {
    ASSERT_EQ(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED), S_OK);
    const DWORD here = GetCurrentThreadId();
    const GUID classes[] = {kCatalogueClass, kEntryClass};
    for (const COINIT kind : {COINIT_MULTITHREADED, COINIT_APARTMENTTHREADED}) {
        IStream* streams[2] = {};
        for (int i = 0; i < 2; ++i) {
            const auto object = create_registered(classes[i]);
            EXPECT_EQ(CoMarshalInterThreadInterfaceInStream(IID_IDispatch, object.get(), &streams[i]), S_OK);
        }
        std::thread client([&] {
            EXPECT_EQ(CoInitializeEx(nullptr, kind), S_OK);
            com::ComPtr<IDispatch> proxies[2];
            for (int i = 0; i < 2; ++i)
                EXPECT_EQ(CoGetInterfaceAndReleaseStream(streams[i], IID_IDispatch, proxies[i].put_void()), S_OK);
            use([&](REFCLSID clsid) { return proxies[IsEqualGUID(clsid, kEntryClass) ? 1 : 0]; });
            for (auto& proxy : proxies) proxy.reset();
            CoUninitialize();
            PostThreadMessageW(here, WM_QUIT, 0, 0);
        });
        // Its calls come as messages.
        for (MSG message; GetMessageW(&message, nullptr, 0, 0) > 0;) DispatchMessageW(&message);
        client.join();
    }
    CoUninitialize();
}

bool is_icon(IDispatch& object) {
    com::ComPtr<IPicture> picture;
    SHORT type = 0;
    // Pictures stay in their apartment, except for what is called late.
    if (object.QueryInterface(IID_IPicture, picture.put_void()) != S_OK)
        return call(object, DISPID_PICT_TYPE, DISPATCH_PROPERTYGET).value.get().iVal == PICTYPE_ICON;
    OLE_XSIZE_HIMETRIC width = 0;
    // 16 pixels of 1/96 inch, in 1/100 mm.
    return picture->get_Type(&type) == S_OK && picture->get_Width(&width) == S_OK && type == PICTYPE_ICON &&
           width >= 422 && width <= 424;
}

}  // namespace vex::plugin_test
