// The COM runtime: conversions between automation values, by the rules of the U.S. English locale.
#include <cfloat>
#include <charconv>
#include <cmath>
#include <limits>
#include <new>
#include <string>
#include <string_view>
#include <system_error>

#include "com/variant.h"
#include "core/unicode.h"

namespace vex::platform::native {
namespace {

// Every number goes by way of this type: it holds all 64-bit integers and currency amounts exactly.
using Number = long double;
static_assert(LDBL_MANT_DIG >= 64);

constexpr Number kCurrencyScale = 10000;

/// Rounds halves to the even neighbour, as automation does.
Number rounded(Number number) noexcept { return std::nearbyint(number); }

bool is_blank(char16_t character) noexcept { return character == u' ' || (character >= u'\t' && character <= u'\r'); }

std::u16string_view trimmed(std::u16string_view text) noexcept {
    while (!text.empty() && is_blank(text.front())) text.remove_prefix(1);
    while (!text.empty() && is_blank(text.back())) text.remove_suffix(1);
    return text;
}

/// The digits of "&H1F" or "&O17" after the ampersand. Up to 32 bits, which keep their sign.
HRESULT parse_based(std::u16string_view text, Number& number) noexcept {
    const char16_t letter = text.empty() ? u'\0' : to_upper(text.front());
    const std::uint64_t base = letter == u'H' ? 16 : 8;
    if ((letter != u'H' && letter != u'O') || text.size() < 2) return DISP_E_TYPEMISMATCH;
    std::uint64_t value = 0;
    for (const char16_t character : text.substr(1)) {
        const char16_t upper = to_upper(character);
        std::uint64_t digit = base;
        if (upper >= u'0' && upper <= u'9') digit = std::uint64_t{upper} - u'0';
        if (upper >= u'A' && upper <= u'F') digit = std::uint64_t{upper} - u'A' + 10;
        if (digit >= base) return DISP_E_TYPEMISMATCH;
        value = value * base + digit;
        if (value > std::numeric_limits<std::uint32_t>::max()) return DISP_E_OVERFLOW;
    }
    number = static_cast<std::int32_t>(value);
    return S_OK;
}

/// Reads a decimal number: blanks around, a sign before or behind, commas between whole digits, an exponent.
class DecimalReader {
public:
    explicit DecimalReader(std::u16string_view text) noexcept : rest_(text) {}

    HRESULT read(Number& number) {
        take_sign();
        bool any = take_digits(true);
        if (take(u'.')) {
            plain_ += '.';
            any = take_digits(false) || any;
        }
        if (!any || !take_exponent() || !rest_.empty()) return DISP_E_TYPEMISMATCH;
        const auto [end, error] = std::from_chars(plain_.data(), plain_.data() + plain_.size(), number);
        return error == std::errc() ? S_OK : DISP_E_OVERFLOW;
    }

private:
    static bool is_sign(char16_t character) noexcept { return character == u'-' || character == u'+'; }
    static bool is_digit(char16_t character) noexcept { return character >= u'0' && character <= u'9'; }

    bool take(char16_t character) noexcept {
        if (rest_.empty() || rest_.front() != character) return false;
        rest_.remove_prefix(1);
        return true;
    }

    void take_sign() {
        char16_t sign = u'+';
        if (!rest_.empty() && is_sign(rest_.front())) {
            sign = rest_.front();
            rest_.remove_prefix(1);
        } else if (!rest_.empty() && is_sign(rest_.back())) {
            sign = rest_.back();
            rest_.remove_suffix(1);
        }
        rest_ = trimmed(rest_);
        if (sign == u'-') plain_ += '-';
    }

    /// Whether there was any digit. Commas between digits are skipped where they are allowed.
    bool take_digits(bool commas) {
        bool any = false;
        while (!rest_.empty() && (is_digit(rest_.front()) || (commas && any && rest_.front() == u','))) {
            if (is_digit(rest_.front())) plain_ += static_cast<char>(rest_.front());
            any = true;
            rest_.remove_prefix(1);
        }
        return any;
    }

    /// False for an exponent without digits; having none is fine.
    bool take_exponent() {
        if (!take(u'e') && !take(u'E')) return true;
        plain_ += 'e';
        if (take(u'-')) {
            plain_ += '-';
        } else {
            take(u'+');
        }
        return take_digits(false);
    }

    std::u16string_view rest_;
    /// What has been read, as the standard library reads numbers.
    std::string plain_;
};

HRESULT parse_number(std::u16string_view text, Number& number) {
    text = trimmed(text);
    if (!text.empty() && text.front() == u'&') return parse_based(text.substr(1), number);
    return DecimalReader(text).read(number);
}

std::u16string integer_text(Number number) {
    char text[32];
    const auto [end, error] = std::to_chars(std::begin(text), std::end(text), number, std::chars_format::fixed, 0);
    return {std::begin(text), end};
}

std::u16string real_text(double number, int significant_digits) {
    char text[64];
    const double value = number == 0 ? 0.0 : number;
    const auto [end, error] =
        std::to_chars(std::begin(text), std::end(text), value, std::chars_format::general, significant_digits);
    return to_upper(std::u16string(std::begin(text), end));
}

/// At most four decimals, without the zeros at their end.
std::u16string currency_text(std::int64_t amount) {
    const std::uint64_t size =
        amount < 0 ? std::uint64_t{0} - static_cast<std::uint64_t>(amount) : static_cast<std::uint64_t>(amount);
    std::string decimals = std::to_string(10000 + size % 10000).substr(1);
    decimals.erase(decimals.find_last_not_of('0') + 1);
    return from_utf8((amount < 0 ? "-" : "") + std::to_string(size / 10000) + (decimals.empty() ? "" : ".") + decimals);
}

/// The number in a value that is not a reference. Dates count as the number of days that they are.
HRESULT read_number(const VARIANT& value, Number& number) {
    switch (value.vt) {
        case VT_EMPTY: number = 0; return S_OK;
        case VT_I1: number = value.cVal; return S_OK;
        case VT_UI1: number = value.bVal; return S_OK;
        case VT_I2: number = value.iVal; return S_OK;
        case VT_UI2: number = value.uiVal; return S_OK;
        case VT_I4:
        case VT_INT: number = value.lVal; return S_OK;
        case VT_UI4:
        case VT_UINT: number = value.ulVal; return S_OK;
        case VT_I8: number = static_cast<Number>(value.llVal); return S_OK;
        case VT_UI8: number = static_cast<Number>(value.ullVal); return S_OK;
        case VT_R4: number = value.fltVal; return S_OK;
        case VT_R8:
        case VT_DATE: number = value.dblVal; return S_OK;
        case VT_CY: number = static_cast<Number>(value.cyVal.int64) / kCurrencyScale; return S_OK;
        case VT_BOOL: number = value.boolVal; return S_OK;
        case VT_BSTR: return parse_number(com::view(value.bstrVal), number);
        default: return DISP_E_TYPEMISMATCH;
    }
}

template <class Integer>
HRESULT store_integer(Number number, Integer& place) noexcept {
    const Number whole = rounded(number);
    if (!(whole >= static_cast<Number>(std::numeric_limits<Integer>::min()) &&
          whole <= static_cast<Number>(std::numeric_limits<Integer>::max()))) {
        return DISP_E_OVERFLOW;
    }
    place = static_cast<Integer>(whole);
    return S_OK;
}

template <class Real>
HRESULT store_real(Number number, Real& place) noexcept {
    if (std::fabs(number) > static_cast<Number>(std::numeric_limits<Real>::max())) return DISP_E_OVERFLOW;
    place = static_cast<Real>(number);
    return S_OK;
}

HRESULT to_number(const VARIANT& from, VARTYPE type, VARIANT& to) {
    Number number = 0;
    const HRESULT result = read_number(from, number);
    if (FAILED(result)) return result;
    // True has all bits set in whatever integer it becomes, the unsigned ones included.
    if (from.vt == VT_BOOL && number != 0) {
        switch (type) {
            case VT_UI1: to.bVal = 0xFF; return S_OK;
            case VT_UI2: to.uiVal = 0xFFFF; return S_OK;
            case VT_UI4:
            case VT_UINT: to.ulVal = 0xFFFFFFFF; return S_OK;
            case VT_UI8: to.ullVal = std::numeric_limits<std::uint64_t>::max(); return S_OK;
            default: break;
        }
    }
    switch (type) {
        case VT_I1: return store_integer(number, to.cVal);
        case VT_UI1: return store_integer(number, to.bVal);
        case VT_I2: return store_integer(number, to.iVal);
        case VT_UI2: return store_integer(number, to.uiVal);
        case VT_I4:
        case VT_INT: return store_integer(number, to.lVal);
        case VT_UI4:
        case VT_UINT: return store_integer(number, to.ulVal);
        case VT_I8: return store_integer(number, to.llVal);
        case VT_UI8: return store_integer(number, to.ullVal);
        case VT_CY: return store_integer(number * kCurrencyScale, to.cyVal.int64);
        case VT_R4: return store_real(number, to.fltVal);
        default: return store_real(number, to.dblVal);
    }
}

HRESULT to_boolean(const VARIANT& from, VARIANT& to) {
    if (from.vt == VT_BSTR) {
        const std::u16string_view text = com::view(from.bstrVal);
        const bool is_true = equal_ignoring_case(text, u"True") || equal_ignoring_case(text, u"#TRUE#");
        if (is_true || equal_ignoring_case(text, u"False") || equal_ignoring_case(text, u"#FALSE#")) {
            to.boolVal = is_true ? VARIANT_TRUE : VARIANT_FALSE;
            return S_OK;
        }
    }
    Number number = 0;
    const HRESULT result = read_number(from, number);
    if (SUCCEEDED(result)) to.boolVal = number != 0 ? VARIANT_TRUE : VARIANT_FALSE;
    return result;
}

HRESULT to_text(const VARIANT& from, USHORT flags, VARIANT& to) {
    std::u16string text;
    switch (from.vt) {
        case VT_EMPTY: break;
        case VT_R4: text = real_text(from.fltVal, 7); break;
        case VT_R8: text = real_text(from.dblVal, 15); break;
        case VT_CY: text = currency_text(from.cyVal.int64); break;
        case VT_BOOL:
            if ((flags & VARIANT_ALPHABOOL) != 0) {
                text = from.boolVal != 0 ? u"True" : u"False";
            } else {
                text = from.boolVal != 0 ? u"-1" : u"0";
            }
            break;
        // Dates as texts follow the user's settings on Windows; nothing here reads or writes them.
        case VT_DATE: return DISP_E_TYPEMISMATCH;
        default: {
            Number number = 0;
            const HRESULT result = read_number(from, number);
            if (FAILED(result)) return result;
            text = integer_text(number);
        }
    }
    to.bstrVal = com::allocate_bstr(text);
    return S_OK;
}

HRESULT to_object(const VARIANT& from, VARTYPE type, VARIANT& to) noexcept {
    if (from.vt != VT_DISPATCH && from.vt != VT_UNKNOWN) return DISP_E_TYPEMISMATCH;
    to.punkVal = nullptr;
    if (from.punkVal == nullptr) return S_OK;
    return from.punkVal->QueryInterface(type == VT_DISPATCH ? IID_IDispatch : IID_IUnknown,
                                        reinterpret_cast<void**>(&to.punkVal));
}

/// The value of an object's default property.
HRESULT default_value(IDispatch* object, com::Variant& value) noexcept {
    if (object == nullptr) return DISP_E_TYPEMISMATCH;
    DISPPARAMS none{};
    const HRESULT result = object->Invoke(DISPID_VALUE, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_PROPERTYGET, &none,
                                          value.put(), nullptr, nullptr);
    const bool is_value = SUCCEEDED(result) && value.type() != VT_DISPATCH && value.type() != VT_UNKNOWN;
    return is_value ? S_OK : DISP_E_TYPEMISMATCH;
}

HRESULT convert(const VARIANT& from, USHORT flags, VARTYPE type, VARIANT& to) {
    const bool to_reference = type == VT_DISPATCH || type == VT_UNKNOWN;
    if (from.vt == VT_DISPATCH && !to_reference) {
        com::Variant value;
        const HRESULT result = default_value(from.pdispVal, value);
        return FAILED(result) ? result : VariantChangeType(&to, &value.get(), flags, type);
    }
    HRESULT result = DISP_E_TYPEMISMATCH;
    switch (type) {
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
        case VT_CY: result = to_number(from, type, to); break;
        case VT_DATE:
            if (from.vt != VT_BSTR) result = to_number(from, type, to);
            break;
        case VT_BOOL: result = to_boolean(from, to); break;
        case VT_BSTR: result = to_text(from, flags, to); break;
        case VT_DISPATCH:
        case VT_UNKNOWN: result = to_object(from, type, to); break;
        case VT_EMPTY:
        case VT_NULL:
        case VT_ERROR: break;
        default: return DISP_E_BADVARTYPE;
    }
    if (SUCCEEDED(result)) to.vt = type;
    return result;
}

}  // namespace
}  // namespace vex::platform::native

HRESULT VariantChangeType(VARIANTARG* to, const VARIANTARG* from, USHORT flags, VARTYPE type) noexcept {
    using namespace vex;
    if (to == nullptr || from == nullptr) return E_INVALIDARG;
    try {
        com::Variant source;
        HRESULT result = VariantCopyInd(&source.get(), from);
        if (FAILED(result)) return result;
        VARIANT converted;
        VariantInit(&converted);
        if (source.type() == type) {
            converted = source.detach();
        } else {
            result = platform::native::convert(source.get(), flags, type, converted);
            if (FAILED(result)) return result;
        }
        result = VariantClear(to);
        if (FAILED(result)) {
            VariantClear(&converted);
            return result;
        }
        *to = converted;
        return S_OK;
    } catch (const std::bad_alloc&) {
        return E_OUTOFMEMORY;
    } catch (...) {
        return E_UNEXPECTED;
    }
}
