// The simulated computer's drives, which are folders of the real file system under drive letters, and its programs,
// which are told of and never started for real.
#include <algorithm>
#include <fstream>
#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

#include "core/unicode.h"
#include "platform/native/machine.h"
#include "platform/paths.h"
#include "platform/private_files.h"
#include "platform/system.h"

namespace vex::platform {
namespace native {
namespace {

namespace fs = std::filesystem;

constexpr char kHiddenList[] = ".hidden";

/// The entry of `folder` with this name in this or another case. The name as given when there is none.
fs::path entry(const fs::path& folder, const std::u16string& name) {
    fs::path exact = folder / to_utf8(name);
    std::error_code error;
    if (fs::symlink_status(exact, error).type() != fs::file_type::not_found) return exact;
    fs::path best;
    for (fs::directory_iterator it(folder, error), end; !error && it != end; it.increment(error)) {
        const fs::path& candidate = it->path();
        if (!equal_ignoring_case(from_utf8(candidate.filename().native()), name)) continue;
        // A folder lists its entries in any order; the answer should not depend on it.
        if (best.empty() || candidate < best) best = candidate;
    }
    return best.empty() ? exact : best;
}

std::vector<std::string> read_hidden_names(const fs::path& folder) {
    std::vector<std::string> names;
    std::ifstream list(folder / kHiddenList);
    for (std::string line; std::getline(list, line);) names.push_back(line);
    return names;
}

bool is_hidden(const fs::path& file) {
    const std::string name = file.filename().native();
    if (name.starts_with('.')) return true;
    return std::ranges::count(read_hidden_names(file.parent_path()), name) > 0;
}

/// Told of programs that start.
std::function<void(const std::u16string&)> program_listener;

}  // namespace

fs::path real_path(const std::u16string& path) {
    if (path.size() < 2 || path[1] != u':' || path.find(u'\0') != std::u16string::npos) return {};
    const char16_t letter = to_upper(path[0]);
    if (letter < u'A' || letter > u'Z') return {};

    fs::path file;
    if (letter == u'Z') {
        file = "/";
    } else {
        if (machine_folder().empty()) return {};
        file = machine_folder() / (std::string("drive_") + static_cast<char>(letter - u'A' + u'a'));
        std::error_code error;
        if (!fs::is_directory(file, error)) return {};
    }
    for (const std::u16string& name : path_names(std::u16string_view(path).substr(2))) file = entry(file, name);
    return file;
}

std::u16string drive_path(const fs::path& file) {
    const fs::path whole = fs::absolute(file).lexically_normal();
    std::u16string result = u"Z:";
    fs::path rest = whole.relative_path();
    const fs::path in_machine = whole.lexically_relative(machine_folder());
    const std::string first = in_machine.empty() ? "" : in_machine.begin()->native();
    if (first.starts_with("drive_") && first.size() == 7 && first[6] >= 'a' && first[6] < 'z') {
        result[0] = static_cast<char16_t>(first[6] - 'a' + u'A');
        rest = in_machine.lexically_relative(first);
    }
    for (const fs::path& name : rest) {
        if (!name.empty() && name != ".") result += u'\\' + from_utf8(name.native());
    }
    if (result.size() == 2) result += u'\\';
    return result;
}

void hide(const std::u16string& path) {
    const fs::path file = real_path(path);
    std::string list;
    for (const std::string& name : read_hidden_names(file.parent_path())) list += name + '\n';
    replace_private_file(file.parent_path() / kHiddenList, list + file.filename().native() + '\n');
}

void on_program_started(std::function<void(const std::u16string&)> listener) { program_listener = std::move(listener); }

}  // namespace native

bool ordinary_file_exists(const std::u16string& path) {
    if (!is_full_path(path) || is_separator(path.back())) return false;
    const std::filesystem::path file = native::real_path(path);
    std::error_code error;
    return !file.empty() && std::filesystem::is_regular_file(file, error) && !native::is_hidden(file);
}

bool start_program(const std::u16string& path) {
    if (!is_full_path(path)) return false;
    std::error_code error;
    if (!std::filesystem::is_regular_file(native::real_path(path), error)) return false;
    if (native::program_listener) native::program_listener(path);
    return true;
}

}  // namespace vex::platform
