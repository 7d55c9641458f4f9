// The Open dialog of the terminal: a field for a name or path, and the list of what fits it.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "forms/form.h"

namespace vex::platform::native::terminal {

/// Shows the drives of the simulated computer. The list follows what is typed, and the row that is marked there is
/// what Open takes; without one, it takes what the field says. A folder is opened, not answered.
class OpenFileForm final : public forms::Form {
public:
    OpenFileForm(forms::Toolkit& toolkit, const forms::OpenFileRequest& request);

    /// The full path, or nothing when the user cancelled.
    const std::optional<std::u16string>& chosen() const noexcept { return chosen_; }

protected:
    void Form_Load() override;

private:
    struct Entry {
        std::u16string name;
        bool folder = false;
    };

    static std::optional<std::vector<Entry>> entries(const std::u16string& folder);
    /// Lists what begins with `name` in a folder, in which the dialog is from now on. False: there is no such folder.
    bool list(const std::u16string& folder, const std::u16string& name);
    void follow_typing();
    void enter(const std::u16string& folder);
    void open(const std::u16string& path);
    /// The path of a name in the folder; a path stays as it is.
    std::u16string full_path(const std::u16string& name) const;

    bool must_exist_;
    std::u16string patterns_;
    /// Without trailing backslash; empty: the list of drives. Typing may lead the list elsewhere.
    std::u16string folder_;
    std::u16string listed_folder_;
    std::u16string offered_path_;
    std::vector<Entry> entries_;
    std::optional<std::u16string> chosen_;

    forms::Label lblFolder, lblFolderPath, lblName, lblFilter, lblFilterName;
    forms::ListView lstFiles;
    forms::TextBox txtName;
    forms::Button cmdOpen, cmdCancel;
};

}  // namespace vex::platform::native::terminal
