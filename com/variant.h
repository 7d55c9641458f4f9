// An owned automation value.
#pragma once

#include <cstdint>
#include <string_view>
#include <utility>

#include "com/bstr.h"
#include "com/com_ptr.h"

namespace vex::com {

/// Owns one VARIANT and what it refers to. The factories copy or add a reference.
class Variant {
public:
    Variant() noexcept { VariantInit(&value_); }
    Variant(const Variant& other) : Variant() {
        if (FAILED(VariantCopy(&value_, &other.value_))) throw std::bad_alloc();
    }
    Variant(Variant&& other) noexcept : value_(other.value_) { VariantInit(&other.value_); }
    Variant& operator=(Variant other) noexcept {
        std::swap(value_, other.value_);
        return *this;
    }
    ~Variant() { VariantClear(&value_); }

    static Variant text(std::u16string_view text) {
        Variant result;
        result.value_.bstrVal = allocate_bstr(text);
        result.value_.vt = VT_BSTR;
        return result;
    }
    static Variant int16(std::int16_t number) noexcept {
        Variant result;
        result.value_.vt = VT_I2;
        result.value_.iVal = number;
        return result;
    }
    static Variant int32(std::int32_t number) noexcept {
        Variant result;
        result.value_.vt = VT_I4;
        result.value_.lVal = number;
        return result;
    }
    static Variant real(double number) noexcept {
        Variant result;
        result.value_.vt = VT_R8;
        result.value_.dblVal = number;
        return result;
    }
    static Variant boolean(bool truth) noexcept {
        Variant result;
        result.value_.vt = VT_BOOL;
        result.value_.boolVal = truth ? VARIANT_TRUE : VARIANT_FALSE;
        return result;
    }
    static Variant object(IDispatch* dispatch) noexcept {
        Variant result;
        result.value_.vt = VT_DISPATCH;
        result.value_.pdispVal = dispatch;
        if (dispatch != nullptr) dispatch->AddRef();
        return result;
    }
    /// Refers to a string that stays the caller's and must outlive the value; the callee may replace it.
    static Variant text_reference(BSTR* text) noexcept {
        Variant result;
        result.value_.vt = VT_BYREF | VT_BSTR;
        result.value_.pbstrVal = text;
        return result;
    }
    /// Refers to an object reference that stays the caller's and must outlive the value.
    static Variant object_reference(IDispatch** dispatch) noexcept {
        Variant result;
        result.value_.vt = VT_BYREF | VT_DISPATCH;
        result.value_.ppdispVal = dispatch;
        return result;
    }

    VARTYPE type() const noexcept { return value_.vt; }
    const VARIANT& get() const noexcept { return value_; }
    VARIANT& get() noexcept { return value_; }
    /// For out-parameters: clears what is held and offers the empty place.
    VARIANT* put() noexcept {
        VariantClear(&value_);
        return &value_;
    }
    VARIANT detach() noexcept {
        VARIANT result = value_;
        VariantInit(&value_);
        return result;
    }

private:
    VARIANT value_;
};

}  // namespace vex::com
