// The two classes: their factories, what keeps the library loaded, and what their members answer, called through the
// virtual table and late.
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <thread>

#include "core/unicode.h"
#include "tests/plugin/plugin_fixture.h"

namespace vex::plugin_test {
namespace {

using com::Variant;

void* const kPoison = reinterpret_cast<void*>(std::uintptr_t{0xDEAD});
constexpr GUID kUnknownClass = {0x12345678, 1, 2, {3, 4, 5, 6, 7, 8, 9, 10}};

class Factory : public PluginTest, public testing::WithParamInterface<GUID> {};

INSTANTIATE_TEST_SUITE_P(Classes, Factory, testing::Values(kCatalogueClass, kEntryClass));

TEST_P(Factory, KeepsTheLibraryLoadedByObjectsAndLocks) {
    auto factory = factory_of(GetParam());
    com::ComPtr<IUnknown> object;
    ASSERT_EQ(factory->CreateInstance(nullptr, IID_IUnknown, object.put_void()), S_OK);
    factory.reset();
    EXPECT_EQ(can_unload_now(), S_FALSE);
    object.reset();
    EXPECT_EQ(can_unload_now(), S_OK);

    // What is released more often than it was locked leaves no debt.
    for (const auto& locks : {std::vector<BOOL>{TRUE, TRUE, FALSE}, {FALSE, FALSE, TRUE}, {FALSE}}) {
        for (const BOOL lock : locks) EXPECT_EQ(factory_of(GetParam())->LockServer(lock), S_OK);
        EXPECT_EQ(can_unload_now(), locks.size() == 1 ? S_OK : S_FALSE) << locks.front();
    }
}

TEST_P(Factory, OffersTheInterfacesOfItsClassAndNoOthers) {
    const auto object = make(GetParam());
    const bool is_catalogue = IsEqualGUID(GetParam(), kCatalogueClass);
    const GUID own = is_catalogue ? kCatalogueInterface : kEntryInterface;
    const GUID other = is_catalogue ? kEntryInterface : kCatalogueInterface;
    com::ComPtr<IUnknown> identity;
    ASSERT_EQ(object->QueryInterface(IID_IUnknown, identity.put_void()), S_OK);
    for (const GUID& iid : {own, IID_IDispatch, IID_ISupportErrorInfo}) {
        com::ComPtr<IUnknown> offered, same;
        EXPECT_EQ(object->QueryInterface(iid, offered.put_void()), S_OK);
        EXPECT_EQ(offered->QueryInterface(IID_IUnknown, same.put_void()), S_OK);
        EXPECT_EQ(same.get(), identity.get()) << "every interface leads back to one identity";
    }
    void* refused = kPoison;
    EXPECT_EQ(object->QueryInterface(other, &refused), E_NOINTERFACE);
    EXPECT_EQ(refused, nullptr);
    EXPECT_EQ(object->QueryInterface(IID_IUnknown, nullptr), E_POINTER);
    const auto errors = object.query<ISupportErrorInfo>();
    EXPECT_EQ(errors->InterfaceSupportsErrorInfo(own), S_OK);
    EXPECT_EQ(errors->InterfaceSupportsErrorInfo(other), S_FALSE);
}

TEST_P(Factory, RefusesWithoutAnObject) {
    const auto factory = factory_of(GetParam());
    void* objects[] = {kPoison, kPoison, kPoison, kPoison};
    EXPECT_EQ(factory->CreateInstance(factory.get(), IID_IUnknown, &objects[0]), CLASS_E_NOAGGREGATION);
    EXPECT_EQ(factory->CreateInstance(nullptr, kUnknownClass, &objects[1]), E_NOINTERFACE);
    EXPECT_EQ(factory->CreateInstance(nullptr, IID_IUnknown, nullptr), E_POINTER);
    EXPECT_EQ(class_object(kUnknownClass, IID_IClassFactory, &objects[2]), CLASS_E_CLASSNOTAVAILABLE);
    EXPECT_EQ(class_object(GetParam(), kCatalogueInterface, &objects[3]), E_NOINTERFACE) << "no factory is a catalogue";
    EXPECT_EQ(class_object(GetParam(), IID_IClassFactory, nullptr), E_POINTER);
    for (const void* object : objects) EXPECT_EQ(object, nullptr);
}

// ---- Members

constexpr char kName[] = "vexFirmwarePlugin.vexFirmwareUtil";
constexpr char kDescription[] = "Reset and Clear Display and also Load Firmware!";
constexpr char kDescriptiveName[] = "Reset & Clear/Load Firmware";

enum class Takes { nothing, index, object };

struct Member {
    GUID clsid;
    std::size_t slot;
    DISPID id;
    const char16_t* name;
    Takes argument;
    VARTYPE type;
    const char* answer;
    /// Where no desktop is, or no host with its display list, a wizard cannot open.
    HRESULT code = S_OK;
};

const Member kMembers[] = {
    {kCatalogueClass, 7, kTotalPlugins, u"TOTALPLUGINS", Takes::nothing, VT_I2, "1"},
    {kCatalogueClass, 8, kPluginNames, u"PLUGINNAMES", Takes::index, VT_BSTR, kName},
    {kCatalogueClass, 9, kPluginDescription, u"PLUGINDESCRIPTION", Takes::index, VT_BSTR, kDescription},
    {kCatalogueClass, 10, kPluginPic, u"PLUGINPIC", Takes::index, VT_DISPATCH, "icon"},
    {kCatalogueClass, 11, kPluginDescriptiveName, u"PLUGINDESCRIPTIVENAME", Takes::index, VT_BSTR, kDescriptiveName},
    {kEntryClass, 7, kStartPlugin, u"STARTPLUGIN", Takes::object, VT_EMPTY, "", error_code(429)},
    {kEntryClass, 8, kDoesFrameEdit, u"DOESFRAMEEDIT", Takes::nothing, VT_BOOL, "0"},
    {kEntryClass, 9, kStartFrameFeature, u"STARTFRAMEFEATURE", Takes::object, VT_EMPTY, "", error_code(429)},
    {kEntryClass, 10, 0x60030003, u"DOESPRETRANSMIT", Takes::nothing, VT_BOOL, "0"},
    {kEntryClass, 11, kStartPreTransmit, u"STARTPRETRANSMIT", Takes::object, VT_EMPTY, ""},
    {kEntryClass, 12, kGetMyName, u"GETMYNAME", Takes::nothing, VT_BSTR, kName},
    {kEntryClass, 13, 0x60030006, u"GETMYDESCRIPTION", Takes::nothing, VT_BSTR, kDescription},
    {kEntryClass, 14, 0x60030007, u"GETMYPICTURE", Takes::nothing, VT_DISPATCH, "icon"},
    {kEntryClass, 15, 0x60030008, u"GETMYDESCRIPTIVENAME", Takes::nothing, VT_BSTR, kDescriptiveName},
};

template <class... Arguments>
HRESULT call_slot(IUnknown* object, std::size_t slot, Arguments... arguments) {
    using Method = HRESULT(STDMETHODCALLTYPE*)(IUnknown*, Arguments...);
    return reinterpret_cast<Method>((*reinterpret_cast<void***>(object))[slot])(object, arguments...);
}

/// What a member has answered.
std::string shown(const VARIANT& value) {
    if (value.vt == VT_BSTR) return to_utf8(com::view(value.bstrVal));
    if (value.vt == VT_I2 || value.vt == VT_BOOL) return std::to_string(value.iVal);
    if (value.vt != VT_DISPATCH || value.pdispVal == nullptr) return "";
    return is_icon(*value.pdispVal) ? "icon" : "no icon";
}

/// Whether a client's calls come to the object itself, or by way of the system, which may stand in between.
enum class Reached { directly, by_the_system };

com::ComPtr<IUnknown> own_interface(const Member& member, IDispatch& object) {
    com::ComPtr<IUnknown> own;
    const bool is_catalogue = IsEqualGUID(member.clsid, kCatalogueClass);
    EXPECT_EQ(object.QueryInterface(is_catalogue ? kCatalogueInterface : kEntryInterface, own.put_void()), S_OK);
    return own;
}

void check_member(const Member& member, const com::ComPtr<IDispatch>& object, Reached reached) {
    SCOPED_TRACE(testing::Message() << std::hex << member.id);
    const auto own = own_interface(member, *object);
    const com::ComPtr<IDispatch> given = object;
    IDispatch* mine = com::ComPtr<IDispatch>(given).detach();

    Variant early;
    // More than any result is long: what the callee does not write shows.
    std::memset(&early.get().dblVal, 0x77, sizeof early.get().dblVal);
    const auto call_early = [&](void* result) {
        switch (member.argument) {
            case Takes::index: return call_slot(own.get(), member.slot, SHORT{0}, result);
            case Takes::object: return call_slot(own.get(), member.slot, &mine);
            default: return call_slot(own.get(), member.slot, result);
        }
    };
    EXPECT_EQ(call_early(&early.get().dblVal), member.code);
    early.get().vt = member.type;
    EXPECT_EQ(shown(early.get()), member.answer);
    if (member.argument != Takes::object && reached == Reached::directly) {
        EXPECT_EQ(call_early(nullptr), E_POINTER);
    }

    LPOLESTR text = ole_name(member.name);
    DISPID id = DISPID_UNKNOWN;
    EXPECT_EQ(object->GetIDsOfNames(IID_NULL, &text, 1, LOCALE_USER_DEFAULT, &id), S_OK);
    EXPECT_EQ(id, member.id);

    std::vector<Variant> arguments;
    if (member.argument == Takes::index) arguments.push_back(Variant::int16(0));
    if (member.argument == Takes::object) arguments.push_back(Variant::object_reference(&mine));
    // Clients that cannot tell properties from methods ask for both.
    const Outcome late = call(*object, member.id, DISPATCH_METHOD | DISPATCH_PROPERTYGET, arguments);
    EXPECT_EQ(late.result, member.code == S_OK ? S_OK : DISP_E_EXCEPTION);
    EXPECT_EQ(late.code, member.code);
    EXPECT_EQ(late.value.type(), member.type);
    EXPECT_EQ(shown(late.value.get()), member.answer);

    const WORD other_kind = IsEqualGUID(member.clsid, kEntryClass) ? DISPATCH_PROPERTYGET : DISPATCH_METHOD;
    EXPECT_EQ(call(*object, member.id, other_kind, arguments).result, DISP_E_MEMBERNOTFOUND);
    // The argument is left alone.
    com::ComPtr<IUnknown> identity, same;
    EXPECT_EQ(mine->QueryInterface(IID_IUnknown, same.put_void()), S_OK);
    EXPECT_EQ(given->QueryInterface(IID_IUnknown, identity.put_void()), S_OK);
    EXPECT_EQ(same.get(), identity.get());
    mine->Release();
}

using Members = PluginTest;

TEST_F(Members, AnswerInTheirPlaceAndByTheirName) {
    for (const Member& member : kMembers) {
        check_member(member, make(member.clsid), Reached::directly);
        check_member(member, as_described(make(member.clsid)), Reached::directly);
    }
}

TEST_F(Members, OtherIndexesFailForTextsAndAreNoPictures) {
    const auto catalogue = make(kCatalogueClass);
    for (const std::int16_t index : std::vector<std::int16_t>{1, -1, -101, -200, 32767, -32768}) {
        const auto get = [&](DISPID member) {
            return call(*catalogue, member, DISPATCH_PROPERTYGET, {Variant::int16(index)});
        };
        for (const DISPID member : {kPluginNames, kPluginDescription, kPluginDescriptiveName}) {
            const Outcome outcome = get(member);
            EXPECT_EQ(outcome.result, DISP_E_EXCEPTION);
            EXPECT_EQ(outcome.code, error_code(9));
            EXPECT_EQ(outcome.description + u"|" + outcome.source, u"Subscript out of range|vexFirmWarePlugin");
            EXPECT_EQ(outcome.value.type(), VT_EMPTY);
        }
        const Outcome picture = get(kPluginPic);
        EXPECT_EQ(picture.result, S_OK) << index;
        EXPECT_EQ(picture.value.type(), VT_DISPATCH);
        EXPECT_EQ(picture.value.get().pdispVal, nullptr);
    }
}

TEST_F(Members, ErrorsOfEarlyCallsComeAsErrorInformation) {
    const auto catalogue = make(kCatalogueClass);
    const auto names = [&catalogue](SHORT index, BSTR* name) { return call_slot(catalogue.get(), 8, index, name); };
    com::Bstr name;
    BSTR poisoned = static_cast<BSTR>(kPoison);
    EXPECT_EQ(names(1, &poisoned), error_code(9));
    EXPECT_EQ(poisoned, nullptr);
    com::ComPtr<IErrorInfo> info;
    ASSERT_EQ(GetErrorInfo(0, info.put()), S_OK);
    com::Bstr description, source;
    GUID raised_by{};
    EXPECT_EQ(info->GetDescription(description.put()), S_OK);
    EXPECT_EQ(info->GetSource(source.put()), S_OK);
    EXPECT_EQ(info->GetGUID(&raised_by), S_OK);
    EXPECT_EQ(description.str() + u"|" + source.str(), u"Subscript out of range|vexFirmWarePlugin");
    EXPECT_TRUE(IsEqualGUID(raised_by, kCatalogueInterface));
    EXPECT_EQ(names(1, &poisoned), error_code(9));
    EXPECT_EQ(names(0, name.put()), S_OK);
    EXPECT_EQ(GetErrorInfo(0, info.put()), S_FALSE) << "a call that works clears an older error";
}

TEST_F(Members, HaveOneTypeDescriptionOrNone) {
    const auto catalogue = make(kCatalogueClass);
    UINT count = 7;
    EXPECT_EQ(catalogue->GetTypeInfoCount(nullptr), E_POINTER);
    EXPECT_EQ(catalogue->GetTypeInfoCount(&count), S_OK);
    EXPECT_LE(count, 1U);
    auto* type = static_cast<ITypeInfo*>(kPoison);
    EXPECT_EQ(catalogue->GetTypeInfo(0, LOCALE_USER_DEFAULT, nullptr), E_POINTER);
    EXPECT_EQ(catalogue->GetTypeInfo(1, LOCALE_USER_DEFAULT, &type), DISP_E_BADINDEX);
    EXPECT_EQ(type, nullptr);
    EXPECT_EQ(SUCCEEDED(catalogue->GetTypeInfo(0, LOCALE_USER_DEFAULT, &type)), count == 1);
    EXPECT_EQ(com::ComPtr<ITypeInfo>::adopt(type).get() != nullptr, count == 1);
}

// ---- Apartments

class Apartments : public testing::Test {
protected:
    void SetUp() override { ASSERT_EQ(plugin_function<decltype(DllRegisterServer)>("DllRegisterServer")(), S_OK); }
    void TearDown() override {
        EXPECT_EQ(plugin_function<decltype(DllUnregisterServer)>("DllUnregisterServer")(), S_OK);
        EXPECT_EQ(can_unload_now(), S_OK);
    }
};

/// For as long as it is asked for; a while otherwise.
std::chrono::milliseconds patience() {
    const char* const seconds = std::getenv("VEX_SECONDS");
    return std::chrono::milliseconds(seconds == nullptr ? 300 : 1000 * std::atoi(seconds));
}

TEST_F(Apartments, AreServedThroughTheSystem) {
    call_from_other_apartments([](const Create& create_there) {
        for (const Member& member : kMembers) check_member(member, create_there(member.clsid), Reached::by_the_system);
        const Outcome outcome =
            call(*create_there(kCatalogueClass), kPluginNames, DISPATCH_PROPERTYGET, {Variant::int16(1)});
        EXPECT_EQ(outcome.code, error_code(9));
        EXPECT_EQ(outcome.description, u"Subscript out of range");
    });
}

TEST_F(Apartments, ManyAtOnceCreateCallAndLetGo) {
    const auto end = std::chrono::steady_clock::now() + patience();
    // It comes and goes as they do.
    library.reset();
    std::vector<std::thread> clients;
    for (int client = 0; client < 8; ++client) {
        clients.emplace_back([end] {
            do {
                EXPECT_TRUE(SUCCEEDED(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED)));
                for (const Member& member : kMembers) {
                    // Without pictures: Wine makes icons by one device context, which one thread at a time can use.
                    if (member.code == S_OK && member.type != VT_DISPATCH)
                        check_member(member, create_registered(member.clsid), Reached::directly);
                }
                CoFreeUnusedLibraries();
                CoUninitialize();
            } while (std::chrono::steady_clock::now() < end);
        });
    }
    for (std::thread& client : clients) client.join();
}

}  // namespace
}  // namespace vex::plugin_test
