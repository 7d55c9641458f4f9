// A registry in memory and in its file, kept the same.
#include "platform/native/registry_store.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <system_error>
#include <utility>

#include "core/unicode.h"
#include "platform/private_files.h"

namespace vex::platform::native {
namespace {

constexpr std::u16string_view kRoots[] = {u"HKEY_CURRENT_CONFIG", u"HKEY_CURRENT_USER", u"HKEY_LOCAL_MACHINE",
                                          u"HKEY_USERS"};

/// What a new file begins with, behind the first line.
constexpr std::string_view kPreamble =
    "; The registry of a simulated computer. It may be edited at any time; comments go with the next change.\n";

[[noreturn]] void fail(const std::filesystem::path& path) {
    throw std::system_error(errno, std::generic_category(), path.native());
}

bool is_absent(int reason) { return reason == ENOENT || reason == ENOTDIR; }

bool lies_below(std::u16string_view path, std::u16string_view above) {
    return path.size() > above.size() && path[above.size()] == u'\\' &&
           equal_ignoring_case(path.substr(0, above.size()), above);
}

/// Limits as on Windows, a root that there is, and what can stand on one line between brackets.
void require_possible(std::u16string_view path) {
    constexpr std::size_t kLongestName = 255;
    constexpr int kMostNames = 512;
    const std::u16string_view root = take_name(path);
    if (std::ranges::none_of(kRoots, [root](auto known) { return equal_ignoring_case(root, known); })) {
        throw std::invalid_argument("a key below HKEY_LOCAL_MACHINE or another root is expected");
    }
    int names = 0;
    for (auto name = take_name(path); !name.empty(); name = take_name(path)) {
        if (name.size() > kLongestName) throw std::invalid_argument("a name of at most 255 characters is expected");
        if (std::ranges::any_of(name, [](char16_t c) { return c < u' '; })) {
            throw std::invalid_argument("a key's name without control characters is expected");
        }
        if (++names > kMostNames) throw std::invalid_argument("a key that is at most 512 keys deep is expected");
    }
}

}  // namespace

// ---- The keys -----------------------------------------------------------------------------------------

bool NameOrder::operator()(std::u16string_view left, std::u16string_view right) const noexcept {
    const auto rank = [](char16_t character) { return character == u'\\' ? u'\0' : to_upper(character); };
    // Most paths begin alike, and are spelled alike so far.
    const auto [from_left, from_right] = std::ranges::mismatch(left, right);
    return std::ranges::lexicographical_compare(from_left, left.end(), from_right, right.end(), {}, rank, rank);
}

std::u16string path_below(std::u16string_view above, std::u16string_view path) {
    std::u16string result(above);
    for (auto name = take_name(path); !name.empty(); name = take_name(path)) {
        result += u'\\';
        result += name;
    }
    return result;
}

std::shared_ptr<RegistryValues> RegistryKeys::find(std::u16string_view path) const {
    const auto found = keys_.find(path);
    return found == keys_.end() ? nullptr : found->second;
}

std::shared_ptr<RegistryValues> RegistryKeys::create(std::u16string_view path) {
    require_possible(path);
    // From its root down. What is there keeps the case in which it came first.
    std::u16string made;
    auto key = keys_.end();
    while (!path.empty()) {
        if (!made.empty()) made += u'\\';
        made += take_name(path);
        key = keys_.try_emplace(made, std::make_shared<RegistryValues>()).first;
        made = key->first;
    }
    return key->second;
}

std::optional<std::u16string> RegistryKeys::name_below(std::u16string_view path, std::uint32_t index) const {
    const std::size_t start = path.size() + 1;
    for (auto key = keys_.upper_bound(path); key != keys_.end() && lies_below(key->first, path); ++key) {
        const bool right_below = key->first.find(u'\\', start) == std::u16string::npos;
        if (right_below && index-- == 0) return key->first.substr(start);
    }
    return std::nullopt;
}

bool RegistryKeys::is_permanent(std::u16string_view path) noexcept {
    return path.find(u'\\') == path.npos || equal_ignoring_case(path, kClassesPath);
}

void RegistryKeys::remove(std::u16string_view path) {
    const auto first = keys_.lower_bound(path);
    const auto last = std::find_if_not(first, keys_.end(), [path](const auto& key) {
        return equal_ignoring_case(key.first, path) || lies_below(key.first, path);
    });
    keys_.erase(first, last);
    create_permanent_keys();
}

void RegistryKeys::create_permanent_keys() {
    for (const std::u16string_view root : kRoots) create(root);
    create(kClassesPath);
}

void RegistryKeys::apply(const std::vector<RegistrySection>& sections) {
    for (const RegistrySection& section : sections) {
        std::u16string_view rest = section.path;
        const std::u16string_view root = take_name(rest);
        const std::u16string path =
            path_below(equal_ignoring_case(root, u"HKEY_CLASSES_ROOT") ? kClassesPath : root, rest);
        try {
            require_possible(path);
        } catch (const std::invalid_argument& fault) {
            throw RegistryDamage(section.line, fault.what());
        }
        if (section.deleted) {
            remove(path);
            continue;
        }
        RegistryValues& values = *create(path);
        for (const auto& [name, value] : section.entries) {
            if (value) {
                values[name] = *value;
            } else {
                values.erase(name);
            }
        }
    }
}

void RegistryKeys::take(RegistryKeys& fresh) {
    for (auto& [path, values] : fresh.keys_) {
        if (auto known = find(path)) {
            known->swap(*values);
            values = std::move(known);
        }
    }
    keys_.swap(fresh.keys_);
}

std::string RegistryKeys::text() const {
    std::string text(kRegistryHeader);
    text += kPreamble;
    for (const auto& [path, values] : keys_) {
        // A key above others is told of by them, and one that always exists by nobody.
        const bool untold = !is_permanent(path) && !name_below(path, 0);
        if (!values->empty() || untold) append_key(text, path);
        for (const auto& [name, value] : *values) append_value(text, name, value);
    }
    return text;
}

// ---- The file -----------------------------------------------------------------------------------------

RegistryStore::Stamp RegistryStore::stamp_of(const struct ::stat& status) noexcept {
    return {status.st_dev, status.st_ino, status.st_size, status.st_mtim.tv_sec, status.st_mtim.tv_nsec};
}

RegistryStore::File RegistryStore::open(const std::filesystem::path& path, int flags) {
    const int descriptor = ::open(path.c_str(), flags | O_RDONLY | O_CLOEXEC | O_NOFOLLOW, S_IRUSR | S_IWUSR);
    return File(descriptor < 0 ? nullptr : ::fdopen(descriptor, "r"));
}

void RegistryStore::refresh() {
    if (file_.empty()) return;
    struct stat status = {};
    if (::lstat(file_.c_str(), &status) != 0 && !is_absent(errno)) fail(file_);
    if (stamp_ != stamp_of(status)) load();
}

void RegistryStore::load() {
    RegistryKeys fresh;
    struct stat status = {};
    File file = open(file_, O_NONBLOCK);
    if (file) {
        if (::fstat(::fileno(file.get()), &status) != 0) fail(file_);
        std::string bytes(static_cast<std::size_t>(status.st_size), '\0');
        bytes.resize(std::fread(bytes.data(), 1, bytes.size(), file.get()));
        if (std::ferror(file.get()) != 0) fail(file_);
        fresh.apply(read_registry(bytes));
    } else if (!is_absent(errno)) {
        fail(file_);
    }
    keys_.take(fresh);
    held_ = std::move(file);
    stamp_ = stamp_of(status);
}

void RegistryStore::update(const std::function<bool()>& change) {
    if (file_.empty()) {
        change();
        return;
    }
    // A read-only file could be replaced, but whoever made it so does not want that.
    if (::access(file_.c_str(), W_OK) != 0 && errno != ENOENT) fail(file_);
    // The lock's file stays: it is nobody's content.
    const std::filesystem::path lock_path = file_.native() + ".lock";
    const File lock = open(lock_path, O_CREAT);
    if (!lock) fail(lock_path);
    while (::flock(::fileno(lock.get()), LOCK_EX) != 0) {
        if (errno != EINTR) fail(lock_path);
    }
    refresh();
    // The new file is read again with the next look, like anybody else's; so is the old one after a failure.
    const auto unchanged = std::exchange(stamp_, std::nullopt);
    if (change()) {
        replace_private_file(file_, keys_.text());
    } else {
        stamp_ = unchanged;
    }
}

}  // namespace vex::platform::native
