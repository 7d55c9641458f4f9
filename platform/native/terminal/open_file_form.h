// The Open dialog as a form of the terminal toolkit.
#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <vector>

#include "forms/form.h"
#include "platform/native/terminal/drives.h"

namespace vex::platform::native::terminal {

/// Whether a file name fits one of the patterns ("*" and "?", several joined by ";"), in any case.
bool matches_pattern(std::u16string_view name, std::u16string_view patterns) noexcept;

/// Shows one folder at a time. A name that is typed goes before the row that is selected; it may be a path,
/// and a folder is opened, not answered.
class OpenFileForm final : public forms::Form {
public:
    OpenFileForm(forms::Toolkit& toolkit, const Drives& drives, const forms::OpenFileRequest& request);

    /// The full path, or nothing when the user cancelled.
    const std::optional<std::u16string>& chosen() const noexcept { return chosen_; }

protected:
    void Form_Load() override;

private:
    void show_folder(std::u16string folder);
    void select_offered_name();
    void add_row(const std::u16string& name, const std::u16string& size);
    void list_click();
    void open_click();
    void open_row(std::size_t row);
    void open_name(const std::u16string& name);
    void choose(const std::u16string& path);
    /// Its place in the list's folder, where it is not a full path itself.
    std::u16string full_path(const std::u16string& name) const;

    const Drives& drives_;
    bool must_exist_;
    std::u16string patterns_;
    /// Without trailing backslash; empty: the list of drives.
    std::u16string folder_;
    std::u16string first_folder_;
    /// What the list shows, row by row.
    std::vector<FolderEntry> entries_;
    /// The name that the program put into the box.
    std::u16string offered_name_;
    std::optional<std::u16string> chosen_;
    std::optional<std::size_t> clicked_row_;
    std::chrono::steady_clock::time_point clicked_at_;

    forms::Label lblFolder, lblFolderPath, lblName, lblFilter, lblFilterName;
    forms::ListView lstFiles;
    forms::TextBox txtName;
    forms::Button cmdOpen, cmdCancel;
};

}  // namespace vex::platform::native::terminal
