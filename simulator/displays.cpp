// The displays that the simulated host knows and the units behind them.
#include "simulator/displays.h"

#include <algorithm>
#include <set>
#include <stdexcept>

#include "core/digits.h"
#include "core/runtime_error.h"
#include "core/unicode.h"
#include "support/text.h"

namespace vex::sim {
namespace {

constexpr std::u16string_view kDisplaysHeader = u"# Brivola displays, version 1";
constexpr std::u16string_view kConnectionKey = u"connection";

constexpr std::pair<std::u16string_view, std::u16string Display::*> kTextFields[] = {
    {u"type", &Display::type}, {u"code", &Display::code},       {u"port", &Display::port},
    {u"baud", &Display::baud}, {u"phone", &Display::phone},     {u"address", &Display::address},
    {u"ids", &Display::ids},   {u"version", &Display::version},
};

std::string key_names() {
    std::string names(to_utf8(kConnectionKey));
    for (const auto& [key, text] : kTextFields) names += ", " + to_utf8(key);
    return names;
}

std::u16string written(const Display& display) {
    std::u16string line = u"display " + as_word(display.name);
    const auto field = [&line](std::u16string_view key, const std::u16string& value) {
        line.append(u" ").append(key).append(u"=").append(value.empty() ? value : as_word(value));
    };
    field(kConnectionKey, decimal_text(display.connection));
    for (const auto& [key, text] : kTextFields) field(key, display.*text);
    return line;
}

constexpr std::u16string_view kUnitsHeader = u"# Brivola units, version 2";

constexpr std::int16_t kLowestId = std::numeric_limits<std::int16_t>::min();

/// A number of 16 bits.
std::optional<std::int16_t> parse_int16(std::u16string_view word) {
    const auto number = parse_number(word, kLowestId, kHighestId);
    return number ? std::optional(static_cast<std::int16_t>(*number)) : std::nullopt;
}

void read_field(std::u16string_view word, Display& display) {
    const std::size_t equals = word.find(u'=');
    const std::u16string_view key = word.substr(0, equals);
    if (equals != word.npos && key == kConnectionKey) {
        const auto number = parse_int16(word.substr(equals + 1));
        if (!number) throw std::invalid_argument(to_utf8(word) + " needs a number of 16 bits");
        display.connection = *number;
        return;
    }
    const auto* const field = std::ranges::find(kTextFields, key, [](const auto& known) { return known.first; });
    if (equals == word.npos || field == std::end(kTextFields))
        throw std::invalid_argument(to_utf8(word) + " is no KEY=VALUE with a key of " + key_names());
    display.*field->second = word.substr(equals + 1);
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

/// Reads a grid written "YxX".
SlaveCounts parse_slaves(std::u16string_view word) {
    const std::size_t cross = std::min(word.find(u'x'), word.size());
    const auto y = parse_int16(word.substr(0, cross));
    const auto x = parse_int16(word.substr(std::min(cross + 1, word.size())));
    if (!y || !x) refuse(word, "is no grid of the form YxX");
    return {*y, *x};
}

}  // namespace

Display read_display(const Words& words) {
    Display display;
    display.name = words[1];
    for (std::size_t i = 2; i < words.size(); ++i) read_field(words[i], display);
    return display;
}

std::u16string Display::line() const {
    // Joined by a character that no part holds in practice; a clash would only put two displays on one line.
    const std::u16string cable = port + u'\n' + baud;
    if (connection == kSerialCable) return u"serial\n" + cable;
    return connection == kModem ? u"modem\n" + cable + u'\n' + phone : u"network\n" + address + u'\n' + port;
}

std::optional<std::size_t> Displays::find(const std::u16string& name) const {
    const auto entry = by_name_.find(name);
    return entry == by_name_.end() ? std::nullopt : std::optional(entry->second);
}

void Displays::put(Display display) {
    const auto [entry, fresh] = by_name_.try_emplace(display.name, displays_.size());
    if (fresh) displays_.emplace_back();
    displays_[entry->second] = std::move(display);
}

Displays Displays::parse(const std::string& file, std::string_view text) {
    Displays displays;
    read_lines(file, text, kDisplaysHeader, [&displays](const Words& words, std::size_t /*line*/) {
        if (words.size() < 2 || words.front() != u"display")
            throw std::invalid_argument("expected display NAME KEY=VALUE...");
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

std::int16_t parse_id(std::u16string_view word) {
    const auto id = parse_int16(word);
    if (!id) refuse(word, "is no display ID (a number of 16 bits)");
    return *id;
}

void Units::clear_hardware(const std::u16string& display) {
    boxes_.erase(display);
    for (auto unit = units_.lower_bound({display, kLowestId}); unit != units_.end() && unit->first.first == display;
         ++unit)
        unit->second.slaves.reset();
}

Units::Unit Units::find(const std::u16string& display, std::int16_t id) const {
    const auto unit = units_.find({display, id});
    return unit == units_.end() ? Unit() : unit->second;
}

bool Units::answers(const Display& display, std::int16_t id) const { return std::ranges::count(ids(display), id) > 0; }

std::vector<std::u16string> Units::boxes(const std::u16string& display) const {
    std::vector<std::u16string> descriptions;
    const auto [first, last] = boxes_.equal_range(display);
    for (auto box = first; box != last; ++box) descriptions.push_back(box->second);
    return descriptions;
}

std::vector<std::int16_t> Units::ids(const Display& display) const {
    std::vector<std::int16_t> result;
    std::set<std::int16_t> seen;
    const auto add = [&result, &seen](std::int16_t id) {
        if (seen.insert(id).second) result.push_back(id);
    };
    for (const std::int16_t master : masters(display)) {
        add(master);
        const std::int64_t last = master + slaves(display.name, master).value_or(SlaveCounts()).slaves();
        for (std::int64_t id = master + 1; id <= std::min<std::int64_t>(last, kHighestId); ++id)
            add(static_cast<std::int16_t>(id));
    }
    for (auto unit = units_.lower_bound({display.name, kLowestId});
         unit != units_.end() && unit->first.first == display.name; ++unit) {
        if (unit->second.slaves) add(unit->first.second);
    }
    return result;
}

void Units::read(const Words& words) {
    const std::u16string& what = words.front();
    if (what == u"unit" && words.size() == 4) {
        const auto slaves = value_of(u"slaves", words[3]);
        if (!slaves) refuse(words[3], "is not slaves=YxX");
        set_slaves(words[1], parse_id(words[2]), parse_slaves(*slaves));
    } else if (what == u"box" && words.size() == 3) {
        add_box(words[1], words[2]);
    } else if (what == u"holds" && words.size() == 4) {
        store(words[1], parse_id(words[2]), words[3]);
    } else {
        throw std::invalid_argument("expected unit NAME ID slaves=YxX, box NAME TEXT or holds NAME ID CONTENT");
    }
}

Units Units::parse(const std::string& file, std::string_view text) {
    Units units;
    read_lines(file, text, kUnitsHeader, [&units](const Words& words, std::size_t /*line*/) { units.read(words); });
    return units;
}

std::string Units::text() const {
    std::u16string lines = std::u16string(kUnitsHeader) + u"\n";
    for (const auto& [place, unit] : units_) {
        const std::u16string where = as_word(place.first) + u" " + decimal_text(place.second) + u" ";
        if (unit.slaves)
            lines += u"unit " + where + u"slaves=" + decimal_text(unit.slaves->y) + u"x" +
                     decimal_text(unit.slaves->x) + u"\n";
        if (unit.content != kAsDelivered) lines += u"holds " + where + as_word(unit.content) + u"\n";
    }
    for (const auto& [display, box] : boxes_) lines += u"box " + as_word(display) + u" " + as_word(box) + u"\n";
    return to_utf8(lines);
}

}  // namespace vex::sim
