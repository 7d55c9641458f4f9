// The Open dialog of the terminal.
#include "platform/native/terminal/open_file_form.h"

#include <algorithm>
#include <filesystem>
#include <system_error>
#include <tuple>
#include <utility>

#include <fnmatch.h>

#include "core/unicode.h"
#include "forms/toolkit.h"
#include "platform/native/machine.h"

namespace vex::platform::native::terminal {
namespace {

constexpr std::uint32_t kFileMustExist = 0x1000;
constexpr std::u16string_view kParent = u"..";

bool is_full_path(std::u16string_view path) noexcept { return path.size() >= 2 && path[1] == u':'; }

/// A path's folder, without its trailing backslash, and the name in it.
std::pair<std::u16string, std::u16string> split_path(const std::u16string& path) {
    const std::size_t separator = path.rfind(u'\\');
    if (separator == path.npos) return {{}, path};
    return {path.substr(0, separator), path.substr(separator + 1)};
}

std::u16string without_trailing_separators(std::u16string path) {
    while (!path.empty() && path.back() == u'\\') path.pop_back();
    return path;
}

/// Whether a file name fits one of the patterns, joined by ";", in any case.
bool matches(const std::u16string& name, std::u16string_view patterns) {
    const std::size_t end = patterns.find(u';');
    std::string pattern = to_utf8(patterns.substr(0, end));
    // All names, also those without a dot.
    if (pattern.empty() || pattern == "*.*") pattern = "*";
    if (fnmatch(pattern.c_str(), to_utf8(name).c_str(), FNM_CASEFOLD | FNM_NOESCAPE) == 0) return true;
    return end != patterns.npos && matches(name, patterns.substr(end + 1));
}

bool begins_with(std::u16string_view text, std::u16string_view beginning) {
    return equal_ignoring_case(text.substr(0, beginning.size()), beginning);
}

}  // namespace

OpenFileForm::OpenFileForm(forms::Toolkit& toolkit, const forms::OpenFileRequest& request)
    : Form(toolkit, {.name = "OpenFile", .caption = u"Open", .width = 7000, .height = 3700}),
      must_exist_((request.flags & kFileMustExist) != 0),
      folder_(without_trailing_separators(request.initial_folder)),
      offered_path_(request.file_name.empty() ? u"" : full_path(request.file_name)) {
    // The first pair of description and patterns.
    const std::size_t bar = request.filter.find(u'|');
    if (bar != request.filter.npos) {
        patterns_ = request.filter.substr(bar + 1, request.filter.find(u'|', bar + 1) - bar - 1);
    }
    lstFiles.columns = {{u"Name", 6600}};
    lay_out({
        {.control = lblFolder, .name = "lblFolder", .at = {200, 195, 1000, 195}, .text = u"Folder:"},
        {.control = lblFolderPath, .name = "lblFolderPath", .at = {1300, 195, 5500, 195}},
        {.control = lblName, .name = "lblName", .at = {200, 585, 1000, 195}, .text = u"File:"},
        {.control = txtName,
         .name = "txtName",
         .at = {1300, 585, 5500, 195},
         .tab_index = 0,
         .accessible_name = u"File name or path"},
        {.control = lstFiles,
         .name = "lstFiles",
         .at = {200, 975, 6600, 1950},
         .tab_index = 1,
         .accessible_name = u"Files and folders"},
        {.control = lblFilter, .name = "lblFilter", .at = {200, 3120, 1000, 195}, .text = u"Type:"},
        {.control = lblFilterName,
         .name = "lblFilterName",
         .at = {1300, 3120, 3000, 195},
         .text = std::u16string_view(request.filter).substr(0, bar)},
        {.control = cmdOpen, .name = "cmdOpen", .at = {4600, 3120, 1000, 195}, .text = u"&Open", .tab_index = 2},
        {.control = cmdCancel, .name = "cmdCancel", .at = {5800, 3120, 1000, 195}, .text = u"Cancel", .tab_index = 3},
    });
    cmdOpen.is_default = true;
    cmdCancel.is_cancel = true;
    txtName.on_change = [this] { follow_typing(); };
    // The first click on a row marks it, the next one opens it.
    lstFiles.on_click = [this, clicked = std::u16string()]() mutable {
        if (!lstFiles.selected()) return;
        const std::u16string path = listed_folder_ + u"\\" + entries_.at(*lstFiles.selected()).name;
        if (std::exchange(clicked, path) == path) cmdOpen.on_click();
    };
    cmdOpen.on_click = [this] {
        const auto row = lstFiles.selected();
        if (row && entries_.at(*row).name == kParent) {
            enter(split_path(listed_folder_).first);
        } else if (row) {
            open(listed_folder_.empty() ? entries_[*row].name : listed_folder_ + u"\\" + entries_[*row].name);
        } else if (!txtName.text().empty()) {
            open(full_path(txtName.text()));
        }
    };
    cmdCancel.on_click = [this] { hide(); };
}

void OpenFileForm::Form_Load() {
    const auto [offered_folder, offered_name] = split_path(offered_path_);
    if (!offered_name.empty()) folder_ = offered_folder;
    while (!folder_.empty() && !entries(folder_)) folder_ = split_path(folder_).first;
    if (folder_.empty()) {
        const auto drives = entries({});
        if (!drives->empty()) folder_ = drives->front().name;
    }
    enter(folder_);
    const auto found = std::find_if(entries_.begin(), entries_.end(), [&name = offered_name](const Entry& entry) {
        return equal_ignoring_case(entry.name, name);
    });
    if (found != entries_.end()) lstFiles.select(static_cast<std::size_t>(found - entries_.begin()));
}

std::optional<std::vector<OpenFileForm::Entry>> OpenFileForm::entries(const std::u16string& folder) {
    std::vector<Entry> found;
    std::error_code error;
    if (folder.empty()) {
        for (char16_t letter = u'A'; letter <= u'Z'; ++letter) {
            const std::u16string drive{letter, u':'};
            const std::filesystem::path root = real_path(drive + u"\\");
            if (!root.empty() && std::filesystem::is_directory(root, error)) found.push_back({drive, true});
        }
        return found;
    }
    const std::filesystem::path real = real_path(folder + u"\\");
    if (!is_full_path(folder) || real.empty() || !std::filesystem::is_directory(real, error)) return std::nullopt;
    // A folder that may not be read shows nothing.
    std::filesystem::directory_iterator file(real, error);
    for (; !error && file != std::filesystem::directory_iterator(); file.increment(error)) {
        std::error_code unreadable;
        Entry entry{from_utf8(file->path().filename().native()), file->is_directory(unreadable)};
        if (!entry.folder && !files().ordinary_file_exists(folder + u"\\" + entry.name)) continue;
        found.push_back(std::move(entry));
    }
    std::sort(found.begin(), found.end(), [](const Entry& left, const Entry& right) {
        return std::tuple(!left.folder, to_upper(left.name)) < std::tuple(!right.folder, to_upper(right.name));
    });
    return found;
}

bool OpenFileForm::list(const std::u16string& folder, const std::u16string& name) {
    auto found = entries(folder);
    if (!found) return false;
    std::erase_if(*found, [&](const Entry& entry) {
        const bool wanted = entry.folder || matches(entry.name, patterns_) || equal_ignoring_case(entry.name, name);
        return !wanted || !begins_with(entry.name, name);
    });
    if (!folder.empty() && name.empty()) found->insert(found->begin(), {std::u16string(kParent), true});
    entries_ = *std::move(found);
    listed_folder_ = folder;
    lblFolderPath.set_caption(folder.empty() ? u"all drives" : folder + u"\\");
    lstFiles.clear();
    for (const Entry& entry : entries_) {
        lstFiles.add_row({}, entry.folder ? entry.name + u"\\" : entry.name);
    }
    return true;
}

void OpenFileForm::follow_typing() {
    const std::u16string& typed = txtName.text();
    if (typed.empty()) return enter(folder_);
    const auto [folder, name] = split_path(full_path(typed));
    if (!list(folder, name)) {
        entries_.clear();
        lstFiles.clear();
    }
    // Marked is what Open takes: the name itself, or the only one that begins with it.
    const auto exact = std::find_if(entries_.begin(), entries_.end(), [&wanted = name](const Entry& entry) {
        return equal_ignoring_case(entry.name, wanted);
    });
    lstFiles.select(std::nullopt);
    if (exact != entries_.end()) {
        lstFiles.select(static_cast<std::size_t>(exact - entries_.begin()));
    } else if (entries_.size() == 1 && !name.empty()) {
        lstFiles.select(0);
    }
}

void OpenFileForm::enter(const std::u16string& folder) {
    if (!list(folder, {})) return;
    folder_ = folder;
    if (!txtName.text().empty()) txtName.set_text({});
    // The first file, where there is one; otherwise past the way up.
    const auto file = std::find_if(entries_.begin(), entries_.end(), [](const Entry& entry) { return !entry.folder; });
    const auto first = file != entries_.end() ? static_cast<std::size_t>(file - entries_.begin())
                                              : std::min<std::size_t>(folder.empty() ? 0 : 1, entries_.size() - 1);
    if (!entries_.empty()) lstFiles.select(first);
}

void OpenFileForm::open(const std::u16string& path) {
    const std::u16string folder = without_trailing_separators(path);
    if (entries(folder)) return enter(folder);
    std::error_code error;
    const std::filesystem::path real = real_path(path);
    if (must_exist_ && (real.empty() || !std::filesystem::is_regular_file(real, error))) {
        toolkit().message_box({.title = caption(), .text = path + u"\nFile not found. Check the name and try again."});
        return;
    }
    chosen_ = path;
    hide();
}

std::u16string OpenFileForm::full_path(const std::u16string& name) const {
    if (is_full_path(name) || folder_.empty()) return name;
    if (name.front() == u'\\') return folder_.substr(0, 2) + name;
    return folder_ + u"\\" + name;
}

}  // namespace vex::platform::native::terminal
