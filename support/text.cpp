// Texts: their pieces, and the numbers that they stand for.
#include "support/text.h"

#include <algorithm>
#include <limits>
#include <optional>

#include "core/narrow.h"
#include "core/runtime_error.h"

namespace vex {
namespace {

bool is_blank(char16_t c) { return c == u' ' || c == u'\t'; }
bool is_digit(char16_t c) { return c >= u'0' && c <= u'9'; }

/// A decimal number, exactly: 0.DIGITS times ten to the power of `point`, without zeros at either end.
struct Decimal {
    bool negative = false;
    std::string digits;
    int point = 0;
};

/// Far beyond every range here, and far from where adding to it could overflow.
constexpr int kHugeExponent = 1'000'000;

std::u16string_view without_blanks(std::u16string_view text) {
    while (!text.empty() && is_blank(text.front())) text.remove_prefix(1);
    while (!text.empty() && is_blank(text.back())) text.remove_suffix(1);
    return text;
}

/// Takes a sign off the front. Whether it was a minus.
bool take_minus(std::u16string_view& text) {
    const bool negative = text.starts_with(u'-');
    if (negative || text.starts_with(u'+')) text.remove_prefix(1);
    return negative;
}

/// Takes digits with at most one point off the front. False when there is no digit.
bool take_digits(std::u16string_view& text, Decimal& number) {
    bool any_digit = false;
    bool in_fraction = false;
    for (; !text.empty(); text.remove_prefix(1)) {
        const char16_t c = text.front();
        if (c == u'.' && !in_fraction) {
            in_fraction = true;
            continue;
        }
        if (!is_digit(c)) break;
        any_digit = true;
        const bool leading_zero = c == u'0' && number.digits.empty();
        if (!leading_zero) number.digits += static_cast<char>(c);
        // A digit before the point makes the number larger, a zero right after it makes it smaller.
        if (!in_fraction && !leading_zero) number.point = std::min(number.point + 1, kHugeExponent);
        if (in_fraction && leading_zero) number.point = std::max(number.point - 1, -kHugeExponent);
    }
    return any_digit;
}

/// Takes an exponent off the front, if there is one. False when it has no digits.
bool take_exponent(std::u16string_view& text, Decimal& number) {
    if (!text.starts_with(u'e') && !text.starts_with(u'E')) return true;
    text.remove_prefix(1);
    const bool negative = take_minus(text);
    if (text.empty() || !is_digit(text.front())) return false;
    int exponent = 0;
    for (; !text.empty() && is_digit(text.front()); text.remove_prefix(1)) {
        exponent = std::min(exponent * 10 + (text.front() - u'0'), kHugeExponent);
    }
    number.point += negative ? -exponent : exponent;
    return true;
}

std::optional<Decimal> parse_decimal(std::u16string_view text) {
    text = without_blanks(text);
    Decimal number;
    number.negative = take_minus(text);
    if (!take_digits(text, number) || !take_exponent(text, number) || !text.empty()) return std::nullopt;
    while (number.digits.ends_with('0')) number.digits.pop_back();
    return number;
}

/// The digits before the point, which must be few enough for 64 bits.
std::int64_t whole_part(const Decimal& number) {
    std::int64_t value = 0;
    for (int i = 0; i < number.point; ++i) {
        const auto at = static_cast<std::size_t>(i);
        value = value * 10 + (at < number.digits.size() ? number.digits[at] - '0' : 0);
    }
    return value;
}

std::int32_t rounded_to_int32(const Decimal& number) {
    if (number.digits.empty() || number.point < 0) return 0;
    if (number.point > std::numeric_limits<std::int32_t>::digits10 + 1) throw RuntimeError(kOverflow);
    std::int64_t value = whole_part(number);
    const auto point = static_cast<std::size_t>(number.point);
    const std::string_view digits = number.digits;
    const std::string_view fraction = point < digits.size() ? digits.substr(point) : std::string_view();
    // Zeros at the end are gone, so a fraction beyond "5" is more than a half.
    if (fraction > "5" || (fraction == "5" && value % 2 != 0)) ++value;
    return narrowed<std::int32_t>(number.negative ? -value : value);
}

}  // namespace

std::vector<std::u16string> split(std::u16string_view text, char16_t separator) {
    std::vector<std::u16string> pieces;
    if (text.empty()) return pieces;
    for (std::size_t start = 0;;) {
        const std::size_t end = text.find(separator, start);
        pieces.emplace_back(text.substr(start, end - start));
        if (end == std::u16string_view::npos) return pieces;
        start = end + 1;
    }
}

std::int32_t to_int32(std::u16string_view text) {
    if (const std::optional<Decimal> number = parse_decimal(text)) return rounded_to_int32(*number);
    throw RuntimeError(kTypeMismatch);
}

std::int16_t to_int16(std::u16string_view text) {
    const std::optional<Decimal> number = parse_decimal(text);
    if (!number) throw RuntimeError(kTypeMismatch);
    if (number->digits.empty()) return 0;
    const bool whole = number->point > 0 && static_cast<std::size_t>(number->point) >= number->digits.size();
    if (!whole) throw RuntimeError(kTypeMismatch);
    if (number->point > std::numeric_limits<std::int16_t>::digits10 + 1) throw RuntimeError(kOverflow);
    const std::int64_t value = whole_part(*number);
    return narrowed<std::int16_t>(number->negative ? -value : value);
}

double leading_number(std::u16string_view text) {
    // A whole number over a power of ten, exact for as many digits as a double holds. Digits of a fraction
    // beyond that change nothing; too many digits before the point are too large for any number.
    constexpr double kLargestExactPower = 1e22;
    double digits = 0;
    double power = 1;
    bool in_fraction = false;
    for (const char16_t c : text) {
        if (c == u'.' && !in_fraction) {
            in_fraction = true;
            continue;
        }
        if (!is_digit(c)) break;
        if (in_fraction && power >= kLargestExactPower) continue;
        digits = digits * 10 + (c - u'0');
        if (in_fraction) power *= 10;
    }
    return digits / power;
}

}  // namespace vex
