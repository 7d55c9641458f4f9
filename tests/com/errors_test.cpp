// Each thread's error information.
#include <gtest/gtest.h>

#include <thread>

#include "com/bstr.h"
#include "com/com_ptr.h"

namespace vex::com {
namespace {

void set_error(std::u16string description) {
    ComPtr<ICreateErrorInfo> info;
    ASSERT_EQ(CreateErrorInfo(info.put()), S_OK);
    EXPECT_EQ(info->SetDescription(reinterpret_cast<LPOLESTR>(description.data())), S_OK);
    EXPECT_EQ(SetErrorInfo(0, info.query<IErrorInfo>().get()), S_OK);
}

std::u16string take_error() {
    ComPtr<IErrorInfo> info;
    if (GetErrorInfo(0, info.put()) != S_OK) return u"none";
    Bstr description;
    EXPECT_EQ(info->GetDescription(description.put()), S_OK);
    return description.str();
}

TEST(ErrorInformation, IsTakenOnceByItsOwnThread) {
    set_error(u"mine");
    std::u16string seen;
    std::thread([&seen] { seen = take_error(); }).join();
    EXPECT_EQ(seen, u"none");
    EXPECT_EQ(take_error(), u"mine");
    EXPECT_EQ(take_error(), u"none");
    set_error(u"old");
    EXPECT_EQ(SetErrorInfo(0, nullptr), S_OK);
    EXPECT_EQ(take_error(), u"none");
}

}  // namespace
}  // namespace vex::com
