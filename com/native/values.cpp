// The COM runtime: automation strings and values, and the conversions between values by the rules of the U.S.
// English locale.
#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstring>
#include <limits>
#include <new>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>

#include "com/variant.h"
#include "core/digits.h"
#include "core/unicode.h"

namespace vex::com {
namespace {

/// What stands before the characters of an automation string; the length in bytes is its last member, so
/// that it lies right before the text as the binary contract wants it.
struct StringHeader {
    std::uint32_t reserved;
    std::uint32_t byte_length;
};

StringHeader* header_of(BSTR text) noexcept { return reinterpret_cast<StringHeader*>(text) - 1; }

// ---- Life and copies of values

/// Whether a value of this type holds its content itself, without a resource to free.
bool is_plain(VARTYPE type) noexcept {
    switch (type) {
        case VT_EMPTY:
        case VT_NULL:
        case VT_I2:
        case VT_I4:
        case VT_R8:
        case VT_BOOL:
        case VT_ERROR: return true;
        default: return (type & VT_BYREF) != 0;
    }
}

bool is_object(VARTYPE type) noexcept { return type == VT_DISPATCH || type == VT_UNKNOWN; }

/// Reads what a by-reference value of one of the simple types points at, without owning it.
HRESULT follow(const VARIANT& reference, VARIANT& value) noexcept {
    if (reference.byref == nullptr) return E_INVALIDARG;
    const auto type = static_cast<VARTYPE>(reference.vt & ~VT_BYREF);
    switch (type) {
        case VT_I2:
        case VT_BOOL: value.iVal = *reference.piVal; break;
        case VT_I4:
        case VT_ERROR: value.lVal = *reference.plVal; break;
        case VT_R8: value.dblVal = *reference.pdblVal; break;
        case VT_BSTR: value.bstrVal = *reference.pbstrVal; break;
        case VT_DISPATCH:
        case VT_UNKNOWN: value.punkVal = *reference.ppunkVal; break;
        default: return DISP_E_BADVARTYPE;
    }
    value.vt = type;
    return S_OK;
}

/// Puts a copy of `from` that owns its content in the place of what `to` held; a reference stays one.
HRESULT assign(VARIANT* to, const VARIANT& from) noexcept {
    VARIANT copy = from;
    if (from.vt == VT_BSTR && from.bstrVal != nullptr) {
        copy.bstrVal = SysAllocStringLen(from.bstrVal, SysStringLen(from.bstrVal));
        if (copy.bstrVal == nullptr) return E_OUTOFMEMORY;
    } else if (is_object(from.vt) && from.punkVal != nullptr) {
        from.punkVal->AddRef();
    } else if (from.vt != VT_BSTR && !is_object(from.vt) && !is_plain(from.vt)) {
        return DISP_E_BADVARTYPE;
    }
    const HRESULT result = VariantClear(to);
    if (SUCCEEDED(result)) {
        *to = copy;
    } else {
        VariantClear(&copy);
    }
    return result;
}

// ---- Conversions

/// Reads a decimal number, with blanks around it, a sign before it and an exponent.
HRESULT parse_number(std::u16string_view text, double& number) {
    constexpr std::u16string_view kBlanks = u" \t\n\v\f\r";
    text.remove_prefix(std::min(text.find_first_not_of(kBlanks), text.size()));
    std::string plain = to_utf8(text.substr(0, text.find_last_not_of(kBlanks) + 1));
    const bool negative = plain.starts_with('-');
    if (negative || plain.starts_with('+')) plain.erase(0, 1);
    // The standard library would take names of numbers and a second sign, too.
    if (plain.find_first_of("0123456789.") != 0) return DISP_E_TYPEMISMATCH;
    // The larger range tells what is too large from what is nearly nothing.
    long double value{};
    const char* const end = plain.data() + plain.size();
    const auto [stop, error] = std::from_chars(plain.data(), end, value);
    if (stop != end || error == std::errc::invalid_argument) return DISP_E_TYPEMISMATCH;
    if (error != std::errc() || std::isinf(static_cast<double>(value))) return DISP_E_OVERFLOW;
    number = static_cast<double>(negative ? -value : value);
    return S_OK;
}

/// The number in a value that is not a reference.
HRESULT read_number(const VARIANT& value, double& number) {
    switch (value.vt) {
        case VT_EMPTY: number = 0; return S_OK;
        case VT_I2:
        case VT_BOOL: number = value.iVal; return S_OK;
        case VT_I4: number = value.lVal; return S_OK;
        case VT_R8: number = value.dblVal; return S_OK;
        case VT_BSTR: return parse_number(view(value.bstrVal), number);
        default: return DISP_E_TYPEMISMATCH;
    }
}

/// Halves go to the even neighbour.
template <class Integer>
HRESULT store_integer(double number, Integer& place) noexcept {
    const double whole = std::nearbyint(number);
    if (!(whole >= std::numeric_limits<Integer>::min() && whole <= std::numeric_limits<Integer>::max())) {
        return DISP_E_OVERFLOW;
    }
    place = static_cast<Integer>(whole);
    return S_OK;
}

HRESULT to_number(const VARIANT& from, VARTYPE type, VARIANT& to) {
    double number{};
    const HRESULT result = read_number(from, number);
    if (FAILED(result)) return result;
    switch (type) {
        case VT_I2: return store_integer(number, to.iVal);
        case VT_I4: return store_integer(number, to.lVal);
        case VT_BOOL: to.boolVal = number != 0 ? VARIANT_TRUE : VARIANT_FALSE; return S_OK;
        default: to.dblVal = number; return std::isinf(number) ? DISP_E_OVERFLOW : S_OK;
    }
}

HRESULT to_boolean(const VARIANT& from, VARIANT& to) {
    const std::u16string_view word = from.vt == VT_BSTR ? view(from.bstrVal) : u"";
    const bool is_true = equal_ignoring_case(word, u"True");
    if (!is_true && !equal_ignoring_case(word, u"False")) return to_number(from, VT_BOOL, to);
    to.boolVal = is_true ? VARIANT_TRUE : VARIANT_FALSE;
    return S_OK;
}

HRESULT to_text(const VARIANT& from, VARIANT& to) {
    std::u16string text;
    switch (from.vt) {
        case VT_EMPTY: break;
        case VT_I2:
        case VT_BOOL: text = decimal_text(from.iVal); break;
        case VT_I4: text = decimal_text(from.lVal); break;
        case VT_R8: {
            // Fifteen significant digits; a zero has no sign.
            char digits[32];
            const auto [end, error] =
                std::to_chars(std::begin(digits), std::end(digits), from.dblVal + 0.0, std::chars_format::general, 15);
            text = to_upper(std::u16string(std::begin(digits), end));
            break;
        }
        default: return DISP_E_TYPEMISMATCH;
    }
    to.bstrVal = allocate_bstr(text);
    return S_OK;
}

/// Converts a value that is not a reference to another type.
HRESULT convert(const VARIANT& from, VARTYPE type, VARIANT& to) {
    HRESULT result = DISP_E_TYPEMISMATCH;
    switch (type) {
        case VT_I2:
        case VT_I4:
        case VT_R8: result = to_number(from, type, to); break;
        case VT_BOOL: result = to_boolean(from, to); break;
        case VT_BSTR: result = to_text(from, to); break;
        case VT_DISPATCH:
            if (from.vt != VT_UNKNOWN) break;
            result = from.punkVal == nullptr
                         ? S_OK
                         : from.punkVal->QueryInterface(IID_IDispatch, reinterpret_cast<void**>(&to.pdispVal));
            break;
        default: return DISP_E_BADVARTYPE;
    }
    if (SUCCEEDED(result)) to.vt = type;
    return result;
}

}  // namespace
}  // namespace vex::com

BSTR SysAllocStringLen(const OLECHAR* text, UINT length) noexcept {
    const std::uint64_t bytes = std::uint64_t{length} * sizeof(OLECHAR);
    const std::uint64_t size = sizeof(vex::com::StringHeader) + bytes + sizeof(OLECHAR);
    if (!std::in_range<std::uint32_t>(size)) return nullptr;
    auto* header = static_cast<vex::com::StringHeader*>(::operator new(size, std::nothrow));
    if (header == nullptr) return nullptr;
    std::memset(static_cast<void*>(header), 0, size);
    header->byte_length = static_cast<std::uint32_t>(bytes);
    BSTR result = reinterpret_cast<BSTR>(header + 1);
    if (text != nullptr) std::memcpy(result, text, bytes);
    return result;
}

BSTR SysAllocString(const OLECHAR* text) noexcept {
    if (text == nullptr) return nullptr;
    const std::size_t length = std::char_traits<OLECHAR>::length(text);
    return std::in_range<UINT>(length) ? SysAllocStringLen(text, static_cast<UINT>(length)) : nullptr;
}

void SysFreeString(BSTR text) noexcept {
    if (text != nullptr) ::operator delete(vex::com::header_of(text));
}

UINT SysStringLen(BSTR text) noexcept {
    return text == nullptr ? 0 : static_cast<UINT>(vex::com::header_of(text)->byte_length / sizeof(OLECHAR));
}

void VariantInit(VARIANTARG* value) noexcept { *value = VARIANT{}; }

HRESULT VariantClear(VARIANTARG* value) noexcept {
    using namespace vex::com;
    if (value == nullptr) return E_INVALIDARG;
    const VARIANT old = *value;
    if (!is_plain(old.vt) && old.vt != VT_BSTR && !is_object(old.vt)) return DISP_E_BADVARTYPE;
    // Empty first: a release may run code that looks at this value again.
    VariantInit(value);
    if (old.vt == VT_BSTR) SysFreeString(old.bstrVal);
    if (is_object(old.vt) && old.punkVal != nullptr) old.punkVal->Release();
    return S_OK;
}

HRESULT VariantCopy(VARIANTARG* to, const VARIANTARG* from) noexcept {
    return to == from ? S_OK : vex::com::assign(to, *from);
}

HRESULT VariantCopyInd(VARIANT* to, const VARIANTARG* from) noexcept {
    constexpr VARTYPE kWholeValue = VT_BYREF | VT_VARIANT;
    const VARIANT* source = from->vt == kWholeValue ? from->pvarVal : from;
    if (source == nullptr || source->vt == kWholeValue) return E_INVALIDARG;
    VARIANT value = *source;
    if ((source->vt & VT_BYREF) != 0) {
        const HRESULT result = vex::com::follow(*source, value);
        if (FAILED(result)) return result;
    }
    return vex::com::assign(to, value);
}

HRESULT VariantChangeType(VARIANTARG* to, const VARIANTARG* from, USHORT flags, VARTYPE type) noexcept {
    if (flags != 0) return E_INVALIDARG;
    try {
        vex::com::Variant source;
        vex::com::Variant converted;
        HRESULT result = VariantCopyInd(&source.get(), from);
        const bool same = source.type() == type;
        if (SUCCEEDED(result) && !same) result = vex::com::convert(source.get(), type, converted.get());
        if (SUCCEEDED(result)) result = VariantClear(to);
        if (SUCCEEDED(result)) *to = (same ? source : converted).detach();
        return result;
    } catch (const std::bad_alloc&) {
        return E_OUTOFMEMORY;
    }
}
