// Lines of words: the writing that scenarios and the simulated host's own files share; files as a whole, and a folder
// for one run alone.
#pragma once

#include <charconv>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <iosfwd>
#include <optional>
#include <random>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "platform/private_files.h"

namespace vex::sim {

using Words = std::vector<std::u16string>;

/// A fault at one line of a text, or of a whole file (line 0). what() is "FILE:LINE: message".
class TextError : public std::runtime_error {
public:
    TextError(const std::string& file, std::size_t line, const std::string& message)
        : runtime_error(file + ":" + (line == 0 ? "" : std::to_string(line) + ":") + " " + message) {}
};

/// Raises `std::invalid_argument`: the word, in quotes, "is" or "has" what is said.
[[noreturn]] void refuse(std::u16string_view word, const std::string& what);

/// The words of a line: separated by blanks, "#" at the start of a word begins a comment. A part in double
/// quotes may hold blanks and takes backslashes as they are; a doubled quote in it stands for one quote.
/// Raises `std::invalid_argument` for a quote that is never closed, and for control characters but the tab.
Words split_words(std::u16string_view line);

/// `text` in quotes, inner quotes doubled; what would break a line becomes a blank.
std::u16string in_quotes(std::u16string_view text);
/// `text` as a word that `split_words` reads back: in quotes only where it must be.
std::u16string as_word(std::u16string_view text);

/// The decimal number that fills the whole word.
template <class Number>
std::optional<Number> number_of(std::string_view word) {
    Number number{};
    const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), number);
    return error == std::errc() && end == word.data() + word.size() ? std::optional(number) : std::nullopt;
}

/// A whole number that fills the whole word and lies in the range.
std::optional<std::int64_t> parse_number(std::u16string_view word, std::int64_t low, std::int64_t high);

/// The value of "KEY=VALUE" where the word has that key.
std::optional<std::u16string> value_of(const std::u16string& key, const std::u16string& word);

/// "True" or "False".
std::u16string shown_boolean(bool value);

/// Hands the words of each line of a UTF-8 text that has some to `read`, with the line's number; what it raises, a
/// `TextError` apart, becomes a `TextError`. Lines end with "\n" or "\r\n"; a byte order mark does not count. `file`:
/// how messages name the text. `header`: what the first line must be; empty: it is like the others.
void read_lines(const std::string& file, std::string_view text, std::u16string_view header,
                const std::function<void(const Words& words, std::size_t line)>& read);

/// A whole file, of 64 MB at most: some have no end. Raises `TextError` without a line.
std::string read_file(const std::filesystem::path& path);
/// The same for one that is open, under the name that is told of it.
std::string read_all(std::istream& file, const std::string& name);

/// A new folder, for its owner alone, among the system's temporary files; removed in the end.
class PrivateFolder {
public:
    /// Raises `std::system_error`.
    PrivateFolder() {
        std::random_device random;
        do {
            path_ = std::filesystem::temp_directory_path() / ("brivola-sim-" + std::to_string(random()));
        } while (!platform::make_private_folder(path_));
    }
    PrivateFolder(const PrivateFolder&) = delete;
    PrivateFolder& operator=(const PrivateFolder&) = delete;
    ~PrivateFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }

    const std::filesystem::path& path() const noexcept { return path_; }

private:
    std::filesystem::path path_;
};

}  // namespace vex::sim
