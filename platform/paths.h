// Drive-letter paths: which of them name one file for certain, and what they are made of.
#pragma once

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

namespace vex::platform {

constexpr bool is_separator(char16_t character) noexcept { return character == u'\\' || character == u'/'; }

/// Whether `path` names its drive or its server and goes on from the root, so that neither the current folder
/// nor a search path has a say in which file it is. A null would end it early for the system: none either.
constexpr bool is_full_path(std::u16string_view path) noexcept {
    if (path.size() < 3 || path.find(u'\0') != std::u16string_view::npos) return false;
    const bool server = is_separator(path[0]) && is_separator(path[1]);
    const bool drive = ((path[0] >= u'A' && path[0] <= u'Z') || (path[0] >= u'a' && path[0] <= u'z')) &&
                       path[1] == u':' && is_separator(path[2]);
    return server || drive;
}

/// The names of a path below its drive, in order. "." and ".." are resolved; ".." stops at the drive's root.
inline std::vector<std::u16string> path_names(std::u16string_view path) {
    std::vector<std::u16string> names;
    while (!path.empty()) {
        const auto end = std::find_if(path.begin(), path.end(), is_separator);
        const std::u16string_view name = path.substr(0, static_cast<std::size_t>(end - path.begin()));
        path.remove_prefix(std::min(path.size(), name.size() + 1));
        if (name == u"..") {
            if (!names.empty()) names.pop_back();
        } else if (!name.empty() && name != u".") {
            names.emplace_back(name);
        }
    }
    return names;
}

}  // namespace vex::platform
