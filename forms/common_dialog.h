// The file dialog of a form: keeps its settings and the chosen name between uses.
#pragma once

#include <cstdint>
#include <string>

#include "forms/toolkit.h"

namespace vex::forms {

class CommonDialog {
public:
    explicit CommonDialog(Toolkit& toolkit) noexcept : toolkit_(toolkit) {}

    std::u16string InitDir;
    /// Description, bar, pattern.
    std::u16string Filter;
    std::uint32_t Flags = 0;
    /// The full path chosen last; the initial name of the next use.
    std::u16string FileName;

    /// Shows the Open dialog. Cancelling is no error: the file name stays as it was.
    void ShowOpen();

private:
    Toolkit& toolkit_;
};

}  // namespace vex::forms
