// The COM runtime: automation strings, task memory, identities as text.
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <string>
#include <utility>

#include "com/com.h"

namespace {

/// What stands before the characters of an automation string; the length in bytes is its last member, so
/// that it lies right before the text as the binary contract wants it.
struct StringHeader {
    std::uint32_t reserved;
    std::uint32_t byte_length;
};

StringHeader* header_of(BSTR text) noexcept { return reinterpret_cast<StringHeader*>(text) - 1; }

/// The value of a hexadecimal digit, or -1.
int digit_value(OLECHAR character) noexcept {
    if (character >= u'0' && character <= u'9') return character - u'0';
    if (character >= u'a' && character <= u'f') return character - u'a' + 10;
    if (character >= u'A' && character <= u'F') return character - u'A' + 10;
    return -1;
}

/// Reads `digits` hexadecimal digits at `text` and moves behind them.
template <class Number>
bool read_hex(const OLECHAR*& text, int digits, Number& number) noexcept {
    std::uint32_t value = 0;
    for (int i = 0; i < digits; ++i) {
        const int digit = digit_value(*text);
        if (digit < 0) return false;
        value = value << 4 | static_cast<std::uint32_t>(digit);
        ++text;
    }
    number = static_cast<Number>(value);
    return true;
}

bool read_character(const OLECHAR*& text, OLECHAR character) noexcept {
    if (*text != character) return false;
    ++text;
    return true;
}

}  // namespace

BSTR SysAllocStringLen(const OLECHAR* text, UINT length) noexcept {
    constexpr std::size_t kOverhead = sizeof(StringHeader) + sizeof(OLECHAR);
    if (length > (std::numeric_limits<std::uint32_t>::max() - kOverhead) / sizeof(OLECHAR)) return nullptr;
    const std::size_t bytes = length * sizeof(OLECHAR);
    auto* header = static_cast<StringHeader*>(std::malloc(kOverhead + bytes));
    if (header == nullptr) return nullptr;
    header->reserved = 0;
    header->byte_length = static_cast<std::uint32_t>(bytes);
    BSTR result = reinterpret_cast<BSTR>(header + 1);
    if (text != nullptr) {
        std::memcpy(result, text, bytes);
    } else {
        std::memset(result, 0, bytes);
    }
    result[length] = 0;
    return result;
}

BSTR SysAllocString(const OLECHAR* text) noexcept {
    if (text == nullptr) return nullptr;
    const std::size_t length = std::char_traits<OLECHAR>::length(text);
    return std::in_range<UINT>(length) ? SysAllocStringLen(text, static_cast<UINT>(length)) : nullptr;
}

void SysFreeString(BSTR text) noexcept {
    if (text != nullptr) std::free(header_of(text));
}

UINT SysStringLen(BSTR text) noexcept {
    return text == nullptr ? 0 : static_cast<UINT>(header_of(text)->byte_length / sizeof(OLECHAR));
}

void* CoTaskMemAlloc(std::size_t size) noexcept { return std::malloc(size); }

void CoTaskMemFree(void* memory) noexcept { std::free(memory); }

HRESULT CLSIDFromString(LPCOLESTR text, CLSID* clsid) noexcept {
    if (clsid == nullptr) return E_INVALIDARG;
    *clsid = GUID_NULL;
    if (text == nullptr) return S_OK;
    GUID guid;
    bool valid = read_character(text, u'{') && read_hex(text, 8, guid.Data1) && read_character(text, u'-') &&
                 read_hex(text, 4, guid.Data2) && read_character(text, u'-') && read_hex(text, 4, guid.Data3) &&
                 read_character(text, u'-');
    for (int i = 0; valid && i < 8; ++i) {
        valid = (i != 2 || read_character(text, u'-')) && read_hex(text, 2, guid.Data4[i]);
    }
    if (!valid || !read_character(text, u'}') || *text != 0) return CO_E_CLASSSTRING;
    *clsid = guid;
    return S_OK;
}

int StringFromGUID2(REFGUID guid, LPOLESTR text, int capacity) noexcept {
    constexpr int kLength = 38;
    if (text == nullptr || capacity < kLength + 1) return 0;
    char narrow[kLength + 1];
    std::snprintf(narrow, sizeof narrow, "{%08X-%04X-%04X-%02X%02X-%02X%02X%02X%02X%02X%02X}", guid.Data1, guid.Data2,
                  guid.Data3, guid.Data4[0], guid.Data4[1], guid.Data4[2], guid.Data4[3], guid.Data4[4], guid.Data4[5],
                  guid.Data4[6], guid.Data4[7]);
    for (int i = 0; i <= kLength; ++i) text[i] = static_cast<OLECHAR>(narrow[i]);
    return kLength + 1;
}
