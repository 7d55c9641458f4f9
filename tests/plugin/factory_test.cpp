// The exports, the class factories, and what keeps the library loaded.
#include "tests/plugin/plugin_fixture.h"

namespace vex::plugin_test {
namespace {

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

}  // namespace
}  // namespace vex::plugin_test
