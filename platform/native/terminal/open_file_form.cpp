// The Open dialog as a form of the terminal toolkit.
#include "platform/native/terminal/open_file_form.h"

#include <algorithm>
#include <utility>

#include "core/unicode.h"
#include "forms/toolkit.h"

namespace vex::platform::native::terminal {
namespace {

constexpr std::uint32_t kFileMustExist = 0x1000;
constexpr std::chrono::milliseconds kDoubleClick{500};
constexpr char16_t kParent[] = u"..";

constexpr forms::FormDesign kDesign{.name = "OpenFile", .caption = u"Open", .width = 7000, .height = 3700};

bool is_full_path(std::u16string_view path) noexcept { return path.size() >= 2 && path[1] == u':'; }

std::u16string without_trailing_separators(std::u16string path) {
    while (!path.empty() && path.back() == u'\\') path.pop_back();
    return path;
}

/// The folder that holds `folder`; of a drive: the list of drives.
std::u16string parent_of(const std::u16string& folder) {
    const std::size_t separator = folder.rfind(u'\\');
    return separator == std::u16string::npos ? std::u16string() : folder.substr(0, separator);
}

std::u16string size_text(std::uintmax_t bytes) {
    const std::string text =
        bytes < 10'000 ? std::to_string(bytes) + " B" : std::to_string((bytes + 1023) / 1024) + " KB";
    return std::u16string(text.begin(), text.end());
}

/// The patterns of the first pair of description and patterns.
std::u16string patterns_of(std::u16string_view filter) {
    const std::size_t bar = filter.find(u'|');
    std::u16string_view patterns = bar == std::u16string_view::npos ? std::u16string_view() : filter.substr(bar + 1);
    patterns = patterns.substr(0, patterns.find(u'|'));
    // All names, also those without a dot.
    if (patterns.empty() || patterns == u"*.*") patterns = u"*";
    return std::u16string(patterns);
}

bool matches_one(std::u16string_view name, std::u16string_view pattern) noexcept {
    if (pattern.empty()) return name.empty();
    if (pattern.front() == u'*') {
        for (std::size_t skipped = 0; skipped <= name.size(); ++skipped) {
            if (matches_one(name.substr(skipped), pattern.substr(1))) return true;
        }
        return false;
    }
    if (name.empty()) return false;
    const bool same = pattern.front() == u'?' || to_upper(pattern.front()) == to_upper(name.front());
    return same && matches_one(name.substr(1), pattern.substr(1));
}

}  // namespace

bool matches_pattern(std::u16string_view name, std::u16string_view patterns) noexcept {
    while (true) {
        const std::size_t end = patterns.find(u';');
        if (matches_one(name, patterns.substr(0, end))) return true;
        if (end == std::u16string_view::npos) return false;
        patterns.remove_prefix(end + 1);
    }
}

OpenFileForm::OpenFileForm(forms::Toolkit& toolkit, const Drives& drives, const forms::OpenFileRequest& request)
    : Form(toolkit, kDesign),
      drives_(drives),
      must_exist_((request.flags & kFileMustExist) != 0),
      patterns_(patterns_of(request.filter)),
      first_folder_(without_trailing_separators(request.initial_folder)),
      offered_name_(request.file_name) {
    const std::u16string_view filter_name = std::u16string_view(request.filter).substr(0, request.filter.find(u'|'));
    lstFiles.columns = {{u"Name", 5100}, {u"Size", 1000}};
    lay_out({
        {.control = lblFolder, .name = "lblFolder", .at = {200, 195, 800, 195}, .text = u"Look in:"},
        {.control = lblFolderPath, .name = "lblFolderPath", .at = {1200, 195, 5600, 195}},
        {.control = lstFiles,
         .name = "lstFiles",
         .at = {200, 390, 6600, 2145},
         .tab_index = 0,
         .accessible_name = u"Files and folders"},
        {.control = lblName, .name = "lblName", .at = {200, 2730, 1000, 195}, .text = u"File name:"},
        {.control = txtName,
         .name = "txtName",
         .at = {1300, 2730, 4200, 195},
         .text = request.file_name,
         .tab_index = 1,
         .accessible_name = u"File name"},
        {.control = cmdOpen, .name = "cmdOpen", .at = {5800, 2730, 1000, 195}, .text = u"&Open", .tab_index = 2},
        {.control = lblFilter, .name = "lblFilter", .at = {200, 3120, 1000, 195}, .text = u"Type:"},
        {.control = lblFilterName, .name = "lblFilterName", .at = {1300, 3120, 4200, 195}, .text = filter_name},
        {.control = cmdCancel, .name = "cmdCancel", .at = {5800, 3120, 1000, 195}, .text = u"Cancel", .tab_index = 3},
    });
    cmdOpen.is_default = true;
    cmdCancel.is_cancel = true;
    lstFiles.on_click = [this] { list_click(); };
    cmdOpen.on_click = [this] { open_click(); };
    cmdCancel.on_click = [this] { hide(); };
}

void OpenFileForm::Form_Load() {
    std::u16string folder = first_folder_;
    while (!folder.empty() && !drives_.entries(folder)) folder = parent_of(folder);
    if (folder.empty()) {
        const std::vector<std::u16string> drives = drives_.letters();
        if (!drives.empty()) folder = drives.front();
    }
    show_folder(folder);
    if (!offered_name_.empty()) select_offered_name();
}

void OpenFileForm::select_offered_name() {
    const auto found = std::find_if(entries_.begin(), entries_.end(), [this](const FolderEntry& entry) {
        return !entry.folder && equal_ignoring_case(full_path(entry.name), full_path(offered_name_));
    });
    // Without a selected row, the name counts.
    lstFiles.select(std::nullopt);
    if (found != entries_.end()) lstFiles.select(static_cast<std::size_t>(found - entries_.begin()));
}

void OpenFileForm::add_row(const std::u16string& name, const std::u16string& size) {
    const std::size_t row = lstFiles.add_row({}, name);
    lstFiles.set_sub_item(row, 0, size);
}

void OpenFileForm::show_folder(std::u16string folder) {
    std::vector<FolderEntry> entries;
    if (folder.empty()) {
        for (std::u16string& drive : drives_.letters()) entries.push_back({std::move(drive), true, 0});
    } else {
        auto found = drives_.entries(folder);
        if (!found) return;
        std::copy_if(found->begin(), found->end(), std::back_inserter(entries), [this](const FolderEntry& entry) {
            return entry.folder || matches_pattern(entry.name, patterns_);
        });
        std::sort(entries.begin(), entries.end(), [](const FolderEntry& left, const FolderEntry& right) {
            if (left.folder != right.folder) return left.folder;
            return to_upper(left.name) < to_upper(right.name);
        });
        entries.insert(entries.begin(), FolderEntry{kParent, true, 0});
    }
    folder_ = std::move(folder);
    entries_ = std::move(entries);
    clicked_row_.reset();
    lblFolderPath.set_caption(folder_.empty() ? u"all drives" : folder_);
    lstFiles.clear();
    for (const FolderEntry& entry : entries_) {
        add_row(entry.folder ? entry.name + u"\\" : entry.name, entry.folder ? u"" : size_text(entry.size));
    }
    // Past the way up, where there is anything else.
    if (!entries_.empty()) lstFiles.select(!folder_.empty() && entries_.size() > 1 ? 1 : 0);
}

void OpenFileForm::list_click() {
    const auto row = lstFiles.selected();
    if (!row) return;
    const auto now = std::chrono::steady_clock::now();
    const bool second_click = clicked_row_ == row && now - clicked_at_ < kDoubleClick;
    clicked_row_ = row;
    clicked_at_ = now;
    if (second_click) open_row(*row);
}

void OpenFileForm::open_click() {
    const std::u16string& name = txtName.text();
    const auto row = lstFiles.selected();
    // A name that the user typed goes before the row, and the row before the name that was there.
    if (!name.empty() && (name != offered_name_ || !row)) {
        open_name(name);
    } else if (row) {
        open_row(*row);
    }
}

void OpenFileForm::open_row(std::size_t row) {
    const FolderEntry entry = entries_.at(row);
    if (!entry.folder) {
        choose(full_path(entry.name));
    } else if (entry.name == kParent) {
        show_folder(parent_of(folder_));
    } else {
        show_folder(folder_.empty() ? entry.name : full_path(entry.name));
    }
}

void OpenFileForm::open_name(const std::u16string& name) {
    const std::u16string path = full_path(name);
    const std::u16string folder = without_trailing_separators(path);
    if (drives_.entries(folder)) {
        show_folder(folder);
        txtName.set_text({});
        return;
    }
    choose(path);
}

void OpenFileForm::choose(const std::u16string& path) {
    if (must_exist_ && !drives_.file_exists(path)) {
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
