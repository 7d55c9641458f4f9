// Class objects and creation.
#include <gtest/gtest.h>

#include "com/bstr.h"
#include "com/class_factory.h"
#include "tests/com/counted_object.h"

namespace vex::com {
namespace {

constexpr CLSID kTestClass = {0x5B8D3A10, 0x2B1E, 0x4E0B, {0x9A, 0x1D, 0x0C, 0x1B, 0x7E, 0x52, 0x44, 0x01}};

class ClassObjects : public testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(SUCCEEDED(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED))); }
    void TearDown() override {
        CoUninitialize();
        EXPECT_TRUE(test_module().can_unload()) << "something was not released";
    }

    static HRESULT create(ComPtr<IDispatch>& object) {
        return CoCreateInstance(kTestClass, nullptr, CLSCTX_INPROC_SERVER, IID_IDispatch, object.put_void());
    }
};

TEST_F(ClassObjects, ServeUntilTheyAreRevoked) {
    ComPtr<IDispatch> object;
    EXPECT_EQ(create(object), REGDB_E_CLASSNOTREG);
    EXPECT_FALSE(object);
    const DWORD cookie = offer_class(test_module(), kTestClass, [] { return make_object<CountedObject>(); });
    EXPECT_EQ(create(object), S_OK);
    object.reset();
    EXPECT_EQ(CoRevokeClassObject(cookie), S_OK);
    EXPECT_EQ(create(object), REGDB_E_CLASSNOTREG);
    EXPECT_TRUE(FAILED(CoRevokeClassObject(cookie)));
    CLSID clsid{};
    EXPECT_EQ(CLSIDFromProgID(ole_text(u"Nobody.Registers.This"), &clsid), CO_E_CLASSSTRING);
}

TEST(Apartment, MustBeEnteredBeforeObjectsAreMade) {
    ComPtr<IDispatch> object;
    EXPECT_EQ(CoCreateInstance(kTestClass, nullptr, CLSCTX_INPROC_SERVER, IID_IDispatch, object.put_void()),
              CO_E_NOTINITIALIZED);
    EXPECT_EQ(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED), S_OK);
    EXPECT_EQ(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED), S_FALSE);
    CoUninitialize();
    CoUninitialize();
}

}  // namespace
}  // namespace vex::com
