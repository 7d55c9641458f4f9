// Colours on a terminal: the dialogs' look, contrast, and the nearest colour of a palette.
#pragma once

#include "forms/controls.h"

namespace vex::platform::native::terminal {

/// The colours of everything that a form does not colour itself.
namespace look {
inline constexpr forms::Color kDesktop = forms::rgb(0, 72, 88);
inline constexpr forms::Color kDesktopText = forms::rgb(208, 224, 224);
inline constexpr forms::Color kFace = forms::rgb(208, 208, 208);
inline constexpr forms::Color kText = forms::kBlack;
inline constexpr forms::Color kFaint = forms::rgb(112, 112, 112);
inline constexpr forms::Color kTitle = forms::rgb(0, 0, 135);
inline constexpr forms::Color kTitleText = forms::kWhite;
inline constexpr forms::Color kIdleTitle = forms::rgb(112, 112, 112);
inline constexpr forms::Color kField = forms::kWhite;
inline constexpr forms::Color kHeader = forms::rgb(176, 176, 176);
inline constexpr forms::Color kButton = forms::rgb(176, 176, 176);
inline constexpr forms::Color kFocus = forms::rgb(0, 95, 175);
inline constexpr forms::Color kFocusText = forms::kWhite;
}  // namespace look

/// WCAG contrast of two colours, 1 (none) to 21.
double contrast(forms::Color left, forms::Color right) noexcept;

/// `fore`, made darker or lighter as far as it needs to be read on `back`: the dialogs' colours were
/// chosen for thick letters on white.
forms::Color readable_on(forms::Color fore, forms::Color back) noexcept;

/// The nearest of a terminal's first `count` colours (8, 16 or 256, in their usual order).
int nearest_palette_color(forms::Color color, int count) noexcept;
/// A palette colour for text in `fore` on `back` (also a palette colour) that differs from it.
int palette_text_color(forms::Color fore, int back, int count) noexcept;

}  // namespace vex::platform::native::terminal
