// Colours on a terminal.
#include "platform/native/terminal/colors.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace vex::platform::native::terminal {
namespace {

using forms::Color;

/// Low enough to leave the named colours as they are on a grey face, high enough to be read.
constexpr double kReadable = 2.5;

struct Channels {
    int red;
    int green;
    int blue;
};

Channels channels(Color color) noexcept {
    return {static_cast<int>(color & 0xFF), static_cast<int>(color >> 8 & 0xFF), static_cast<int>(color >> 16 & 0xFF)};
}

double linear(int channel) noexcept {
    static const auto table = [] {
        std::array<double, 256> values{};
        for (std::size_t i = 0; i < values.size(); ++i) {
            const double value = static_cast<double>(i) / 255.0;
            values[i] = value <= 0.04045 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
        }
        return values;
    }();
    return table[static_cast<std::size_t>(channel)];
}

double luminance(Color color) noexcept {
    const Channels c = channels(color);
    return 0.2126 * linear(c.red) + 0.7152 * linear(c.green) + 0.0722 * linear(c.blue);
}

Color mix(Color color, Color other, double share) noexcept {
    const Channels a = channels(color);
    const Channels b = channels(other);
    const auto blend = [share](int from, int to) {
        return static_cast<std::uint8_t>(std::lround(from + (to - from) * share));
    };
    return forms::rgb(blend(a.red, b.red), blend(a.green, b.green), blend(a.blue, b.blue));
}

/// The first 16 colours as most terminals show them.
constexpr std::array<Color, 16> kNamedColors = {
    forms::rgb(0, 0, 0),       forms::rgb(205, 0, 0),   forms::rgb(0, 205, 0),   forms::rgb(205, 205, 0),
    forms::rgb(0, 0, 238),     forms::rgb(205, 0, 205), forms::rgb(0, 205, 205), forms::rgb(229, 229, 229),
    forms::rgb(127, 127, 127), forms::rgb(255, 0, 0),   forms::rgb(0, 255, 0),   forms::rgb(255, 255, 0),
    forms::rgb(92, 92, 255),   forms::rgb(255, 0, 255), forms::rgb(0, 255, 255), forms::rgb(255, 255, 255),
};

/// Colours from 16 on: a cube of six levels, then 24 greys. Users change the first 16, not these.
Color extended_color(int index) noexcept {
    if (index >= 232) {
        const auto grey = static_cast<std::uint8_t>(8 + 10 * (index - 232));
        return forms::rgb(grey, grey, grey);
    }
    const auto level = [](int step) { return static_cast<std::uint8_t>(step == 0 ? 0 : 55 + 40 * step); };
    const int cube = index - 16;
    return forms::rgb(level(cube / 36), level(cube / 6 % 6), level(cube % 6));
}

int distance(Color left, Color right) noexcept {
    const Channels a = channels(left);
    const Channels b = channels(right);
    const auto square = [](int value) { return value * value; };
    // The eye sees green best and blue worst.
    return 3 * square(a.red - b.red) + 6 * square(a.green - b.green) + square(a.blue - b.blue);
}

/// Whether the eye sees no hue in it.
bool is_grey(Color color) noexcept {
    const Channels c = channels(color);
    return std::max({c.red, c.green, c.blue}) - std::min({c.red, c.green, c.blue}) < 24;
}

}  // namespace

double contrast(Color left, Color right) noexcept {
    const double a = luminance(left) + 0.05;
    const double b = luminance(right) + 0.05;
    return std::max(a, b) / std::min(a, b);
}

Color readable_on(Color fore, Color back) noexcept {
    if (contrast(fore, back) >= kReadable) return fore;
    const Color target = contrast(forms::kBlack, back) >= contrast(forms::kWhite, back) ? forms::kBlack : forms::kWhite;
    for (int tenths = 1; tenths < 10; ++tenths) {
        const Color mixed = mix(fore, target, tenths / 10.0);
        if (contrast(mixed, back) >= kReadable) return mixed;
    }
    return target;
}

int nearest_palette_color(Color color, int count) noexcept {
    const int first = count >= 256 ? 16 : 0;
    const int end = count >= 256 ? 256 : count >= 16 ? 16 : 8;
    int best = first;
    int best_distance = -1;
    for (int index = first; index < end; ++index) {
        const Color candidate = index < 16 ? kNamedColors[static_cast<std::size_t>(index)] : extended_color(index);
        // Among few colours the nearest one to a grey may be yellow.
        if (is_grey(color) && !is_grey(candidate)) continue;
        const int far = distance(color, candidate);
        if (best_distance < 0 || far < best_distance) {
            best = index;
            best_distance = far;
        }
    }
    return best;
}

int palette_text_color(Color fore, int back, int count) noexcept {
    const int nearest = nearest_palette_color(fore, count);
    if (nearest != back) return nearest;
    const Color background = back < 16 ? kNamedColors[static_cast<std::size_t>(back)] : extended_color(back);
    return nearest_palette_color(luminance(background) > 0.18 ? forms::kBlack : forms::kWhite, count);
}

}  // namespace vex::platform::native::terminal
