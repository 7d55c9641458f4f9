// Reading and writing a registry as text.
#include "platform/native/registry_text.h"

#include <algorithm>
#include <charconv>
#include <cstdio>

#include "core/unicode.h"

namespace vex::platform::native {
namespace {

constexpr std::string_view kUtf8Mark = "\xEF\xBB\xBF";
constexpr std::string_view kUtf16Mark = "\xFF\xFE";

bool is_control(char16_t c) { return c < u' '; }

std::string utf8_of_utf16(std::string_view bytes) { return to_utf8(text_of({bytes.begin(), bytes.end()})); }

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
        using namespace std::string_view_literals;
        const std::size_t first_line = line_;
        std::string bytes;
        for (;;) {
            const std::size_t length = rest_.find_first_of("\"\\\n\0"sv);
            if (length == rest_.npos) throw RegistryDamage(first_line, "a closing quotation mark is expected");
            bytes += rest_.substr(0, length);
            const char stop = rest_[length];
            rest_.remove_prefix(length + 1);
            if (stop == '"') return to_text(bytes);
            if (stop == '\0') refuse("a text without null characters is expected");
            if (stop == '\n') ++line_;
            bytes += stop == '\\' ? take_escaped() : stop;
        }
    }
    char take_escaped() {
        for (const auto& [written, meant] : {std::pair("\\", '\\'), {"\"", '"'}, {"n", '\n'}, {"r", '\r'}}) {
            if (take(written)) return meant;
        }
        refuse("a doubled backslash is expected in a text");
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

    void take_data(RegistryValue& value) {
        if (take("\"")) {
            value.type = kRegSz;
            value.data = data_of(take_quoted() + u'\0');
        } else if (take("dword:")) {
            value.type = kRegDword;
            const std::uint32_t number = take_number(8);
            for (int shift = 0; shift < 32; shift += 8)
                value.data.push_back(static_cast<std::uint8_t>(number >> shift));
        } else {
            expect("hex", "a text in quotation marks, dword, hex or - is expected");
            value.type = kRegBinary;
            if (take("(")) {
                value.type = take_number(8);
                expect(")", "a closing parenthesis is expected");
            }
            expect(":", "a colon is expected");
            value.data = take_bytes();
        }
    }

    RegistrySection::Entry take_entry() {
        RegistrySection::Entry entry;
        if (take("\"")) {
            entry.value.name = take_quoted();
        } else {
            expect("@", "a key in brackets, or a value's name in quotation marks or @ is expected");
        }
        skip_blanks();
        expect("=", "an equals sign is expected");
        skip_blanks();
        entry.deleted = take("-");
        if (!entry.deleted) take_data(entry.value);
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
        std::u16string_view below = section.path;
        const std::u16string_view root = take_name(below);
        const auto is_it = [root](const RegistryRoot& each) { return equal_ignoring_case(root, each.name); };
        if (std::none_of(std::begin(kRegistryRoots), std::end(kRegistryRoots), is_it)) {
            refuse("a key below HKEY_LOCAL_MACHINE or another root is expected");
        }
        const bool is_class = equal_ignoring_case(root, u"HKEY_CLASSES_ROOT");
        constexpr std::size_t kClassesDepth = 2;
        if (const char* fault = fault_of_path(below, is_class ? kClassesDepth : 0)) refuse(fault);
        take_line();
        return section;
    }

    std::string_view rest_;
    std::size_t line_ = 1;
};

void append_quoted(std::string& text, std::u16string_view content) {
    text += '"';
    for (const char c : to_utf8(content)) {
        if (c == '\\' || c == '"' || c == '\n' || c == '\r') text += '\\';
        text += c == '\n' ? 'n' : c == '\r' ? 'r' : c;
    }
    text += '"';
}

void append_hex(std::string& text, std::uint32_t number, int least_digits) {
    char digits[9];
    text.append(digits, static_cast<std::size_t>(std::snprintf(digits, sizeof digits, "%0*x", least_digits, number)));
}

/// Whether a value can stand between quotation marks on one line: a text that is terminated by its one null,
/// without control characters, and nothing but whole characters.
bool is_plain_text(const RegistryValue& value, const std::u16string& text) {
    if (value.type != kRegSz || value.data.size() % 2 != 0 || text.empty() || text.back() != u'\0') return false;
    if (std::any_of(text.begin(), text.end() - 1, is_control)) return false;
    const bool surrogates = std::any_of(text.begin(), text.end(), [](char16_t c) { return (c & 0xF800) == 0xD800; });
    return !surrogates || from_utf8(to_utf8(text)) == text;
}

}  // namespace

bool is_string(std::uint32_t type) noexcept { return type == kRegSz || type == kRegExpandSz || type == kRegMultiSz; }

std::u16string text_of(const std::vector<std::uint8_t>& data) {
    std::u16string text(data.size() / 2, u'\0');
    for (std::size_t i = 0; i < text.size(); ++i) text[i] = static_cast<char16_t>(data[2 * i] | data[2 * i + 1] << 8);
    return text;
}

std::vector<std::uint8_t> data_of(std::u16string_view text) {
    std::vector<std::uint8_t> data(text.size() * 2);
    for (std::size_t i = 0; i < text.size(); ++i) {
        data[2 * i] = static_cast<std::uint8_t>(text[i]);
        data[2 * i + 1] = static_cast<std::uint8_t>(text[i] >> 8);
    }
    return data;
}

std::vector<RegistrySection> read_registry(std::string_view bytes) {
    if (!bytes.starts_with(kUtf16Mark)) return Reader(bytes).read();
    return Reader(utf8_of_utf16(bytes.substr(kUtf16Mark.size()))).read();
}

void append_key(std::string& text, std::u16string_view path) { text += "\n[" + to_utf8(path) + "]\n"; }

void append_value(std::string& text, const RegistryValue& value) {
    if (value.name.empty()) {
        text += '@';
    } else {
        append_quoted(text, value.name);
    }
    text += '=';
    std::u16string characters = value.type == kRegSz ? text_of(value.data) : std::u16string();
    if (is_plain_text(value, characters)) {
        characters.pop_back();
        append_quoted(text, characters);
    } else if (value.type == kRegDword && value.data.size() == 4) {
        text += "dword:";
        for (std::size_t i = 4; i-- > 0;) append_hex(text, value.data[i], 2);
    } else {
        text += "hex";
        if (value.type != kRegBinary) {
            text += '(';
            append_hex(text, value.type, 1);
            text += ')';
        }
        text += ':';
        for (std::size_t i = 0; i < value.data.size(); ++i) {
            if (i > 0) text += ',';
            append_hex(text, value.data[i], 2);
        }
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

const char* fault_of_path(std::u16string_view path, std::size_t depth) {
    constexpr std::size_t kLongestName = 255;
    for (auto name = take_name(path); !name.empty(); name = take_name(path)) {
        if (name.size() > kLongestName) return "a key's name of at most 255 characters is expected";
        // It stands on one line of the text, between brackets.
        if (std::any_of(name.begin(), name.end(), is_control))
            return "a key's name without control characters is expected";
        if (++depth > kMaxKeyDepth) return "a key that is at most 512 keys deep is expected";
    }
    return nullptr;
}

}  // namespace vex::platform::native
