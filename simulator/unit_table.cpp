// What the units of the displays hold now.
#include "simulator/unit_table.h"

#include <array>
#include <vector>

#include "core/unicode.h"
#include "support/text.h"

namespace vex::sim {
namespace {

using Line = std::array<std::u16string, 3>;

/// Characters, as far as UTF-16 can tell without a table of widths.
std::size_t length(const std::u16string& text) {
    std::size_t count = 0;
    for (const char16_t unit : text) count += unit < 0xDC00 || unit > 0xDFFF ? 1 : 0;
    return count;
}

}  // namespace

void print_changed_units(const Host& host, const Units& before, std::ostream& out) {
    std::vector<Line> lines{{u"Display", u"Unit", u"Holds now"}};
    int unchanged = 0;
    for (std::size_t i = 0; i < host.displays.size(); ++i) {
        const Display& display = host.displays.at(i);
        for (const std::int16_t id : host.units.ids(display)) {
            const std::u16string content = describe(host.units.content(display.name, id));
            if (content == describe(before.content(display.name, id))) {
                ++unchanged;
            } else {
                lines.push_back({display.name, decimal_text(id), content});
            }
        }
    }
    if (lines.size() == 1) lines.clear();
    std::array<std::size_t, 2> widths{};
    for (const Line& line : lines) {
        for (std::size_t column = 0; column < widths.size(); ++column) {
            widths[column] = std::max(widths[column], length(line[column]));
        }
    }
    for (const Line& line : lines) {
        const auto blanks = [&](std::size_t column) { return std::string(widths[column] - length(line[column]), ' '); };
        out << to_utf8(line[0]) << blanks(0) << "  " << blanks(1) << to_utf8(line[1]) << "  " << to_utf8(line[2])
            << '\n';
    }
    if (unchanged > 0) out << unchanged << (unchanged == 1 ? " unit has" : " units have") << " not changed\n";
}

}  // namespace vex::sim
