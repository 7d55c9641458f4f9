// Twips to pixels and back, at the screen's resolution.
#pragma once

#include "forms/controls.h"
#include "platform/win32/windows_api.h"

namespace vex::platform::win32 {

/// Edges are rounded, not sizes, so that what touches in twips touches in pixels.
class Scale {
public:
    /// Dots per inch.
    Scale(int horizontal, int vertical) noexcept : horizontal_(horizontal), vertical_(vertical) {}

    int x(forms::Twips twips) const noexcept { return rounded(twips, horizontal_, kTwipsPerInch); }
    int y(forms::Twips twips) const noexcept { return rounded(twips, vertical_, kTwipsPerInch); }
    forms::Twips twips_x(int pixels) const noexcept { return rounded(pixels, kTwipsPerInch, horizontal_); }
    forms::Twips twips_y(int pixels) const noexcept { return rounded(pixels, kTwipsPerInch, vertical_); }
    /// The character height, without the internal leading, of a size in points.
    int font_height(double points) const noexcept {
        // NOLINTNEXTLINE(bugprone-incorrect-roundings): sizes are positive and small, and need no library to round
        return rounded(static_cast<int>(points * kTwipsPerPoint + 0.5), vertical_, kTwipsPerInch);
    }

private:
    static constexpr int kTwipsPerInch = 1440;
    static constexpr int kTwipsPerPoint = 20;

    static int rounded(int value, int numerator, int denominator) noexcept {
        return MulDiv(value, numerator, denominator);
    }

    int horizontal_;
    int vertical_;
};

}  // namespace vex::platform::win32
