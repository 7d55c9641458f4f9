// The displays that the simulated host knows, and the file that it keeps them in.
#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
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

    /// What a connection must name to reach this display; displays on one line share it.
    std::u16string line() const;
};

/// The line that a connection with these settings uses: settings that its kind does not need do not count.
std::u16string connection_line(std::int16_t kind, std::u16string_view port, std::u16string_view baud,
                               std::u16string_view phone, std::u16string_view address);

/// Reads "KEY=VALUE" into a display. Raises `std::invalid_argument` for an unknown key or a value that is no
/// number where one is needed.
void read_display_field(std::u16string_view word, Display& display);

/// All displays in the order of their making, found by name or line without a search.
class Displays {
public:
    std::size_t size() const noexcept { return displays_.size(); }
    const Display& at(std::size_t index) const { return displays_.at(index); }
    /// Exact comparison.
    std::optional<std::size_t> find(const std::u16string& name) const;
    /// The first display on a line.
    std::optional<std::size_t> first_on_line(const std::u16string& line) const;
    /// All displays of that network address, whatever their kind of connection.
    std::vector<std::size_t> at_address(const std::u16string& address) const;
    /// Adds a display or puts it into the place of the one of that name.
    void put(Display display);

    /// `file`: how messages name the text. Raises `TextError` naming the line and what was expected there.
    static Displays parse(const std::string& file, std::string_view text);
    /// What `parse` reads back.
    std::string text() const;

    /// The same from a file. Raises `TextError`.
    static Displays load(const std::filesystem::path& path);
    /// Raises `TextError`.
    void save(const std::filesystem::path& path) const;

private:
    /// Positions, in order, by a text that displays may share.
    using Index = std::unordered_map<std::u16string, std::vector<std::size_t>>;

    static void move_entry(Index& index, std::size_t position, const std::u16string* from, const std::u16string& to);

    std::vector<Display> displays_;
    std::unordered_map<std::u16string, std::size_t> by_name_;
    Index by_line_;
    Index by_address_;
};

}  // namespace vex::sim
