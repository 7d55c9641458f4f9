// Text on the character grid: code points, their widths in cells, cutting and wrapping.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vex::platform::native::terminal {

/// Unpaired surrogates become U+FFFD.
std::u32string to_utf32(std::u16string_view text);
std::u16string to_utf16(std::u32string_view text);
std::string to_utf8(std::u32string_view text);

/// The cells that a character takes: 0 (combining), 1 or 2. Control characters take one, as the U+FFFD
/// that is drawn for them.
int character_width(char32_t character) noexcept;
int text_width(std::u32string_view text) noexcept;

/// The longest beginning of `text` that fits into `width` cells.
std::u32string_view beginning(std::u32string_view text, int width) noexcept;
/// `text` where it fits into `width` cells; otherwise an ellipsis stands for what is left out of it.
enum class Cut { end, middle, start };
std::u32string shorten(std::u32string_view text, int width, Cut cut = Cut::end);
/// The first character that is seen in `width` cells where the cursor stands before character `at`, in a cell
/// of its own after the text.
std::size_t first_seen(std::u32string_view text, std::size_t at, int width) noexcept;
/// Lines of at most `width` cells, broken at blanks and line ends, in words only where one is too long.
/// At least one line.
std::vector<std::u32string> wrap(std::u32string_view text, int width);

/// The caption of a control with a mnemonic: "&" marks it, "&&" stands for "&".
struct Caption {
    std::u32string text;
    /// Position of the mnemonic in `text`.
    std::optional<std::size_t> mnemonic;
};
Caption parse_caption(std::u16string_view caption);

}  // namespace vex::platform::native::terminal
