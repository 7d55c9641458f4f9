// Lines of words: the writing that scenarios and the simulated host's own files share.
#include "simulator/words.h"

#include <algorithm>
#include <fstream>
#include <iterator>
#include <system_error>

#include "core/unicode.h"

namespace vex::sim {
namespace {

constexpr bool is_blank(char16_t character) noexcept { return character == u' ' || character == u'\t'; }

/// What breaks a line, or a reader's screen.
constexpr bool is_control(char16_t character) noexcept { return character < u' ' && character != u'\t'; }

/// The quoted part of a line that begins behind the opening quote at `next`; leaves `next` behind its end.
void append_quoted(std::u16string_view line, std::size_t& next, std::u16string& word) {
    for (; next < line.size(); ++next) {
        if (line[next] != u'"') {
            word += line[next];
        } else if (next + 1 < line.size() && line[next + 1] == u'"') {
            word += line[next++];
        } else {
            ++next;
            return;
        }
    }
    throw std::invalid_argument("a quote is not closed");
}

/// Cuts the first line off a text; `number` counts it. Raises `TextError` for a byte that is no UTF-8.
std::u16string take_line(const std::string& file, std::size_t number, std::string_view& text) {
    const std::size_t end = std::min(text.find('\n'), text.size());
    std::string_view line = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    if (line.ends_with('\r')) line.remove_suffix(1);
    std::u16string wide = from_utf8(line);
    // What is no UTF-8 has become something else, and does not come back.
    const std::string back = to_utf8(wide);
    if (back == line) return wide;
    const auto bad = std::ranges::mismatch(line, back).in1 - line.begin();
    throw TextError(file, number, "byte " + std::to_string(bad + 1) + " of the line is no UTF-8");
}

}  // namespace

void refuse(std::u16string_view word, const std::string& what) {
    throw std::invalid_argument(to_utf8(in_quotes(word)) + " " + what);
}

Words split_words(std::u16string_view line) {
    // They could not be written back.
    if (std::any_of(line.begin(), line.end(), is_control)) throw std::invalid_argument("a control character");
    Words words;
    for (std::size_t next = 0; next < line.size();) {
        if (is_blank(line[next])) {
            ++next;
            continue;
        }
        if (line[next] == u'#') break;
        std::u16string& word = words.emplace_back();
        while (next < line.size() && !is_blank(line[next])) {
            if (line[next] == u'"') {
                append_quoted(line, ++next, word);
            } else {
                word += line[next++];
            }
        }
    }
    return words;
}

std::u16string in_quotes(std::u16string_view text) {
    std::u16string result = u"\"";
    for (const char16_t character : text) {
        if (character == u'"') result += u'"';
        result += is_control(character) ? u' ' : character;
    }
    return result + u"\"";
}

std::u16string as_word(std::u16string_view text) {
    const bool plain = !text.empty() && text.front() != u'#' &&
                       std::none_of(text.begin(), text.end(), [](char16_t c) { return c <= u' ' || c == u'"'; });
    return plain ? std::u16string(text) : in_quotes(text);
}

std::optional<std::int64_t> parse_number(std::u16string_view word, std::int64_t low, std::int64_t high) {
    const auto number = number_of<std::int64_t>(to_utf8(word));
    return number && *number >= low && *number <= high ? number : std::nullopt;
}

std::optional<std::u16string> value_of(const std::u16string& key, const std::u16string& word) {
    return word.starts_with(key + u'=') ? std::optional(word.substr(key.size() + 1)) : std::nullopt;
}

std::u16string shown_boolean(bool value) { return value ? u"True" : u"False"; }

void read_lines(const std::string& file, std::string_view text, std::u16string_view header,
                const std::function<void(const Words& words, std::size_t line)>& read) {
    constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
    if (text.starts_with(kByteOrderMark)) text.remove_prefix(kByteOrderMark.size());
    std::size_t number = 0;
    if (!header.empty() && take_line(file, ++number, text) != header)
        throw TextError(file, number, "expected the line " + to_utf8(header));
    while (!text.empty()) {
        const std::u16string line = take_line(file, ++number, text);
        try {
            const Words words = split_words(line);
            if (!words.empty()) read(words, number);
        } catch (const TextError&) {
            throw;
        } catch (const std::exception& error) {
            throw TextError(file, number, error.what());
        }
    }
}

std::string read_file(const std::filesystem::path& path) {
    std::error_code error;
    const auto status = std::filesystem::status(path, error);
    if (!std::filesystem::exists(status)) throw TextError(path.string(), 0, "does not exist");
    // A folder opens like a file on some systems and fails only when it is read.
    if (std::filesystem::is_directory(status)) throw TextError(path.string(), 0, "is a folder");
    std::ifstream file(path, std::ios::binary);
    if (!file) throw TextError(path.string(), 0, "cannot be read");
    return read_all(file, path.string());
}

std::string read_all(std::istream& file, const std::string& name) {
    constexpr std::size_t kMost = 64 << 20;
    std::string bytes;
    for (char part[1 << 16]; file.read(part, sizeof part), file.gcount() > 0;) {
        bytes.append(part, static_cast<std::size_t>(file.gcount()));
        if (bytes.size() > kMost) throw TextError(name, 0, "holds more than 64 MB");
    }
    return bytes;
}

}  // namespace vex::sim
