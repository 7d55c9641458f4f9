// Calls on automation objects by name.
#include "simulator/late_call.h"

#include <iterator>

#include "core/runtime_error.h"

namespace vex::sim {
namespace {

/// Error numbers travel in result codes of this facility.
constexpr std::uint32_t kNumberFacility = 0x800AU;

std::int32_t number_of(HRESULT result) noexcept {
    const auto code = static_cast<std::uint32_t>(result);
    return code >> 16U == kNumberFacility ? static_cast<std::int32_t>(code & 0xFFFFU)
                                          : static_cast<std::int32_t>(result);
}

/// The exception that an object filled in; its strings are ours.
RuntimeError to_error(EXCEPINFO& exception) {
    if (exception.pfnDeferredFillIn != nullptr) exception.pfnDeferredFillIn(&exception);
    com::Bstr source, description, help_file;
    *source.put() = exception.bstrSource;
    *description.put() = exception.bstrDescription;
    *help_file.put() = exception.bstrHelpFile;
    return {exception.wCode != 0 ? exception.wCode : number_of(exception.scode), description.str()};
}

}  // namespace

com::ComPtr<IDispatch> create_object(const std::u16string& programmatic_id) {
    CLSID clsid = GUID_NULL;
    HRESULT result = CLSIDFromProgID(com::ole_text(programmatic_id), &clsid);
    com::ComPtr<IDispatch> object;
    if (SUCCEEDED(result))
        result = CoCreateInstance(clsid, nullptr, CLSCTX_INPROC_SERVER, IID_IDispatch, object.put_void());
    if (FAILED(result)) throw RuntimeError(kCannotCreateObject, programmatic_id + u" cannot be created");
    return object;
}

com::Variant call_late(IDispatch& object, const std::u16string& name, const std::vector<com::Variant>& arguments,
                       WORD flags) {
    DISPID member = DISPID_UNKNOWN;
    auto* text = const_cast<OLECHAR*>(com::ole_text(name));
    if (FAILED(object.GetIDsOfNames(IID_NULL, &text, 1, LOCALE_USER_DEFAULT, &member))) {
        throw RuntimeError(kMemberNotSupported, name + u" is not offered");
    }
    // Last argument first. The values stay the caller's.
    std::vector<VARIANT> values;
    for (auto argument = std::rbegin(arguments); argument != std::rend(arguments); ++argument) {
        values.push_back(argument->get());
    }
    DISPID put = DISPID_PROPERTYPUT;
    const bool puts = flags == DISPATCH_PROPERTYPUT;
    DISPPARAMS parameters = {values.data(), puts ? &put : nullptr, static_cast<UINT>(values.size()), puts ? 1U : 0U};
    com::Variant result;
    EXCEPINFO exception = {};
    const HRESULT outcome = object.Invoke(member, IID_NULL, LOCALE_USER_DEFAULT, flags, &parameters, result.put(),
                                          &exception, nullptr);
    if (outcome == DISP_E_EXCEPTION) throw to_error(exception);
    if (FAILED(outcome)) throw RuntimeError(number_of(outcome), name + u" failed");
    return result;
}

}  // namespace vex::sim
