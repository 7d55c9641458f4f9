// Writing and removing the registration.
#include "plugin/registration.h"

#include <algorithm>
#include <array>
#include <optional>
#include <set>

#include "core/unicode.h"
#include "support/open_registry_key.h"

namespace vex::plugin {
namespace {

using platform::kSuccess;

constexpr platform::RegistryKey kRoot = platform::registry_key(platform::kHkeyClassesRoot);

std::string key_path(const RegistrationBranch& branch, const std::string& path) {
    return path.empty() ? branch.key : branch.key + "\\" + path;
}

/// All keys of a branch, those further down first.
std::vector<std::string> keys_of(const RegistrationBranch& branch) {
    std::set<std::string> keys{branch.key};
    for (const RegistrationValue& value : branch.values) {
        for (std::string key = key_path(branch, value.path); key.size() > branch.key.size();
             key.resize(key.find_last_of('\\'))) {
            keys.insert(key);
        }
    }
    // A key sorts before what stands below it.
    return {keys.rbegin(), keys.rend()};
}

bool write_value(platform::Registry& registry, const std::string& path, const RegistrationValue& value) {
    OpenRegistryKey key(registry);
    if (registry.create_key(kRoot, path.c_str(), "", platform::kKeyWrite, {}, key.receive()) != kSuccess) return false;
    return registry.set_value(key.get(), value.name.c_str(), platform::kRegSz,
                              reinterpret_cast<const std::uint8_t*>(value.data.c_str()),
                              static_cast<std::uint32_t>(value.data.size() + 1)) == kSuccess;
}

void delete_value(platform::Registry& registry, const std::string& path, const std::string& name) {
    OpenRegistryKey key(registry);
    if (key.open(kRoot, path, platform::kKeyWrite) == kSuccess) registry.delete_value(key.get(), name.c_str());
}

bool exists(platform::Registry& registry, const std::string& path) {
    OpenRegistryKey key(registry);
    return key.open(kRoot, path, platform::kKeyRead) == kSuccess;
}

/// Whether a key that exists holds neither values nor keys.
bool is_empty(platform::Registry& registry, const std::string& path) {
    OpenRegistryKey key(registry);
    if (key.open(kRoot, path, platform::kKeyRead) != kSuccess) return false;
    std::array<char, 260> name{};
    auto length = static_cast<std::uint32_t>(name.size());
    if (registry.enum_key(key.get(), 0, name.data(), length) != platform::kNoMoreItems) return false;
    std::uint32_t type = 0;
    std::uint32_t size = 0;
    length = static_cast<std::uint32_t>(name.size());
    return registry.enum_value(key.get(), 0, name.data(), length, type, nullptr, size) == platform::kNoMoreItems;
}

/// The text of a key's default value; nothing when there is no such value, and the empty text when it is no text
/// or longer than an identity or a path.
std::optional<std::string> default_text(platform::Registry& registry, const std::string& path) {
    OpenRegistryKey key(registry);
    if (key.open(kRoot, path, platform::kKeyRead) != kSuccess) return std::nullopt;
    std::array<char, 1024> text{};
    auto size = static_cast<std::uint32_t>(text.size() - 1);
    std::uint32_t type = 0;
    const auto result = registry.query_value(key.get(), "", type, reinterpret_cast<std::uint8_t*>(text.data()), size);
    if (result == platform::kFileNotFound) return std::nullopt;
    return result == kSuccess && type == platform::kRegSz ? std::string(text.data()) : std::string();
}

/// Whether someone else has made this branch theirs.
bool is_foreign(platform::Registry& registry, const RegistrationBranch& branch) {
    if (branch.owner_path.empty()) return false;
    const auto owner = default_text(registry, key_path(branch, branch.owner_path));
    return owner && !equal_ignoring_case(from_utf8(*owner), from_utf8(branch.owner));
}

}  // namespace

std::vector<RegistrationBranch> Registration::branches() const {
    return registration_branches(code_page_.to_ansi(module_path_), type_library_platform_);
}

bool Registration::belongs_to_another_copy() const {
    const auto names_another = [this](const std::string& key) {
        const std::u16string path = code_page_.from_ansi(default_text(registry_, key).value_or(std::string()));
        return !equal_ignoring_case(path, module_path_) && files_.ordinary_file_exists(path);
    };
    const std::vector<std::string> keys = server_keys();
    return std::any_of(keys.begin(), keys.end(), names_another);
}

HRESULT Registration::write() const {
    for (const RegistrationBranch& branch : branches()) {
        for (const RegistrationValue& value : branch.values) {
            if (!write_value(registry_, key_path(branch, value.path), value)) return branch.failure;
        }
    }
    return S_OK;
}

HRESULT Registration::remove() const {
    if (belongs_to_another_copy()) return SELFREG_E_CLASS;
    HRESULT result = S_OK;
    for (const RegistrationBranch& branch : branches()) {
        if (!is_foreign(registry_, branch)) {
            for (const RegistrationValue& value : branch.values) {
                delete_value(registry_, key_path(branch, value.path), value.name);
            }
            for (const std::string& key : keys_of(branch)) {
                if (is_empty(registry_, key)) registry_.delete_key(kRoot, key.c_str());
            }
        }
        // The first failure is told, as the caller can be given only one.
        if (result == S_OK && exists(registry_, branch.key)) result = branch.failure;
    }
    return result;
}

}  // namespace vex::plugin
