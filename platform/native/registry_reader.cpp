// Reading a registry from its text.
#include <algorithm>
#include <optional>
#include <utility>

#include "core/unicode.h"
#include "platform/native/registry_text.h"
#include "platform/native/registry_tree.h"
#include "platform/registry.h"

namespace vex::platform::native {
namespace {

constexpr std::string_view kUtf8Mark = "\xEF\xBB\xBF";
constexpr std::string_view kUtf16Mark = "\xFF\xFE";

int hex_digit(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    return -1;
}

/// A place in the text, and the line that it is on.
class Cursor {
public:
    Cursor(std::string_view text, std::size_t& line) : rest_(text), line_(line) {}

    bool at_end() const { return rest_.empty(); }
    /// The next character; a line break at the end of the text.
    char peek() const { return rest_.empty() ? '\n' : rest_.front(); }
    [[noreturn]] void refuse(const std::string& reason) const { throw RegistryDamage(line_, reason); }

    bool take(char c) {
        const bool there = !rest_.empty() && rest_.front() == c;
        if (there) rest_.remove_prefix(1);
        return there;
    }
    bool take(std::string_view word) {
        const bool there = rest_.starts_with(word);
        if (there) rest_.remove_prefix(word.size());
        return there;
    }
    void skip_blanks() { rest_.remove_prefix(std::min(rest_.size(), rest_.find_first_not_of(" \t"))); }

    /// The rest of the line, without the blanks at its end.
    std::string_view peek_line() const {
        const std::string_view line = rest_.substr(0, rest_.find('\n'));
        return line.substr(0, line.find_last_not_of(" \t\r") + 1);
    }
    /// Passes the rest of the line and its break.
    void take_line() {
        const std::size_t line_break = rest_.find('\n');
        rest_ = line_break == std::string_view::npos ? std::string_view() : rest_.substr(line_break + 1);
        ++line_;
    }
    /// Whether the rest of the line says nothing: it is empty or a comment.
    bool at_blank_rest() const { return peek() == ';' || peek() == '\n' || (peek() == '\r' && peek_line().empty()); }

    /// Passes what may follow on a line when all is said: blanks, a comment, and the break.
    void finish_line() {
        skip_blanks();
        if (!at_blank_rest()) refuse("there is more on the line than belongs there");
        take_line();
    }

    /// A number of up to `most_digits` hexadecimal digits.
    std::uint32_t take_number(int most_digits) {
        std::uint32_t number = 0;
        int digits = 0;
        for (; digits < most_digits && hex_digit(peek()) >= 0; ++digits) {
            number = number << 4 | static_cast<std::uint32_t>(hex_digit(peek()));
            rest_.remove_prefix(1);
        }
        if (digits == 0) refuse("a hexadecimal number is missing");
        return number;
    }

    /// A text up to its closing quotation mark, the opening one being passed. It may hold line breaks.
    std::u16string take_quoted() {
        const std::size_t first_line = line_;
        std::string unescaped;
        for (;;) {
            const auto stops = [](char c) { return c == '"' || c == '\\' || c == '\n' || c == '\0'; };
            const auto found = std::find_if(rest_.begin(), rest_.end(), stops);
            const auto length = static_cast<std::size_t>(found - rest_.begin());
            if (length == rest_.size()) throw RegistryDamage(first_line, "a closing quotation mark is missing");
            const std::string_view plain = rest_.substr(0, length);
            const char stop = rest_[length];
            rest_.remove_prefix(length + 1);
            if (stop == '"' && unescaped.empty()) return to_text(plain);
            unescaped += plain;
            if (stop == '"') return to_text(unescaped);
            if (stop == '\0') refuse("there is a null character in a text");
            if (stop == '\n') {
                unescaped += '\n';
                ++line_;
            } else {
                unescaped += take_escaped();
            }
        }
    }

    std::u16string to_text(std::string_view bytes) const {
        std::u16string text = from_utf8(bytes);
        // The conversion replaces what is malformed; a replacement character that stood there is none.
        if (std::count(text.begin(), text.end(), u'\xFFFD') > 0 && to_utf8(text) != bytes)
            refuse("the text is not UTF-8");
        return text;
    }

private:
    char take_escaped() {
        if (take('\\')) return '\\';
        if (take('"')) return '"';
        if (take('n')) return '\n';
        if (take('r')) return '\r';
        refuse("a backslash in a text must be doubled");
    }

    std::string_view rest_;
    std::size_t& line_;
};

/// Hexadecimal bytes between commas. A backslash at the end of a line continues them on the next.
std::vector<std::uint8_t> take_bytes(Cursor& cursor) {
    std::vector<std::uint8_t> bytes;
    for (bool more = false;;) {
        cursor.skip_blanks();
        if (cursor.take('\\')) {
            if (!cursor.peek_line().empty()) cursor.refuse("a line that goes on must end in its backslash");
            cursor.take_line();
            if (cursor.at_end()) cursor.refuse("the line that should go on is the last");
            continue;
        }
        if (!more && hex_digit(cursor.peek()) < 0) return bytes;
        bytes.push_back(static_cast<std::uint8_t>(cursor.take_number(2)));
        cursor.skip_blanks();
        if (!cursor.take(',')) return bytes;
        more = true;
    }
}

std::vector<std::uint8_t> terminated_utf16(const std::u16string& text) {
    std::vector<std::uint8_t> bytes(text.size() * 2 + 2);
    for (std::size_t i = 0; i < text.size(); ++i) {
        bytes[i * 2] = static_cast<std::uint8_t>(text[i]);
        bytes[i * 2 + 1] = static_cast<std::uint8_t>(text[i] >> 8);
    }
    return bytes;
}

/// What stands behind a value's equals sign, if it is not a deletion.
void take_data(Cursor& cursor, RegistryValue& value) {
    if (cursor.take('"')) {
        value.type = kRegSz;
        value.data = terminated_utf16(cursor.take_quoted());
    } else if (cursor.take("dword:")) {
        value.type = kRegDword;
        const std::uint32_t number = cursor.take_number(8);
        for (int shift = 0; shift < 32; shift += 8) value.data.push_back(static_cast<std::uint8_t>(number >> shift));
    } else if (cursor.take("hex")) {
        value.type = kRegBinary;
        if (cursor.take('(')) {
            value.type = cursor.take_number(8);
            if (!cursor.take(')')) cursor.refuse("a closing parenthesis is missing");
        }
        if (!cursor.take(':')) cursor.refuse("a colon is missing");
        value.data = take_bytes(cursor);
    } else {
        cursor.refuse("this is no kind of data");
    }
}

/// A section's line: a key that is there, or one that is not.
struct Section {
    std::u16string path;
    bool deletion = false;
};

/// The line whose opening bracket is passed.
Section take_section(Cursor& cursor) {
    Section section;
    section.deletion = cursor.take('-');
    std::string_view line = cursor.peek_line();
    if (!line.ends_with(']')) cursor.refuse("a closing bracket is missing");
    line.remove_suffix(1);
    section.path = cursor.to_text(line);
    if (std::any_of(section.path.begin(), section.path.end(), [](char16_t c) { return c < u' '; })) {
        cursor.refuse("there is a control character in the name of a key");
    }
    std::u16string_view rest = section.path;
    std::optional<std::size_t> depth = depth_of_registry_root(take_name(rest));
    if (!depth) cursor.refuse("the key has no known root");
    for (; !rest.empty(); take_name(rest)) ++*depth;
    if (*depth > kMaxKeyDepth) cursor.refuse("the key is too deep");
    cursor.take_line();
    return section;
}

/// A value's line: one that is there, or one that is not.
struct ValueLine {
    RegistryValue value;
    bool deletion = false;
};

ValueLine take_value(Cursor& cursor) {
    ValueLine line;
    if (cursor.take('"')) {
        line.value.name = cursor.take_quoted();
    } else if (!cursor.take('@')) {
        cursor.refuse("this is neither a key nor a value");
    }
    cursor.skip_blanks();
    if (!cursor.take('=')) cursor.refuse("an equals sign is missing");
    cursor.skip_blanks();
    line.deletion = cursor.take('-');
    if (!line.deletion) take_data(cursor, line.value);
    cursor.finish_line();
    return line;
}

void take_header(Cursor& cursor) {
    cursor.take(kUtf8Mark);
    if (cursor.peek_line() != kRegistryHeader.substr(0, kRegistryHeader.size() - 1)) cursor.refuse(kNoHeader);
    cursor.take_line();
}

}  // namespace

void RegistryReader::read(std::string_view text) {
    Cursor cursor(text, line_);
    if (!header_seen_ && !text.empty()) {
        take_header(cursor);
        header_seen_ = true;
    }
    while (!cursor.at_end()) {
        cursor.skip_blanks();
        if (cursor.at_blank_rest()) {
            cursor.take_line();
        } else if (cursor.take('[')) {
            Section section = take_section(cursor);
            if (section.deletion) {
                changes_.key_deleted(section.path);
                current_key_.clear();
            } else {
                changes_.key(section.path);
                current_key_ = std::move(section.path);
            }
        } else {
            if (current_key_.empty()) cursor.refuse("a value stands before any key");
            ValueLine line = take_value(cursor);
            if (line.deletion) {
                changes_.value_deleted(line.value.name);
            } else {
                changes_.value(std::move(line.value));
            }
        }
    }
}

bool is_utf16_registry(std::string_view bytes) { return bytes.starts_with(kUtf16Mark); }

std::string registry_from_utf16(std::string_view bytes) {
    std::u16string text;
    text.reserve(bytes.size() / 2);
    for (std::size_t i = kUtf16Mark.size(); i + 1 < bytes.size(); i += 2) {
        text +=
            static_cast<char16_t>(static_cast<unsigned char>(bytes[i]) | static_cast<unsigned char>(bytes[i + 1]) << 8);
    }
    return to_utf8(text);
}

}  // namespace vex::platform::native
