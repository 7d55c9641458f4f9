// The displays that the simulated host knows and the units behind them, and the files that it keeps them in.
#pragma once

#include <cstdint>
#include <limits>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "simulator/words.h"

namespace vex::sim {

/// How a display is reached. A host takes every other number for a network connection.
enum ConnectionKind : std::int16_t { kSerialCable = 1, kNetwork = 2, kModem = 3 };

/// One display: texts as the host gives them to its callers.
struct Display {
    std::u16string name;
    std::u16string type = u"Z180 Sign";
    std::u16string code = u"100";
    std::u16string port = u"COM1";
    std::u16string baud = u"9600";
    std::u16string phone;
    std::int16_t connection = kSerialCable;
    std::u16string address;
    /// Display IDs of the masters, joined by ",".
    std::u16string ids = u"1";
    std::u16string version = u"V2.00";

    /// What a connection must name to reach this display, by its kind; displays on one line share it.
    std::u16string line() const;

    /// One that is not there: all its fields are empty.
    static Display none() { return {{}, {}, {}, {}, {}, {}, 0, {}, {}, {}}; }
};

/// Reads NAME KEY=VALUE..., from the second word. Raises `std::invalid_argument` for an unknown key or a value that is
/// no number where one is needed.
Display read_display(const Words& words);

/// All displays in the order of their making, found by name without a search.
class Displays {
public:
    std::size_t size() const noexcept { return displays_.size(); }
    const Display& at(std::size_t index) const { return displays_.at(index); }
    /// Exact comparison.
    std::optional<std::size_t> find(const std::u16string& name) const;
    auto begin() const noexcept { return displays_.begin(); }
    auto end() const noexcept { return displays_.end(); }
    /// Adds a display or puts it into the place of the one of that name.
    void put(Display display);

    /// `file`: how messages name the text. Raises `TextError` naming the line and what was expected there.
    static Displays parse(const std::string& file, std::string_view text);
    /// What `parse` reads back.
    std::string text() const;

private:
    std::vector<Display> displays_;
    std::unordered_map<std::u16string, std::size_t> by_name_;
};

/// What a display reports of the grid of units behind a master: rows and columns less one each.
struct SlaveCounts {
    std::int16_t y = 0;
    std::int16_t x = 0;

    /// The number of slaves: the units of the grid less the master.
    std::int64_t slaves() const noexcept { return (std::int64_t{y} + 1) * (std::int64_t{x} + 1) - 1; }
};

constexpr std::int16_t kHighestId = std::numeric_limits<std::int16_t>::max();

/// Reads a display ID. Raises `std::invalid_argument`.
std::int16_t parse_id(std::u16string_view word);

/// What a unit holds to which nothing has happened.
inline constexpr char16_t kAsDelivered[] = u"as delivered";

/// The units of all displays. A display has the units that its IDs name, the slaves behind them, and those
/// that were put there by `set_slaves`; each is as delivered until something happens to it.
class Units {
public:
    void set_slaves(const std::u16string& display, std::int16_t id, SlaveCounts counts) {
        units_[{display, id}].slaves = counts;
    }
    void add_box(const std::u16string& display, const std::u16string& description) {
        boxes_.emplace(display, description);
    }
    /// Forgets the slaves and device servers of a display; what its units hold stays.
    void clear_hardware(const std::u16string& display);

    std::optional<SlaveCounts> slaves(const std::u16string& display, std::int16_t id) const {
        return find(display, id).slaves;
    }
    bool answers(const Display& display, std::int16_t id) const;
    /// Device servers in front of a display, in the order in which the finder reports them.
    std::vector<std::u16string> boxes(const std::u16string& display) const;

    /// As it is shown: a few words, or a firmware file by name, size and checksum.
    std::u16string content(const std::u16string& display, std::int16_t id) const { return find(display, id).content; }
    void store(const std::u16string& display, std::int16_t id, const std::u16string& content) {
        units_[{display, id}].content = content;
    }
    /// The IDs of a display's units: its masters as they are written, each followed by its slaves, then others.
    std::vector<std::int16_t> ids(const Display& display) const;

    /// Does what a line says: "unit NAME ID slaves=YxX", "box NAME TEXT" or "holds NAME ID CONTENT". Raises
    /// `std::invalid_argument`.
    void read(const Words& words);
    /// `file`: how messages name the text. Raises `TextError` naming the line and what was expected there.
    static Units parse(const std::string& file, std::string_view text);
    /// What `parse` reads back.
    std::string text() const;

private:
    struct Unit {
        std::optional<SlaveCounts> slaves;
        std::u16string content = kAsDelivered;
    };
    using Place = std::pair<std::u16string, std::int16_t>;

    Unit find(const std::u16string& display, std::int16_t id) const;

    std::map<Place, Unit> units_;
    std::multimap<std::u16string, std::u16string> boxes_;
};

}  // namespace vex::sim
