// Reading and writing a registry as text.
#include "platform/native/registry_text.h"

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <cstring>

#include "core/unicode.h"

namespace vex::platform::native {
namespace {

constexpr std::string_view kUtf8Mark = "\xEF\xBB\xBF";
constexpr std::string_view kUtf16Mark = "\xFF\xFE";

/// A place in a text, and the line that it is on.
class Reader {
public:
    explicit Reader(std::string_view text) : rest_(text) {}

    std::vector<RegistrySection> read() {
        take(kUtf8Mark);
        if (line_rest() != kRegistryHeader.substr(0, kRegistryHeader.size() - 1)) {
            refuse("\"Windows Registry Editor Version 5.00\" is expected, the first line of a registry");
        }
        take_line();
        std::vector<RegistrySection> sections;
        while (!rest_.empty()) {
            skip_blanks();
            if (at_end_of_line()) {
                take_line();
            } else if (take("[")) {
                sections.push_back(take_section());
            } else {
                const bool has_key = !sections.empty() && !sections.back().deleted;
                if (!has_key) refuse("a key is expected before its values");
                sections.back().entries.push_back(take_entry());
            }
        }
        return sections;
    }

private:
    [[noreturn]] void refuse(const char* reason) const { throw RegistryDamage(line_, reason); }

    bool take(std::string_view word) {
        const bool there = rest_.starts_with(word);
        if (there) rest_.remove_prefix(word.size());
        return there;
    }
    void expect(std::string_view word, const char* reason) {
        if (!take(word)) refuse(reason);
    }
    void skip_blanks() { rest_.remove_prefix(std::min(rest_.size(), rest_.find_first_not_of(" \t"))); }

    /// The rest of the line, without the blanks at its end.
    std::string_view line_rest() const {
        const std::string_view line = rest_.substr(0, rest_.find('\n'));
        return line.substr(0, line.find_last_not_of(" \t\r") + 1);
    }
    void take_line() {
        const std::size_t line_break = rest_.find('\n');
        rest_.remove_prefix(line_break == rest_.npos ? rest_.size() : line_break + 1);
        ++line_;
    }
    /// Whether nothing but a comment follows on the line.
    bool at_end_of_line() const {
        return rest_.empty() || rest_.front() == ';' || rest_.front() == '\n' || line_rest().empty();
    }

    std::u16string to_text(std::string_view bytes) const {
        std::u16string text = from_utf8(bytes);
        // The conversion replaces what is malformed; a replacement character that stood there is none.
        if (text.find(u'\xFFFD') != text.npos && to_utf8(text) != bytes) refuse("UTF-8 is expected");
        return text;
    }

    /// A number of up to `most_digits` hexadecimal digits.
    std::uint32_t take_number(std::size_t most_digits) {
        std::uint32_t number = 0;
        const std::string_view digits = rest_.substr(0, most_digits);
        const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number, 16);
        if (error != std::errc()) refuse("a hexadecimal number is expected");
        rest_.remove_prefix(static_cast<std::size_t>(end - digits.data()));
        return number;
    }

    /// A text up to its closing quotation mark, the opening one being passed. It may hold line breaks.
    std::u16string take_quoted() {
        const std::size_t first_line = line_;
        std::string bytes;
        while (!take("\"")) {
            if (rest_.empty()) throw RegistryDamage(first_line, "a closing quotation mark is expected");
            const bool escaped = take("\\");
            if (escaped && !rest_.starts_with('\\') && !rest_.starts_with('"')) {
                refuse("a doubled backslash is expected in a text");
            }
            if (rest_.front() == '\0') refuse("a text without null characters is expected");
            if (rest_.front() == '\n') ++line_;
            bytes += rest_.front();
            rest_.remove_prefix(1);
        }
        return to_text(bytes);
    }

    /// Bytes between commas. A backslash at the end of a line continues them on the next.
    std::vector<std::uint8_t> take_bytes() {
        std::vector<std::uint8_t> bytes;
        for (bool more = false;;) {
            skip_blanks();
            if (take("\\")) {
                if (!line_rest().empty()) refuse("the end of the line is expected behind its backslash");
                take_line();
                if (rest_.empty()) refuse("another line of bytes is expected");
                continue;
            }
            if (!more && at_end_of_line()) return bytes;
            bytes.push_back(static_cast<std::uint8_t>(take_number(2)));
            skip_blanks();
            more = take(",");
            if (!more) return bytes;
        }
    }

    RegistryValue take_value() {
        if (take("\"")) return {kRegSz, data_of(take_quoted() + u'\0')};
        if (take("dword:")) {
            const std::uint32_t number = take_number(8);
            std::vector<std::uint8_t> data(sizeof number);
            std::memcpy(data.data(), &number, sizeof number);
            return {kRegDword, data};
        }
        expect("hex", "a text in quotation marks, dword, hex or - is expected");
        std::uint32_t type = kRegBinary;
        if (take("(")) {
            type = take_number(8);
            expect(")", "a closing parenthesis is expected");
        }
        expect(":", "a colon is expected");
        return {type, take_bytes()};
    }

    RegistrySection::Entry take_entry() {
        RegistrySection::Entry entry;
        if (take("\"")) {
            entry.name = take_quoted();
        } else {
            expect("@", "a key in brackets, or a value's name in quotation marks or @ is expected");
        }
        skip_blanks();
        expect("=", "an equals sign is expected");
        skip_blanks();
        if (!take("-")) entry.value = take_value();
        skip_blanks();
        if (!at_end_of_line()) refuse("the end of the line is expected");
        take_line();
        return entry;
    }

    /// The line whose opening bracket is passed. A key's name may hold brackets, too.
    RegistrySection take_section() {
        RegistrySection section;
        section.line = line_;
        section.deleted = take("-");
        std::string_view line = line_rest();
        if (!line.ends_with(']')) refuse("a closing bracket is expected");
        line.remove_suffix(1);
        section.path = to_text(line);
        take_line();
        return section;
    }

    std::string_view rest_;
    std::size_t line_ = 1;
};

void append_quoted(std::string& text, std::u16string_view content) {
    text += '"';
    for (const char c : to_utf8(content)) {
        if (c == '\\' || c == '"') text += '\\';
        text += c;
    }
    text += '"';
}

void append_hex(std::string& text, std::uint32_t number, int least_digits) {
    char digits[9];
    text.append(digits, static_cast<std::size_t>(std::snprintf(digits, sizeof digits, "%0*x", least_digits, number)));
}

/// Whether a value can stand between quotation marks: it is a text that its only null terminates, and nothing but
/// whole characters.
bool is_plain_text(const RegistryValue& value) {
    if (value.type != kRegSz || value.data.empty() || value.data.size() % 2 != 0) return false;
    const std::u16string text = text_of(value.data);
    return text.find(u'\0') == text.size() - 1 && from_utf8(to_utf8(text)) == text;
}

}  // namespace

bool is_string(std::uint32_t type) noexcept { return type == kRegSz || type == kRegExpandSz || type == kRegMultiSz; }

// Both sides keep the lower byte of a number first, as the registry does.

std::u16string text_of(const std::vector<std::uint8_t>& data) {
    std::u16string text(data.size() / 2, u'\0');
    std::copy_n(data.begin(), text.size() * 2, reinterpret_cast<std::uint8_t*>(text.data()));
    return text;
}

std::vector<std::uint8_t> data_of(std::u16string_view text) {
    const auto* const bytes = reinterpret_cast<const std::uint8_t*>(text.data());
    return {bytes, bytes + text.size() * 2};
}

std::vector<RegistrySection> read_registry(std::string_view bytes) {
    if (!bytes.starts_with(kUtf16Mark)) return Reader(bytes).read();
    return Reader(to_utf8(text_of({bytes.begin() + kUtf16Mark.size(), bytes.end()}))).read();
}

void append_key(std::string& text, std::u16string_view path) { text += "\n[" + to_utf8(path) + "]\n"; }

void append_value(std::string& text, std::u16string_view name, const RegistryValue& value) {
    if (name.empty()) {
        text += '@';
    } else {
        append_quoted(text, name);
    }
    text += '=';
    const auto& [type, data] = value;
    if (is_plain_text(value)) {
        std::u16string characters = text_of(data);
        characters.pop_back();
        append_quoted(text, characters);
    } else if (type == kRegDword && data.size() == 4) {
        text += "dword:";
        for (std::size_t i = 4; i-- > 0;) append_hex(text, data[i], 2);
    } else {
        text += "hex";
        if (type != kRegBinary) {
            text += '(';
            append_hex(text, type, 1);
            text += ')';
        }
        for (std::size_t i = 0; i < data.size(); ++i) {
            text += i == 0 ? ':' : ',';
            append_hex(text, data[i], 2);
        }
        if (data.empty()) text += ':';
    }
    text += '\n';
}

std::u16string_view take_name(std::u16string_view& path) {
    const auto skip_separators = [&path] { path.remove_prefix(std::min(path.size(), path.find_first_not_of(u'\\'))); };
    skip_separators();
    const std::u16string_view name = path.substr(0, path.find(u'\\'));
    path.remove_prefix(name.size());
    skip_separators();
    return name;
}

}  // namespace vex::platform::native
