// The simulated computer's ANSI code page: Windows-1252.
#pragma once

#include "platform/code_page.h"

namespace vex::platform::native {

/// One byte for each character. The five bytes without a character stand for the control characters of the
/// same number, as on Windows, so that every byte survives both ways. What the page cannot hold becomes
/// "?", once for each half of a surrogate pair.
class CodePage1252 final : public CodePage {
public:
    std::string to_ansi(std::u16string_view text) const override;
    std::u16string from_ansi(std::string_view bytes) const override;
};

}  // namespace vex::platform::native
