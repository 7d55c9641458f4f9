// The Open dialog of the terminal: a field for a name or path on the drives of the simulated computer, and the list of
// what fits it.
#include <filesystem>
#include <system_error>
#include <utility>

#include <fnmatch.h>

#include "core/unicode.h"
#include "platform/native/machine.h"
#include "platform/native/terminal/terminal_toolkit.h"
#include "platform/system.h"

namespace vex::platform::native::terminal {
namespace {

using std::u16string;

constexpr std::uint32_t kFileMustExist = 0x1000;
/// Folders are listed with a backslash at the end.
constexpr std::u16string_view kParent = u"..\\";

bool is_full_path(std::u16string_view path) noexcept { return path.size() >= 2 && path[1] == u':'; }

bool is_folder(std::u16string_view name) noexcept { return name.ends_with(u'\\'); }

/// A path's folder, without its trailing backslash, and the name in it.
std::pair<u16string, u16string> split_path(const u16string& path) {
    const std::size_t separator = path.rfind(u'\\');
    if (separator == path.npos) return {{}, path};
    return {path.substr(0, separator), path.substr(separator + 1)};
}

u16string without_trailing_separators(u16string path) {
    while (is_folder(path)) path.pop_back();
    return path;
}

/// Whether a file name fits one of the patterns, joined by ";", in any case.
bool matches(const u16string& name, std::u16string_view patterns) {
    const std::size_t end = patterns.find(u';');
    std::string pattern = vex::to_utf8(patterns.substr(0, end));
    // All names, also those without a dot.
    if (pattern.empty() || pattern == "*.*") pattern = "*";
    if (fnmatch(pattern.c_str(), vex::to_utf8(name).c_str(), FNM_CASEFOLD | FNM_NOESCAPE) == 0) return true;
    return end != patterns.npos && matches(name, patterns.substr(end + 1));
}

/// What the user may see in a folder, folders first; of "": the drives. Nothing when there is no such folder.
std::optional<std::vector<u16string>> names_in(const u16string& folder) {
    std::vector<u16string> names;
    std::error_code error;
    for (char16_t letter = u'A'; folder.empty() && letter <= u'Z'; ++letter) {
        const u16string drive{letter, u':', u'\\'};
        if (!real_path(drive).empty() && std::filesystem::is_directory(real_path(drive), error)) names.push_back(drive);
    }
    if (folder.empty()) return names;
    const u16string in_folder = folder + u"\\";
    const std::filesystem::path real = real_path(in_folder);
    if (!is_full_path(folder) || real.empty() || !std::filesystem::is_directory(real, error)) return std::nullopt;
    // A folder that may not be read shows nothing.
    std::filesystem::directory_iterator file(real, error);
    for (; !error && file != std::filesystem::directory_iterator(); file.increment(error)) {
        std::error_code unreadable;
        const u16string name = from_utf8(file->path().filename().native());
        const bool is_directory = file->is_directory(unreadable);
        if (!is_directory && !ordinary_file_exists(in_folder + name)) continue;
        names.push_back(is_directory ? name + u"\\" : name);
    }
    std::ranges::sort(names, {}, [](const u16string& name) { return std::pair(!is_folder(name), to_upper(name)); });
    return names;
}

/// The list follows what is typed, and the row that is marked there is what Open takes; without one, it takes what the
/// field says. A folder is opened, not answered.
class OpenFileForm final : public forms::Form {
public:
    OpenFileForm(forms::Toolkit& shown_on, const forms::OpenFileRequest& request)
        : Form(shown_on, {.name = "OpenFile", .caption = u"Open", .width = 7000, .height = 3700}),
          must_exist_((request.flags & kFileMustExist) != 0),
          folder_(without_trailing_separators(request.initial_folder)) {
        // The first pair of description and patterns.
        const std::size_t bar = request.filter.find(u'|');
        if (bar != request.filter.npos) {
            patterns_ = request.filter.substr(bar + 1, request.filter.find(u'|', bar + 1) - bar - 1);
        }
        const u16string filter = u"Type:      " + request.filter.substr(0, bar);
        lstFiles.columns = {{u"Name", 6600}};
        lay_out({
            {.control = lblFolder, .name = "lblFolder", .at = {200, 195, 6600, 195}},
            {.control = lblName, .name = "lblName", .at = {200, 585, 1000, 195}, .text = u"File:"},
            {.control = txtName, .name = "txtName", .at = {1200, 585, 5600, 195}, .tab_index = 0},
            {.control = lstFiles, .name = "lstFiles", .at = {200, 975, 6600, 1950}, .tab_index = 1},
            {.control = lblFilter, .name = "lblFilter", .at = {200, 3120, 4200, 195}, .text = filter},
            {.control = cmdOpen, .name = "cmdOpen", .at = {4600, 3120, 1000, 195}, .text = u"&Open", .tab_index = 2},
            {.control = cmdCancel,
             .name = "cmdCancel",
             .at = {5800, 3120, 1000, 195},
             .text = u"Cancel",
             .tab_index = 3},
        });
        cmdOpen.is_default = true;
        cmdCancel.is_cancel = true;
        txtName.on_change = [this] { follow_typing(); };
        // The first click on a row marks it, the next one opens it.
        lstFiles.on_click = [this, clicked = u16string()]() mutable {
            if (std::exchange(clicked, marked()) == marked()) cmdOpen.on_click();
        };
        cmdOpen.on_click = [this] {
            if (marked().ends_with(kParent)) {
                enter(split_path(listed_folder_).first);
            } else if (!marked().empty() || !txtName.text().empty()) {
                open(marked().empty() ? full_path(txtName.text()) : marked());
            }
        };
        cmdCancel.on_click = [this] { hide(); };

        const u16string offered = request.file_name.empty() ? u"" : full_path(request.file_name);
        if (!offered.empty()) folder_ = split_path(offered).first;
        while (!folder_.empty() && !names_in(folder_)) folder_ = split_path(folder_).first;
        const auto drives = names_in({});
        if (folder_.empty() && !drives->empty()) folder_ = without_trailing_separators(drives->front());
        enter(folder_);
        mark([name = split_path(offered).second](const u16string& row) { return equal_ignoring_case(row, name); });
    }

    /// The full path, or nothing when the user cancelled.
    std::optional<u16string> chosen;

private:
    /// Lists what begins with `name` in a folder. False: there is no such folder.
    bool list(const u16string& folder, const u16string& name) {
        auto names = names_in(folder);
        if (!names) return false;
        if (!folder.empty() && name.empty()) names->insert(names->begin(), u16string(kParent));
        listed_folder_ = folder;
        lblFolder.set_caption(u"Folder:    " + (folder.empty() ? u"all drives" : folder + u"\\"));
        lstFiles.clear();
        for (const u16string& row : *names) {
            const bool wanted = is_folder(row) || matches(row, patterns_) || equal_ignoring_case(row, name);
            if (wanted && equal_ignoring_case(row.substr(0, name.size()), name)) lstFiles.add_row({}, row);
        }
        return true;
    }

    /// Marks the first row that is wanted; whether there is one.
    template <class Wanted>
    bool mark(Wanted wanted) {
        const auto& rows = lstFiles.rows();
        const auto found = std::find_if(rows.begin(), rows.end(), [&](const auto& row) { return wanted(row.text); });
        if (found != rows.end()) lstFiles.select(static_cast<std::size_t>(found - rows.begin()));
        return found != rows.end();
    }

    /// The path of the row that is marked; empty where none is.
    u16string marked() const {
        if (!lstFiles.selected()) return {};
        const u16string& name = lstFiles.rows()[*lstFiles.selected()].text;
        return listed_folder_.empty() ? name : listed_folder_ + u"\\" + name;
    }

    void follow_typing() {
        if (txtName.text().empty()) return enter(folder_);
        const auto [folder, name] = split_path(full_path(txtName.text()));
        if (!list(folder, name)) lstFiles.clear();
        lstFiles.select(std::nullopt);
        // The name itself, or the only one that begins with it.
        const bool only = lstFiles.row_count() == 1 && !name.empty();
        mark([&wanted = name, only](const u16string& row) {
            return only || equal_ignoring_case(without_trailing_separators(row), wanted);
        });
    }

    void enter(const u16string& folder) {
        if (!list(folder, {})) return;
        folder_ = folder;
        txtName.set_text({});
        // The first file; otherwise past the way up, where there is anything else.
        mark([](const u16string& row) { return !is_folder(row); }) ||
            mark([](const u16string& row) { return row != kParent; }) || mark([](const u16string&) { return true; });
    }

    void open(const u16string& path) {
        const u16string folder = without_trailing_separators(path);
        if (names_in(folder)) return enter(folder);
        std::error_code error;
        if (must_exist_ && (real_path(path).empty() || !std::filesystem::is_regular_file(real_path(path), error))) {
            const u16string text = path + u"\nFile not found. Check the name and try again.";
            toolkit().message_box({.title = caption(), .text = text});
            return;
        }
        chosen = path;
        hide();
    }

    /// The path of a name in the folder; a path stays as it is.
    u16string full_path(const u16string& name) const {
        if (is_full_path(name) || folder_.empty()) return name;
        return name.front() == u'\\' ? folder_.substr(0, 2) + name : folder_ + u"\\" + name;
    }

    bool must_exist_;
    u16string patterns_;
    /// Without trailing backslash; empty: the list of drives. Typing may lead the list elsewhere.
    u16string folder_;
    u16string listed_folder_;

    forms::Label lblFolder, lblName, lblFilter;
    forms::ListView lstFiles;
    forms::TextBox txtName;
    forms::Button cmdOpen, cmdCancel;
};

}  // namespace

std::optional<u16string> TerminalToolkit::open_file(const forms::OpenFileRequest& request) {
    OpenFileForm form(*this, request);
    form.show_modal();
    return form.chosen;
}

}  // namespace vex::platform::native::terminal
