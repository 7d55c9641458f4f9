// The COM runtime: life and copies of automation values.
#include "com/com.h"

namespace {

/// Whether a value of this type holds its content itself, without a resource to free.
bool is_plain(VARTYPE type) noexcept {
    switch (type) {
        case VT_EMPTY:
        case VT_NULL:
        case VT_I1:
        case VT_UI1:
        case VT_I2:
        case VT_UI2:
        case VT_I4:
        case VT_UI4:
        case VT_I8:
        case VT_UI8:
        case VT_INT:
        case VT_UINT:
        case VT_R4:
        case VT_R8:
        case VT_CY:
        case VT_DATE:
        case VT_BOOL:
        case VT_ERROR: return true;
        default: return false;
    }
}

bool is_object(VARTYPE type) noexcept { return type == VT_DISPATCH || type == VT_UNKNOWN; }

/// Reads what a by-reference value of one of the simple types points at, without owning it.
HRESULT follow(const VARIANT& reference, VARIANT& value) noexcept {
    if (reference.byref == nullptr) return E_INVALIDARG;
    VariantInit(&value);
    const auto type = static_cast<VARTYPE>(reference.vt & ~VT_BYREF);
    switch (type) {
        case VT_I1:
        case VT_UI1: value.bVal = *reference.pbVal; break;
        case VT_I2:
        case VT_UI2:
        case VT_BOOL: value.iVal = *reference.piVal; break;
        case VT_I4:
        case VT_UI4:
        case VT_INT:
        case VT_UINT:
        case VT_ERROR: value.lVal = *reference.plVal; break;
        case VT_R4: value.fltVal = *reference.pfltVal; break;
        case VT_I8:
        case VT_UI8:
        case VT_CY: value.llVal = *reference.pllVal; break;
        case VT_R8:
        case VT_DATE: value.dblVal = *reference.pdblVal; break;
        case VT_BSTR: value.bstrVal = *reference.pbstrVal; break;
        case VT_DISPATCH:
        case VT_UNKNOWN: value.punkVal = *reference.ppunkVal; break;
        default: return DISP_E_BADVARTYPE;
    }
    value.vt = type;
    return S_OK;
}

/// A copy of `from` that owns its content; `from` is not a reference or is kept as one.
HRESULT duplicate(const VARIANT& from, VARIANT& copy) noexcept {
    copy = from;
    if ((from.vt & VT_BYREF) != 0 || is_plain(from.vt)) return S_OK;
    if (is_object(from.vt)) {
        if (from.punkVal != nullptr) from.punkVal->AddRef();
        return S_OK;
    }
    if (from.vt != VT_BSTR) return DISP_E_BADVARTYPE;
    if (from.bstrVal == nullptr) return S_OK;
    copy.bstrVal = SysAllocStringLen(from.bstrVal, SysStringLen(from.bstrVal));
    return copy.bstrVal == nullptr ? E_OUTOFMEMORY : S_OK;
}

/// Puts `value` in the place of what `to` held.
HRESULT replace(VARIANT* to, const VARIANT& value) noexcept {
    const HRESULT result = VariantClear(to);
    if (SUCCEEDED(result)) *to = value;
    return result;
}

}  // namespace

void VariantInit(VARIANTARG* value) noexcept { *value = VARIANT{}; }

HRESULT VariantClear(VARIANTARG* value) noexcept {
    if (value == nullptr) return E_INVALIDARG;
    const VARIANT old = *value;
    if ((old.vt & VT_BYREF) == 0 && !is_plain(old.vt) && old.vt != VT_BSTR && !is_object(old.vt)) {
        return DISP_E_BADVARTYPE;
    }
    // Empty first: a release may run code that looks at this value again.
    VariantInit(value);
    if (old.vt == VT_BSTR) SysFreeString(old.bstrVal);
    if (is_object(old.vt) && old.punkVal != nullptr) old.punkVal->Release();
    return S_OK;
}

HRESULT VariantCopy(VARIANTARG* to, const VARIANTARG* from) noexcept {
    if (to == nullptr || from == nullptr) return E_INVALIDARG;
    if (to == from) return S_OK;
    VARIANT copy;
    const HRESULT result = duplicate(*from, copy);
    return FAILED(result) ? result : replace(to, copy);
}

HRESULT VariantCopyInd(VARIANT* to, const VARIANTARG* from) noexcept {
    if (to == nullptr || from == nullptr) return E_INVALIDARG;
    const VARIANT* source = from;
    if (source->vt == (VT_BYREF | VT_VARIANT)) {
        source = source->pvarVal;
        if (source == nullptr || source->vt == (VT_BYREF | VT_VARIANT)) return E_INVALIDARG;
    }
    VARIANT value = *source;
    if ((source->vt & VT_BYREF) != 0) {
        const HRESULT result = follow(*source, value);
        if (FAILED(result)) return result;
    }
    VARIANT copy;
    const HRESULT result = duplicate(value, copy);
    return FAILED(result) ? result : replace(to, copy);
}
