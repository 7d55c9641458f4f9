// How our errors look from outside, and what carries them.
#include "com/boundary.h"

#include <gtest/gtest.h>

#include <new>
#include <thread>

#include "com/bstr.h"
#include "com/com_ptr.h"

namespace vex {
namespace {

/// The texts of an exception, which are the caller's.
struct Texts {
    explicit Texts(const EXCEPINFO& exception) {
        *description.put() = exception.bstrDescription;
        *source.put() = exception.bstrSource;
        SysFreeString(exception.bstrHelpFile);
    }
    com::Bstr description, source;
};

HRESULT code_of(std::int32_t number) { return result_code(RuntimeError(number, u"")); }

TEST(Boundary, NumbersBecomeResultCodes) {
    EXPECT_EQ(code_of(1), static_cast<HRESULT>(0x800A0001U));
    EXPECT_EQ(code_of(65535), static_cast<HRESULT>(0x800AFFFFU));
    EXPECT_EQ(code_of(E_ACCESSDENIED), E_ACCESSDENIED) << "a result code of someone else's stays";
    EXPECT_EQ(code_of(0), E_UNEXPECTED) << "an error must not look like success";
    EXPECT_EQ(code_of(65536), E_UNEXPECTED);
}

TEST(Boundary, WhateverIsThrownBecomesAFailure) {
    EXPECT_EQ(guarded_method(IID_IUnknown, []() -> HRESULT { throw std::bad_alloc(); }), E_OUTOFMEMORY);
    EXPECT_EQ(guarded_method(IID_IUnknown, []() -> HRESULT { throw 1; }), E_UNEXPECTED);
    EXPECT_EQ(guarded_method(IID_IUnknown, [] {}), S_OK);
    EXPECT_EQ(guarded_method(IID_IUnknown, [] { return E_POINTER; }), E_POINTER);
}

/// The thread's error information, which is gone then.
std::u16string take_error() {
    com::ComPtr<IErrorInfo> info;
    if (GetErrorInfo(0, info.put()) != S_OK) return u"none";
    com::Bstr description;
    EXPECT_EQ(info->GetHelpFile(description.put()), S_OK);
    EXPECT_EQ(info->GetDescription(description.put()), S_OK);
    return description.str();
}

TEST(Boundary, InvokeDescribesErrorsInItsOwnForm) {
    EXCEPINFO exception{};
    const auto raise = [] { throw RuntimeError(kTypeMismatch); };
    EXPECT_EQ(guarded_invoke(&exception, raise), DISP_E_EXCEPTION);
    const Texts texts(exception);
    EXPECT_EQ(exception.scode, static_cast<HRESULT>(0x800A000DU));
    EXPECT_EQ(texts.description.str(), u"Type mismatch");
    EXPECT_EQ(texts.source.str(), u"vexFirmWarePlugin");
    EXPECT_EQ(guarded_invoke(nullptr, raise), DISP_E_EXCEPTION);
}

TEST(Boundary, ErrorInformationBecomesAnException) {
    const HRESULT failure = guarded_method(IID_IUnknown, [] { throw RuntimeError(1234, u"what went wrong"); });
    EXCEPINFO exception{};
    EXPECT_EQ(exception_from_error_info(failure, &exception), DISP_E_EXCEPTION);
    const Texts texts(exception);
    EXPECT_EQ(exception.scode, failure);
    EXPECT_EQ(texts.description.str(), u"what went wrong");
    EXCEPINFO bare{};
    EXPECT_EQ(exception_from_error_info(E_FAIL, &bare), DISP_E_EXCEPTION) << "without any information";
    EXPECT_EQ(bare.scode, E_FAIL);
    EXPECT_EQ(bare.bstrDescription, nullptr);
}

TEST(ErrorInformation, IsTakenOnceByItsOwnThreadAndClearedByALaterAnswer) {
    guarded_method(IID_IClassFactory, [] { throw RuntimeError(1, u"mine"); });
    std::u16string seen;
    std::thread([&seen] { seen = take_error(); }).join();
    EXPECT_EQ(seen, u"none");
    EXPECT_EQ(take_error(), u"mine");
    EXPECT_EQ(take_error(), u"none");
    guarded_method(IID_IUnknown, [] { throw RuntimeError(kTypeMismatch); });
    guarded_method(IID_IUnknown, [] { return E_POINTER; });
    EXPECT_EQ(take_error(), u"none");
}

}  // namespace
}  // namespace vex
