// The displays that the simulated host knows, and the file that it keeps them in.
#include "simulator/displays.h"

#include <algorithm>
#include <limits>
#include <stdexcept>
#include <utility>

#include "core/unicode.h"

namespace vex::sim {
namespace {

constexpr std::u16string_view kHeader = u"# Brivola displays, version 1";
constexpr std::u16string_view kDisplayWord = u"display";
constexpr std::u16string_view kConnectionKey = u"connection";

struct TextField {
    std::u16string_view key;
    std::u16string Display::*text;
};

constexpr TextField kTextFields[] = {
    {u"type", &Display::type}, {u"code", &Display::code},       {u"port", &Display::port},
    {u"baud", &Display::baud}, {u"phone", &Display::phone},     {u"address", &Display::address},
    {u"ids", &Display::ids},   {u"version", &Display::version},
};

std::string key_names() {
    std::string names(to_utf8(kConnectionKey));
    for (const TextField& field : kTextFields) names += ", " + to_utf8(field.key);
    return names;
}

Display read_display(const Words& words) {
    if (words.size() < 2 || words.front() != kDisplayWord) {
        throw std::invalid_argument("expected display NAME KEY=VALUE...");
    }
    Display display;
    display.name = words[1];
    for (std::size_t i = 2; i < words.size(); ++i) read_display_field(words[i], display);
    return display;
}

std::u16string written(const Display& display) {
    std::u16string line(kDisplayWord);
    line += u' ' + as_word(display.name);
    const auto field = [&line](std::u16string_view key, const std::u16string& value) {
        line += u' ' + std::u16string(key) + u'=' + (value.empty() ? std::u16string() : as_word(value));
    };
    field(kConnectionKey, from_utf8(std::to_string(display.connection)));
    for (const TextField& text : kTextFields) field(text.key, display.*text.text);
    return line;
}

}  // namespace

std::u16string connection_line(std::int16_t kind, std::u16string_view port, std::u16string_view baud,
                               std::u16string_view phone, std::u16string_view address) {
    // The parts are joined by a character that none of them holds in practice; a clash would only put two
    // displays on one line.
    constexpr char16_t kJoin = u'\n';
    std::u16string line;
    switch (kind) {
        case kSerialCable:
            return line.append(u"serial").append(1, kJoin).append(port).append(1, kJoin).append(baud);
        case kModem:
            line.append(u"modem").append(1, kJoin).append(port).append(1, kJoin).append(baud);
            return line.append(1, kJoin).append(phone);
        default:
            return line.append(u"network").append(1, kJoin).append(address).append(1, kJoin).append(port);
    }
}

std::u16string Display::line() const { return connection_line(connection, port, baud, phone, address); }

void read_display_field(std::u16string_view word, Display& display) {
    const std::size_t equals = word.find(u'=');
    const std::u16string_view key = word.substr(0, equals);
    const std::u16string_view value = equals == word.npos ? std::u16string_view() : word.substr(equals + 1);
    if (equals != word.npos && key == kConnectionKey) {
        const auto number =
            parse_number(value, std::numeric_limits<std::int16_t>::min(), std::numeric_limits<std::int16_t>::max());
        if (!number) throw std::invalid_argument(to_utf8(word) + " needs a number of 16 bits");
        display.connection = static_cast<std::int16_t>(*number);
        return;
    }
    for (const TextField& field : kTextFields) {
        if (equals == word.npos || key != field.key) continue;
        display.*field.text = value;
        return;
    }
    throw std::invalid_argument(to_utf8(word) + " is no KEY=VALUE with a key of " + key_names());
}

std::optional<std::size_t> Displays::find(const std::u16string& name) const {
    const auto entry = by_name_.find(name);
    return entry == by_name_.end() ? std::nullopt : std::optional(entry->second);
}

std::optional<std::size_t> Displays::first_on_line(const std::u16string& line) const {
    const auto entry = by_line_.find(line);
    return entry == by_line_.end() || entry->second.empty() ? std::nullopt : std::optional(entry->second.front());
}

std::vector<std::size_t> Displays::at_address(const std::u16string& address) const {
    const auto entry = by_address_.find(address);
    return entry == by_address_.end() ? std::vector<std::size_t>() : entry->second;
}

void Displays::put(Display display) {
    const auto [entry, fresh] = by_name_.try_emplace(display.name, displays_.size());
    const std::size_t position = entry->second;
    if (fresh) displays_.emplace_back();
    Display& place = displays_[position];
    const std::u16string former_line = place.line();
    move_entry(by_line_, position, fresh ? nullptr : &former_line, display.line());
    move_entry(by_address_, position, fresh ? nullptr : &place.address, display.address);
    place = std::move(display);
}

void Displays::move_entry(Index& index, std::size_t position, const std::u16string* from, const std::u16string& to) {
    if (from != nullptr) {
        if (*from == to) return;
        std::erase(index[*from], position);
    }
    auto& positions = index[to];
    positions.insert(std::lower_bound(positions.begin(), positions.end(), position), position);
}

Displays Displays::load(const std::filesystem::path& path) { return parse(path.string(), read_file(path)); }

Displays Displays::parse(const std::string& file, std::string_view text) {
    const std::vector<std::u16string> lines = split_lines(file, text);
    if (lines.empty() || lines.front() != kHeader) {
        throw TextError(file, 1, "expected the line " + to_utf8(kHeader));
    }
    Displays displays;
    for (std::size_t i = 1; i < lines.size(); ++i) {
        try {
            const Words words = split_words(lines[i]);
            if (words.empty()) continue;
            Display display = read_display(words);
            if (displays.find(display.name)) {
                throw std::invalid_argument("display " + to_utf8(display.name) + " stands here twice");
            }
            displays.put(std::move(display));
        } catch (const std::invalid_argument& error) {
            throw TextError(file, i + 1, error.what());
        }
    }
    return displays;
}

std::string Displays::text() const {
    std::string lines = to_utf8(kHeader) + "\n";
    for (const Display& display : displays_) lines += to_utf8(written(display)) + "\n";
    return lines;
}

void Displays::save(const std::filesystem::path& path) const { replace_file(path, text()); }

}  // namespace vex::sim
