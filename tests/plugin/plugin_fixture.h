// What the tests of the plug-in's library share: its exports and identities, an apartment for each test, and calls by
// dispatch id as a host without type information makes them.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "com/bstr.h"
#include "com/com_ptr.h"
#include "com/variant.h"
#include "platform/library.h"

namespace vex::plugin_test {

// ---- What each side has of its own

/// The plug-in's library file, beside the test program.
std::filesystem::path plugin_file();
/// What the registry calls the platform of the type library.
extern const char* const kPlatform;
/// Whether a library can be registered wherever it lies.
extern const bool kAnyFolderIsRegistered;
/// Whether an object is a picture, and, where pictures are real, an icon of 16 pixels.
bool is_icon(IDispatch& object);
/// The object as a client meets it that reads what the system tells of its interface, and calls its virtual table by
/// that; the object itself where the system describes none.
com::ComPtr<IDispatch> as_described(const com::ComPtr<IDispatch>& object);
/// An object of a class.
using Create = std::function<com::ComPtr<IDispatch>(REFCLSID clsid)>;
/// Lets clients in every other kind of apartment use the registered classes, where the system carries calls between
/// apartments.
void call_from_other_apartments(const std::function<void(const Create& create)>& use);

// ---- The library as hosts know it; not taken from the plug-in's own tables

constexpr GUID kCatalogueClass = {0x09D14609, 0x0E72, 0x4D6E, {0xA3, 0xB6, 0xD8, 0x40, 0x9C, 0x89, 0x77, 0x02}};
constexpr GUID kCatalogueInterface = {0x28D15CCC, 0xA58D, 0x44F0, {0x8A, 0xAF, 0x3E, 0xEC, 0xB0, 0x73, 0x6F, 0xA9}};
constexpr GUID kEntryClass = {0x4802794B, 0x38DD, 0x46AD, {0xA2, 0x90, 0xF2, 0x78, 0x25, 0xC7, 0x1C, 0xEA}};
constexpr GUID kEntryInterface = {0x4EA9496B, 0x9BA4, 0x4BD0, {0xA3, 0x67, 0xC0, 0xE0, 0xA8, 0x37, 0xB2, 0xE4}};

constexpr DISPID kTotalPlugins = 0x68030004;
constexpr DISPID kPluginNames = 0x68030003;
constexpr DISPID kPluginDescription = 0x68030002;
constexpr DISPID kPluginPic = 0x68030001;
constexpr DISPID kPluginDescriptiveName = 0x68030000;
constexpr DISPID kStartPlugin = 0x60030000;
constexpr DISPID kDoesFrameEdit = 0x60030001;
constexpr DISPID kStartFrameFeature = 0x60030002;
constexpr DISPID kStartPreTransmit = 0x60030004;
constexpr DISPID kGetMyName = 0x60030005;

/// The error code that carries a run-time error's number.
constexpr HRESULT error_code(int number) { return static_cast<HRESULT>(0x800A0000U | static_cast<unsigned>(number)); }

// ---- Its exports

/// The library, from the first use of an export on.
inline std::optional<platform::Library> library;

template <class Function>
Function* plugin_function(const char* name) {
    if (!library) library.emplace(plugin_file());
    return library->function<Function*>(name);
}

inline HRESULT can_unload_now() { return plugin_function<decltype(DllCanUnloadNow)>("DllCanUnloadNow")(); }
inline HRESULT class_object(REFCLSID clsid, REFIID iid, void** object) {
    return plugin_function<decltype(DllGetClassObject)>("DllGetClassObject")(clsid, iid, object);
}

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

inline com::ComPtr<IDispatch> create_registered(REFCLSID clsid) {
    com::ComPtr<IDispatch> object;
    EXPECT_EQ(CoCreateInstance(clsid, nullptr, CLSCTX_INPROC_SERVER, IID_IDispatch, object.put_void()), S_OK);
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

// ---- Late calls

inline LPOLESTR ole_name(const char16_t* text) { return const_cast<LPOLESTR>(reinterpret_cast<LPCOLESTR>(text)); }

struct Outcome {
    HRESULT result = E_UNEXPECTED;
    com::Variant value;
    /// Of an exception.
    HRESULT code = S_OK;
    std::u16string description, source;
    /// The argument at fault, counted as in the argument array; 999 when none is told.
    UINT argument = 999;
};

inline Outcome call(IDispatch& object, DISPID member, WORD flags, DISPPARAMS* parameters) {
    Outcome outcome;
    EXCEPINFO exception{};
    outcome.result = object.Invoke(member, IID_NULL, LOCALE_USER_DEFAULT, flags, parameters, outcome.value.put(),
                                   &exception, &outcome.argument);
    outcome.code = exception.scode;
    outcome.description = com::view(exception.bstrDescription);
    outcome.source = com::view(exception.bstrSource);
    for (BSTR text : {exception.bstrDescription, exception.bstrSource, exception.bstrHelpFile}) SysFreeString(text);
    return outcome;
}

/// `arguments` in the order in which a programmer writes them; the last ones are for the parameters in `names`.
inline Outcome call(IDispatch& object, DISPID member, WORD flags, const std::vector<com::Variant>& arguments = {},
                    std::vector<DISPID> names = {}) {
    // Borrowed copies.
    std::vector<VARIANTARG> reversed;
    for (auto at = arguments.rbegin(); at != arguments.rend(); ++at) reversed.push_back(at->get());
    DISPPARAMS parameters{reversed.data(), names.data(), static_cast<UINT>(reversed.size()),
                          static_cast<UINT>(names.size())};
    return call(object, member, flags, &parameters);
}

}  // namespace vex::plugin_test
