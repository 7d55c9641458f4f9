// Fuzz target: any calls of the library that tell their sizes truly. They answer result codes, leave nothing in the
// places of results that fail, and nothing alive.
#include <array>
#include <cstring>
#include <vector>

#include "com/variant.h"
#include "platform/library.h"
#include "tests/fuzz/target.h"

namespace {

using namespace vex;

/// What is left of the input.
struct Input {
    const std::uint8_t* data;
    std::size_t size;

    template <class Value>
    Value take() {
        Value value{};
        const std::size_t taken = std::min(sizeof value, size);
        std::memcpy(&value, data, taken);
        data += taken;
        size -= taken;
        return value;
    }
    /// A number below `count`, of one byte.
    std::size_t choice(std::size_t count) { return take<std::uint8_t>() % count; }
    bool chance() { return choice(2) == 1; }
};

const GUID kCatalogue = {0x09D14609, 0x0E72, 0x4D6E, {0xA3, 0xB6, 0xD8, 0x40, 0x9C, 0x89, 0x77, 0x02}};
const GUID kEntry = {0x4802794B, 0x38DD, 0x46AD, {0xA2, 0x90, 0xF2, 0x78, 0x25, 0xC7, 0x1C, 0xEA}};
const GUID kEntryInterface = {0x4EA9496B, 0x9BA4, 0x4BD0, {0xA3, 0x67, 0xC0, 0xE0, 0xA8, 0x37, 0xB2, 0xE4}};

GUID identity(Input& input) {
    const GUID known[] = {
        kCatalogue, kEntry, kEntryInterface, IID_IUnknown, IID_IDispatch, IID_IClassFactory, IID_ISupportErrorInfo,
        GUID_NULL};
    const std::size_t chosen = input.choice(std::size(known) + 1);
    return chosen < std::size(known) ? known[chosen] : input.take<GUID>();
}

/// A value of any kind; what it refers to stands in `place`, or nowhere.
VARIANTARG value(Input& input, IDispatch* object, BSTR text, VARIANT& place) {
    constexpr VARTYPE kKinds[] = {VT_EMPTY, VT_NULL,     VT_I2,    VT_I4,   VT_R8,
                                  VT_BSTR,  VT_DISPATCH, VT_ERROR, VT_BOOL, VT_UNKNOWN};
    VARIANTARG given{};
    given.vt = kKinds[input.choice(std::size(kKinds))];
    given.dblVal = input.take<double>();
    if (given.vt == VT_BSTR) given.bstrVal = input.chance() ? text : nullptr;
    if (given.vt == VT_DISPATCH || given.vt == VT_UNKNOWN) given.pdispVal = input.chance() ? object : nullptr;
    const std::size_t reference = input.choice(4);
    if (reference < 2) return given;
    place = given;
    VARIANTARG refers{};
    const bool whole = reference == 2;
    refers.vt = static_cast<VARTYPE>(VT_BYREF | (whole ? VARTYPE{VT_VARIANT} : given.vt));
    if (input.chance()) refers.byref = whole ? static_cast<void*>(&place) : &place.byref;
    return refers;
}

void invoke(Input& input, IDispatch* object, BSTR text) {
    std::array<VARIANTARG, 3> arguments;
    std::array<VARIANT, 3> places{};
    for (std::size_t i = 0; i < arguments.size(); ++i) arguments[i] = value(input, object, text, places[i]);
    std::array<DISPID, 3> names{static_cast<DISPID>(input.choice(3)), input.take<DISPID>(), DISPID_PROPERTYPUT};
    DISPPARAMS parameters{input.choice(8) == 0 ? nullptr : arguments.data(),
                          input.choice(8) == 0 ? nullptr : names.data(), static_cast<UINT>(input.choice(4)),
                          static_cast<UINT>(input.choice(4))};
    if (parameters.cNamedArgs > parameters.cArgs) parameters.cNamedArgs = parameters.cArgs;
    constexpr DISPID kFirst[] = {0x60030000, 0x68030000};
    const DISPID member =
        input.choice(8) == 0 ? input.take<DISPID>() : kFirst[input.choice(2)] + static_cast<DISPID>(input.choice(10));
    com::Variant result;
    EXCEPINFO exception{};
    UINT at = 0;
    const HRESULT outcome =
        object->Invoke(member, input.choice(8) == 0 ? identity(input) : IID_NULL, input.take<LCID>(),
                       input.chance() ? WORD{DISPATCH_METHOD | DISPATCH_PROPERTYGET} : input.take<WORD>(),
                       input.choice(8) == 0 ? nullptr : &parameters, input.chance() ? result.put() : nullptr,
                       input.chance() ? &exception : nullptr, input.chance() ? &at : nullptr);
    require(SUCCEEDED(outcome) || result.type() == VT_EMPTY);
    for (BSTR said : {exception.bstrSource, exception.bstrDescription, exception.bstrHelpFile}) SysFreeString(said);
}

void find_names(Input& input, IDispatch* object) {
    constexpr const char16_t* kNames[] = {u"PluginNames", u"iIndex", u"STARTPLUGIN", u"bActive", u"", u"nobody"};
    std::array<LPOLESTR, 3> names{};
    for (LPOLESTR& name : names) {
        const std::size_t chosen = input.choice(std::size(kNames) + 1);
        if (chosen < std::size(kNames)) name = const_cast<LPOLESTR>(kNames[chosen]);
    }
    std::array<DISPID, 3> ids{};
    object->GetIDsOfNames(input.choice(8) == 0 ? identity(input) : IID_NULL, input.chance() ? names.data() : nullptr,
                          static_cast<UINT>(input.choice(4)), input.take<LCID>(),
                          input.chance() ? ids.data() : nullptr);
}

void query(Input& input, IUnknown& object) {
    void* found = &input;
    const bool asked = input.chance();
    const HRESULT outcome = object.QueryInterface(identity(input), asked ? &found : nullptr);
    require(SUCCEEDED(outcome) == (asked && found != nullptr));
    if (SUCCEEDED(outcome)) static_cast<IUnknown*>(found)->Release();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const platform::Library library(VEX_PLUGIN_LIBRARY);
    static const auto class_object = library.function<decltype(&DllGetClassObject)>("DllGetClassObject");
    static const auto can_unload = library.function<decltype(&DllCanUnloadNow)>("DllCanUnloadNow");
    CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
    Input input{data, size};
    {
        const com::Bstr text(u"1");
        std::vector<com::ComPtr<IDispatch>> objects;
        while (input.size > 0) {
            com::ComPtr<IClassFactory> factory;
            void* made = &input;
            const bool asked = input.choice(8) != 0;
            const GUID clsid = identity(input);
            const HRESULT outcome = class_object(clsid, input.choice(4) == 0 ? identity(input) : IID_IClassFactory,
                                                 asked ? &made : nullptr);
            require(SUCCEEDED(outcome) == (asked && made != nullptr));
            if (SUCCEEDED(outcome))
                factory = com::ComPtr<IUnknown>::adopt(static_cast<IUnknown*>(made)).query<IClassFactory>();
            com::ComPtr<IDispatch> object;
            if (factory) {
                if (input.choice(4) == 0) factory->LockServer(FALSE);
                query(input, *factory);
                factory->CreateInstance(input.choice(8) == 0 ? factory.get() : nullptr, IID_IDispatch,
                                        object.put_void());
            }
            for (std::size_t calls = object ? input.choice(8) : 0; calls > 0; --calls) {
                switch (input.choice(3)) {
                    case 0: find_names(input, object.get()); break;
                    case 1: query(input, *object); break;
                    default: invoke(input, object.get(), text.get());
                }
            }
            objects.push_back(std::move(object));
        }
    }
    SetErrorInfo(0, nullptr);
    require(can_unload() == S_OK);
    CoUninitialize();
    return 0;
}
