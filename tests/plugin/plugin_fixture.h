// What the tests of the plug-in's library share: its exports, its identities, and an apartment for each test.
#pragma once

#include <gtest/gtest.h>

#include <string>

#include "com/bstr.h"
#include "com/com_ptr.h"
#include "tests/plugin/side.h"

namespace vex::plugin_test {

// The identities as hosts know them; not taken from the plug-in's own tables.
constexpr GUID kCatalogueClass = {0x09D14609, 0x0E72, 0x4D6E, {0xA3, 0xB6, 0xD8, 0x40, 0x9C, 0x89, 0x77, 0x02}};
constexpr GUID kCatalogueInterface = {0x28D15CCC, 0xA58D, 0x44F0, {0x8A, 0xAF, 0x3E, 0xEC, 0xB0, 0x73, 0x6F, 0xA9}};
constexpr GUID kEntryClass = {0x4802794B, 0x38DD, 0x46AD, {0xA2, 0x90, 0xF2, 0x78, 0x25, 0xC7, 0x1C, 0xEA}};
constexpr GUID kEntryInterface = {0x4EA9496B, 0x9BA4, 0x4BD0, {0xA3, 0x67, 0xC0, 0xE0, 0xA8, 0x37, 0xB2, 0xE4}};

template <class Function>
Function* plugin_function(const char* name) {
    return reinterpret_cast<Function*>(plugin_export(name));
}

inline HRESULT can_unload_now() { return plugin_function<decltype(DllCanUnloadNow)>("DllCanUnloadNow")(); }

inline HRESULT class_object(REFCLSID clsid, REFIID iid, void** object) {
    return plugin_function<decltype(DllGetClassObject)>("DllGetClassObject")(clsid, iid, object);
}

inline HRESULT register_server() { return plugin_function<decltype(DllRegisterServer)>("DllRegisterServer")(); }

inline HRESULT unregister_server() { return plugin_function<decltype(DllUnregisterServer)>("DllUnregisterServer")(); }

inline com::ComPtr<IClassFactory> factory_of(REFCLSID clsid) {
    com::ComPtr<IClassFactory> factory;
    EXPECT_EQ(class_object(clsid, IID_IClassFactory, factory.put_void()), S_OK);
    return factory;
}

/// An object made without the registry.
inline com::ComPtr<IDispatch> make(REFCLSID clsid) {
    com::ComPtr<IDispatch> object;
    EXPECT_EQ(factory_of(clsid)->CreateInstance(nullptr, IID_IDispatch, object.put_void()), S_OK);
    return object;
}

/// Each test runs in an apartment and must leave nothing alive behind.
class PluginTest : public testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(SUCCEEDED(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED)));
        ASSERT_EQ(can_unload_now(), S_OK);
    }
    void TearDown() override {
        EXPECT_EQ(can_unload_now(), S_OK) << "an object or a lock was left";
        CoUninitialize();
    }
};

}  // namespace vex::plugin_test
