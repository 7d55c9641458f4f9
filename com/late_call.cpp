// Calls on automation objects by dispatch id.
#include "com/late_call.h"

#include <algorithm>
#include <iterator>
#include <new>
#include <utility>
#include <vector>

#include "com/boundary.h"

namespace vex::com {
namespace {

/// Result codes that stand for an automation error number.
constexpr std::pair<HRESULT, ErrorNumber> kNumbers[] = {
    {DISP_E_MEMBERNOTFOUND, kMemberNotSupported}, {DISP_E_UNKNOWNNAME, kMemberNotSupported},
    {DISP_E_TYPEMISMATCH, kTypeMismatch},         {DISP_E_BADVARTYPE, kTypeMismatch},
    {DISP_E_OVERFLOW, kOverflow},                 {DISP_E_BADPARAMCOUNT, kWrongArgumentCount},
    {DISP_E_BADINDEX, kSubscriptOutOfRange},      {E_OUTOFMEMORY, kOutOfMemory},
};

std::int32_t number_of(HRESULT result) noexcept {
    const auto code = static_cast<std::uint32_t>(result);
    if ((code & 0xFFFF0000U) == kErrorNumberFacility) return static_cast<std::int32_t>(code & 0xFFFFU);
    for (const auto& [failure, number] : kNumbers) {
        if (failure == result) return number;
    }
    return result;
}

RuntimeError numbered_error(std::int32_t number, std::u16string description) {
    if (!description.empty()) return {number, std::move(description)};
    return RuntimeError(static_cast<ErrorNumber>(number));
}

/// What an object said of an exception that it raised. The strings are the caller's.
class Exception {
public:
    Exception() noexcept = default;
    Exception(const Exception&) = delete;
    Exception& operator=(const Exception&) = delete;
    ~Exception() {
        for (BSTR text : {info_.bstrSource, info_.bstrDescription, info_.bstrHelpFile}) SysFreeString(text);
    }

    EXCEPINFO* put() noexcept { return &info_; }

    RuntimeError error() {
        if (info_.pfnDeferredFillIn != nullptr) info_.pfnDeferredFillIn(&info_);
        std::u16string description(view(info_.bstrDescription));
        if (info_.wCode != 0) return numbered_error(info_.wCode, std::move(description));
        return error_of(FAILED(info_.scode) ? info_.scode : DISP_E_EXCEPTION, std::move(description));
    }

private:
    EXCEPINFO info_ = {};
};

}  // namespace

RuntimeError error_of(HRESULT result, std::u16string description) {
    return numbered_error(number_of(result), std::move(description));
}

bool succeeded(HRESULT result) {
    if (result == E_OUTOFMEMORY) throw std::bad_alloc();
    return SUCCEEDED(result);
}

Variant invoke(IDispatch& object, DISPID member, WORD flags, std::initializer_list<Variant> arguments) {
    // Last argument first, as automation passes them. The values stay the initializer list's.
    std::vector<VARIANT> values(arguments.size());
    std::transform(std::rbegin(arguments), std::rend(arguments), values.begin(),
                   [](const Variant& argument) { return argument.get(); });
    DISPID put = DISPID_PROPERTYPUT;
    DISPPARAMS parameters = {values.data(), nullptr, static_cast<UINT>(values.size()), 0};
    const bool puts = flags == DISPATCH_PROPERTYPUT;
    if (puts) {
        parameters.rgdispidNamedArgs = &put;
        parameters.cNamedArgs = 1;
    }
    Variant result;
    Exception exception;
    UINT argument_error{};
    const HRESULT outcome = object.Invoke(member, IID_NULL, LOCALE_USER_DEFAULT, flags, &parameters,
                                          puts ? nullptr : result.put(), exception.put(), &argument_error);
    if (outcome == DISP_E_EXCEPTION) throw exception.error();
    if (FAILED(outcome)) throw error_of(outcome);
    return result;
}

}  // namespace vex::com
