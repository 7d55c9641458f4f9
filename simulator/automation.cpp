// Automation objects by table.
#include "simulator/automation.h"

#include "core/runtime_error.h"
#include "core/unicode.h"

namespace vex::sim {

Arguments::Arguments(const DISPPARAMS& parameters, const ArgumentTypes& types) {
    const auto end = std::find(types.begin(), types.end(), VARTYPE{VT_EMPTY});
    const auto count = static_cast<std::size_t>(end - types.begin());
    if (parameters.cArgs != count) throw RuntimeError(kWrongArgumentCount);
    for (std::size_t i = 0; i < count; ++i) {
        // Last argument first, as automation passes them.
        const VARIANTARG& given = parameters.rgvarg[count - 1 - i];
        VARIANT* const value = values_[i].put();
        if (FAILED(VariantCopyInd(value, &given))) throw RuntimeError(kTypeMismatch);
        if (value->vt == types[i]) continue;
        const HRESULT outcome = VariantChangeType(value, value, 0, types[i]);
        if (FAILED(outcome)) throw RuntimeError(outcome == DISP_E_OVERFLOW ? kOverflow : kTypeMismatch);
    }
}

bool is_name(LPCOLESTR text, std::u16string_view name) {
    return text != nullptr && equal_ignoring_case(reinterpret_cast<const char16_t*>(text), name);
}

void set_error_source(EXCEPINFO* exception) noexcept {
    if (exception == nullptr) return;
    SysFreeString(exception->bstrSource);
    exception->bstrSource = SysAllocString(reinterpret_cast<const OLECHAR*>(u"Brivola"));
}

}  // namespace vex::sim
