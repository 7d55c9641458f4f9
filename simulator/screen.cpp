// The screen of the computer that the simulated host runs on: how its properties are written.
#include "simulator/screen.h"

#include <cstdio>

#include "core/unicode.h"
#include "simulator/words.h"

namespace vex::sim {

std::u16string shown_boolean(bool value) { return value ? u"True" : u"False"; }

std::u16string shown_color(forms::Color color) {
    char text[sizeof "0x00BBGGRR"];
    std::snprintf(text, sizeof text, "0x%08X", color);
    return from_utf8(text);
}

std::u16string shown_row(const std::vector<std::u16string>& cells) {
    std::u16string line;
    for (const std::u16string& cell : cells) line += (line.empty() ? u"" : u" | ") + in_quotes(cell);
    return line;
}

}  // namespace vex::sim
