// Expansion of %NAME% from the process's environment.
#include "platform/native/registry_environment.h"

#include <unistd.h>

#include <optional>

#include "core/unicode.h"

namespace vex::platform::native {
namespace {

std::optional<std::u16string> variable(std::u16string_view name) {
    if (name.empty()) return std::nullopt;
    for (char** each = environ; each != nullptr && *each != nullptr; ++each) {
        const std::string_view entry = *each;
        const std::size_t equals = entry.find('=');
        if (equals == std::string_view::npos || !equal_ignoring_case(from_utf8(entry.substr(0, equals)), name))
            continue;
        return from_utf8(entry.substr(equals + 1));
    }
    return std::nullopt;
}

}  // namespace

std::u16string expand_environment(std::u16string_view text) {
    std::u16string result;
    while (!text.empty()) {
        const std::size_t start = text.find(u'%');
        if (start == std::u16string_view::npos) break;
        const std::size_t end = text.find(u'%', start + 1);
        if (end == std::u16string_view::npos) break;
        result += text.substr(0, start);
        if (const auto value = variable(text.substr(start + 1, end - start - 1))) {
            result += *value;
            text.remove_prefix(end + 1);
        } else {
            // The second sign may begin another variable.
            result += text.substr(start, end - start);
            text.remove_prefix(end);
        }
    }
    return result.append(text);
}

}  // namespace vex::platform::native
