// UTF-8 to UTF-16 and back, the same on every platform.
#include "core/unicode.h"

#include <algorithm>
#include <cstdint>

namespace vex {
namespace {

constexpr char32_t kReplacement = 0xFFFD;

void append_utf16(std::u16string& text, char32_t code) {
    if (code < 0x10000) {
        text += static_cast<char16_t>(code);
    } else {
        code -= 0x10000;
        text += static_cast<char16_t>(0xD800 + (code >> 10));
        text += static_cast<char16_t>(0xDC00 + (code & 0x3FF));
    }
}

void append_utf8(std::string& bytes, char32_t code) {
    const auto put = [&bytes](char32_t value) { bytes += static_cast<char>(static_cast<unsigned char>(value)); };
    if (code < 0x80) {
        put(code);
    } else if (code < 0x800) {
        put(0xC0 | (code >> 6));
        put(0x80 | (code & 0x3F));
    } else if (code < 0x10000) {
        put(0xE0 | (code >> 12));
        put(0x80 | ((code >> 6) & 0x3F));
        put(0x80 | (code & 0x3F));
    } else {
        put(0xF0 | (code >> 18));
        put(0x80 | ((code >> 12) & 0x3F));
        put(0x80 | ((code >> 6) & 0x3F));
        put(0x80 | (code & 0x3F));
    }
}

/// How many continuation bytes follow `lead`, or -1 when it starts no sequence.
int continuation_count(unsigned char lead) {
    if (lead < 0x80) return 0;
    if (lead >= 0xC2 && lead < 0xE0) return 1;
    if (lead >= 0xE0 && lead < 0xF0) return 2;
    if (lead >= 0xF0 && lead < 0xF5) return 3;
    return -1;
}

bool is_surrogate(char32_t code) { return code >= 0xD800 && code < 0xE000; }

}  // namespace

std::u16string from_utf8(std::string_view bytes) {
    std::u16string text;
    text.reserve(bytes.size());
    for (std::size_t i = 0; i < bytes.size();) {
        const auto lead = static_cast<unsigned char>(bytes[i]);
        if (lead < 0x80) {
            text += static_cast<char16_t>(lead);
            ++i;
            continue;
        }
        const int more = continuation_count(lead);
        static constexpr char32_t kSmallest[] = {0, 0x80, 0x800, 0x10000};
        char32_t code = more <= 0 ? lead : static_cast<char32_t>(lead & (0x3F >> more));
        bool valid = more >= 0 && i + static_cast<std::size_t>(more) < bytes.size();
        for (int k = 1; valid && k <= more; ++k) {
            const auto next = static_cast<unsigned char>(bytes[i + static_cast<std::size_t>(k)]);
            valid = (next & 0xC0) == 0x80;
            code = (code << 6) | (next & 0x3F);
        }
        valid = valid && code >= kSmallest[more] && code <= 0x10FFFF && !is_surrogate(code);
        append_utf16(text, valid ? code : kReplacement);
        i += valid ? static_cast<std::size_t>(more) + 1 : 1;
    }
    return text;
}

std::string to_utf8(std::u16string_view text) {
    std::string bytes;
    bytes.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        char32_t code = text[i];
        if (code >= 0xD800 && code < 0xDC00 && i + 1 < text.size() && text[i + 1] >= 0xDC00 && text[i + 1] < 0xE000) {
            code = 0x10000 + ((code - 0xD800) << 10) + (static_cast<char32_t>(text[++i]) - 0xDC00);
        }
        append_utf8(bytes, is_surrogate(code) ? kReplacement : code);
    }
    return bytes;
}

char16_t to_upper(char16_t character) noexcept {
    if (character >= u'a' && character <= u'z') return static_cast<char16_t>(character - 0x20);
    if (character >= 0xE0 && character <= 0xFE && character != 0xF7) return static_cast<char16_t>(character - 0x20);
    switch (character) {
        case 0xFF: return 0x178;    // y with diaeresis
        case 0x153: return 0x152;   // oe ligature
        case 0x161: return 0x160;   // s with caron
        case 0x17E: return 0x17D;   // z with caron
        default: return character;
    }
}

std::u16string to_upper(std::u16string_view text) {
    std::u16string result(text);
    std::transform(result.begin(), result.end(), result.begin(), [](char16_t c) { return to_upper(c); });
    return result;
}

bool equal_ignoring_case(std::u16string_view left, std::u16string_view right) noexcept {
    return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                      [](char16_t a, char16_t b) { return to_upper(a) == to_upper(b); });
}

}  // namespace vex
