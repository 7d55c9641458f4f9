// Owned automation strings, and the way between them and the project's UTF-16 texts.
#pragma once

#include <new>
#include <string>
#include <string_view>
#include <utility>

#include "com/com.h"

namespace vex::com {

/// The characters of an automation string, embedded nulls included; a null pointer is the empty text.
inline std::u16string_view view(BSTR text) noexcept {
    return {reinterpret_cast<const char16_t*>(text), SysStringLen(text)};
}

/// A new automation string that the caller owns. Throws std::bad_alloc.
inline BSTR allocate_bstr(std::u16string_view text) {
    // Where texts may be longer than such strings, a part of one would pass for the whole.
    if (!std::in_range<UINT>(text.size())) throw std::bad_alloc();
    BSTR result = SysAllocStringLen(reinterpret_cast<const OLECHAR*>(text.data()), static_cast<UINT>(text.size()));
    if (result == nullptr) throw std::bad_alloc();
    return result;
}

/// A null-terminated text as the COM functions take it.
inline const OLECHAR* ole_text(const std::u16string& text) noexcept {
    return reinterpret_cast<const OLECHAR*>(text.c_str());
}

/// Owns one automation string, or none.
class Bstr {
public:
    Bstr() noexcept = default;
    explicit Bstr(std::u16string_view text) : text_(allocate_bstr(text)) {}
    Bstr(const Bstr&) = delete;
    Bstr(Bstr&& other) noexcept : text_(std::exchange(other.text_, nullptr)) {}
    Bstr& operator=(const Bstr&) = delete;
    ~Bstr() { SysFreeString(text_); }

    BSTR get() const noexcept { return text_; }
    BSTR detach() noexcept { return std::exchange(text_, nullptr); }
    /// For out-parameters: frees what is held and offers the empty place.
    BSTR* put() noexcept {
        SysFreeString(std::exchange(text_, nullptr));
        return &text_;
    }
    /// For in-and-out parameters: the callee may replace the text.
    BSTR* put_reference() noexcept { return &text_; }
    std::u16string str() const { return std::u16string(view(text_)); }

private:
    BSTR text_ = nullptr;
};

}  // namespace vex::com
