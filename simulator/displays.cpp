// The displays that the simulated host knows and the units behind them.
#include "simulator/displays.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <limits>
#include <set>
#include <stdexcept>
#include <utility>

#include "core/runtime_error.h"
#include "core/unicode.h"
#include "support/automation_value.h"
#include "support/text.h"

namespace vex::sim {
namespace {

constexpr std::u16string_view kDisplaysHeader = u"# Brivola displays, version 1";
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

constexpr std::u16string_view kUnitsHeader = u"# Brivola units, version 1";

std::u16string to_decimal(std::int64_t number) { return from_utf8(std::to_string(number)); }

std::u16string to_hexadecimal(std::uint32_t number) {
    std::u16string digits(8, u'0');
    for (std::size_t i = digits.size(); i-- > 0; number >>= 4) digits[i] = u"0123456789ABCDEF"[number & 0xFU];
    return digits;
}

std::uint32_t read_crc(const std::u16string& word) {
    const std::string digits = to_utf8(word);
    std::uint32_t value = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), value, 16);
    if (error != std::errc() || end != digits.data() + digits.size()) {
        throw std::invalid_argument("expected a checksum of 8 hexadecimal digits");
    }
    return value;
}

/// The masters of a display, as far as its IDs are numbers to an automation client.
std::vector<std::int16_t> masters(const Display& display) {
    std::vector<std::int16_t> result;
    for (const std::u16string& piece : split(display.ids, u',')) {
        try {
            result.push_back(to_int16(piece));
        } catch (const RuntimeError&) {
            // No unit has that ID; who asks for it learns so.
        }
    }
    return result;
}

constexpr std::array<std::pair<Content::State, std::u16string_view>, 3> kPlainStates = {{
    {Content::State::as_delivered, u"as delivered"},
    {Content::State::empty, u"empty"},
    {Content::State::incomplete, u"incomplete"},
}};

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
    const auto found = std::ranges::find(displays_, line, &Display::line);
    return found == displays_.end() ? std::nullopt : std::optional(static_cast<std::size_t>(found - displays_.begin()));
}

std::vector<std::size_t> Displays::at_address(const std::u16string& address) const {
    std::vector<std::size_t> positions;
    for (std::size_t i = 0; i < displays_.size(); ++i) {
        if (displays_[i].address == address) positions.push_back(i);
    }
    return positions;
}

void Displays::put(Display display) {
    const auto [entry, fresh] = by_name_.try_emplace(display.name, displays_.size());
    if (fresh) displays_.emplace_back();
    displays_[entry->second] = std::move(display);
}

Displays Displays::load(const std::filesystem::path& path) { return parse(path.string(), read_file(path)); }

Displays Displays::parse(const std::string& file, std::string_view text) {
    Displays displays;
    read_lines(file, text, kDisplaysHeader, [&displays](const Words& words, std::size_t /*line*/) {
        Display display = read_display(words);
        if (displays.find(display.name)) {
            throw std::invalid_argument("display " + to_utf8(display.name) + " stands here twice");
        }
        displays.put(std::move(display));
    });
    return displays;
}

std::string Displays::text() const {
    std::string lines = to_utf8(kDisplaysHeader) + "\n";
    for (const Display& display : displays_) lines += to_utf8(written(display)) + "\n";
    return lines;
}

void Displays::save(const std::filesystem::path& path) const { replace_file(path, text()); }

std::int16_t parse_id(std::u16string_view word) {
    const auto id = parse_number(word, kLowestId, kHighestId);
    if (!id) throw std::invalid_argument("\"" + to_utf8(word) + "\" is no display ID (a number of 16 bits)");
    return static_cast<std::int16_t>(*id);
}

SlaveCounts parse_slaves(std::u16string_view word) {
    const std::size_t cross = word.find(u'x');
    const auto count = [&word](std::size_t from, std::size_t length) {
        return from > word.size() ? std::nullopt : parse_number(word.substr(from, length), kLowestId, kHighestId);
    };
    const auto y = count(0, cross);
    const auto x = count(cross == word.npos ? word.size() + 1 : cross + 1, word.npos);
    if (!y || !x) throw std::invalid_argument("\"" + to_utf8(word) + "\" is no grid of the form YxX");
    return {static_cast<std::int16_t>(*y), static_cast<std::int16_t>(*x)};
}

std::u16string describe(const Content& content) {
    for (const auto& [state, name] : kPlainStates) {
        if (content.state == state) return std::u16string(name);
    }
    const Firmware& firmware = content.firmware;
    return as_word(firmware.name) + u", " + to_decimal(static_cast<std::int64_t>(firmware.size)) + u" bytes, CRC-32 " +
           to_hexadecimal(firmware.crc32);
}

void Units::set_slaves(const std::u16string& display, std::int16_t id, SlaveCounts counts) {
    Unit& unit = sites_[display].units[id];
    unit.slaves = counts;
    unit.absent = false;
}

void Units::set_absent(const std::u16string& display, std::int16_t id) { sites_[display].units[id].absent = true; }

void Units::add_box(const std::u16string& display, std::u16string description) {
    sites_[display].boxes.push_back(std::move(description));
}

void Units::clear_hardware(const std::u16string& display) {
    const auto site = sites_.find(display);
    if (site == sites_.end()) return;
    site->second.boxes.clear();
    for (auto& [id, unit] : site->second.units) {
        unit.slaves.reset();
        unit.absent = false;
    }
}

const Units::Unit* Units::find(const std::u16string& display, std::int16_t id) const {
    const auto site = sites_.find(display);
    if (site == sites_.end()) return nullptr;
    const auto unit = site->second.units.find(id);
    return unit == site->second.units.end() ? nullptr : &unit->second;
}

std::optional<SlaveCounts> Units::slaves(const std::u16string& display, std::int16_t id) const {
    const Unit* unit = find(display, id);
    return unit == nullptr ? std::nullopt : unit->slaves;
}

bool Units::answers(const Display& display, std::int16_t id) const {
    if (const Unit* unit = find(display.name, id)) {
        if (unit->absent || unit->slaves) return !unit->absent;
    }
    for (const std::int16_t master : masters(display)) {
        const auto counts = slaves(display.name, master);
        if (id >= master && id <= master + (counts ? counts->slaves() : 0)) return true;
    }
    return false;
}

std::vector<std::u16string> Units::boxes(const std::u16string& display) const {
    const auto site = sites_.find(display);
    return site == sites_.end() ? std::vector<std::u16string>() : site->second.boxes;
}

Content Units::content(const std::u16string& display, std::int16_t id) const {
    const Unit* unit = find(display, id);
    return unit == nullptr ? Content() : unit->content;
}

void Units::store(const std::u16string& display, std::int16_t id, Content content) {
    sites_[display].units[id].content = std::move(content);
}

std::vector<std::int16_t> Units::ids(const Display& display) const {
    std::vector<std::int16_t> result;
    std::set<std::int16_t> seen;
    const auto add = [&result, &seen](std::int64_t id) {
        if (id <= kHighestId && seen.insert(static_cast<std::int16_t>(id)).second) {
            result.push_back(static_cast<std::int16_t>(id));
        }
    };
    for (const std::int16_t master : masters(display)) {
        add(master);
        const auto counts = slaves(display.name, master);
        const std::int64_t last = std::min<std::int64_t>(master + (counts ? counts->slaves() : 0), kHighestId);
        for (std::int64_t id = master + 1; id <= last; ++id) add(id);
    }
    const auto site = sites_.find(display.name);
    if (site != sites_.end()) {
        for (const auto& [id, unit] : site->second.units) {
            if (unit.slaves) add(id);
        }
    }
    return result;
}

void Units::read(const Words& words) {
    const std::u16string& what = words.front();
    if (what == u"slaves" && words.size() == 4) {
        set_slaves(words[1], parse_id(words[2]), parse_slaves(words[3]));
    } else if (what == u"absent" && words.size() == 3) {
        set_absent(words[1], parse_id(words[2]));
    } else if (what == u"box" && words.size() == 3) {
        add_box(words[1], words[2]);
    } else if (what == u"holds" && words.size() == 4) {
        for (const auto& [state, name] : kPlainStates) {
            if (words[3] == name) return store(words[1], parse_id(words[2]), {state, {}});
        }
        throw std::invalid_argument("\"" + to_utf8(words[3]) + "\" is nothing that a unit holds");
    } else if (what == u"holds" && words.size() == 6) {
        const auto size = parse_number(words[4], 0, std::numeric_limits<std::int64_t>::max());
        if (!size) throw std::invalid_argument("expected a size in bytes");
        store(words[1], parse_id(words[2]),
              {Content::State::firmware, {words[3], static_cast<std::uint64_t>(*size), read_crc(words[5])}});
    } else {
        throw std::invalid_argument(
            "expected slaves NAME ID YxX, absent NAME ID, box NAME TEXT or holds NAME ID CONTENT");
    }
}

Units Units::load(const std::filesystem::path& path) { return parse(path.string(), read_file(path)); }

Units Units::parse(const std::string& file, std::string_view text) {
    Units units;
    read_lines(file, text, kUnitsHeader, [&units](const Words& words, std::size_t /*line*/) { units.read(words); });
    return units;
}

std::string Units::text() const {
    std::u16string lines = std::u16string(kUnitsHeader) + u"\n";
    const auto line = [&lines](std::u16string_view what, const std::u16string& display) -> std::u16string& {
        return lines.append(what).append(u" ").append(as_word(display));
    };
    for (const auto& [display, site] : sites_) {
        for (const auto& [id, unit] : site.units) {
            const std::u16string number = u" " + to_decimal(id);
            if (unit.slaves) {
                line(u"slaves", display) +=
                    number + u" " + to_decimal(unit.slaves->y) + u"x" + to_decimal(unit.slaves->x) + u"\n";
            }
            if (unit.absent) line(u"absent", display) += number + u"\n";
            if (unit.content.state == Content::State::firmware) {
                const Firmware& firmware = unit.content.firmware;
                line(u"holds", display) += number + u" " + as_word(firmware.name) + u" " +
                                           to_decimal(static_cast<std::int64_t>(firmware.size)) + u" " +
                                           to_hexadecimal(firmware.crc32) + u"\n";
            } else if (unit.content.state != Content::State::as_delivered) {
                line(u"holds", display) += number + u" " + as_word(describe(unit.content)) + u"\n";
            }
        }
        for (const std::u16string& box : site.boxes) line(u"box", display) += u" " + as_word(box) + u"\n";
    }
    return to_utf8(lines);
}

void Units::save(const std::filesystem::path& path) const { replace_file(path, text()); }

}  // namespace vex::sim
