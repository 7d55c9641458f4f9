// The file dialog of a form.
#include "forms/common_dialog.h"

#include <utility>

namespace vex::forms {

void CommonDialog::ShowOpen() {
    if (auto chosen = toolkit_.open_file({InitDir, FileName, Filter, Flags})) FileName = std::move(*chosen);
}

}  // namespace vex::forms
