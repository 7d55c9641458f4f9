// A registry: its keys and values in memory, and the file that holds the same.
#pragma once

#include <sys/stat.h>

#include <cstdio>
#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <tuple>
#include <vector>

#include "platform/native/registry_text.h"

namespace vex::platform::native {

/// The order of names and paths. Case does not count, and a key stands right before the keys below it.
struct NameOrder {
    using is_transparent = void;
    bool operator()(std::u16string_view left, std::u16string_view right) const noexcept;
};

/// A key's values by their names, which keep the case in which they came first.
using RegistryValues = std::map<std::u16string, RegistryValue, NameOrder>;

/// What HKEY_CLASSES_ROOT is another name for.
inline constexpr std::u16string_view kClassesPath = u"HKEY_LOCAL_MACHINE\\Software\\Classes";

/// The path of a key below another one, with one backslash between its names.
std::u16string path_below(std::u16string_view above, std::u16string_view path);

/// All keys by their paths, each of which begins with its root's own name. The roots and the classes always exist.
/// The values of a key live as long as the key does, and no longer.
class RegistryKeys {
public:
    RegistryKeys() { create_permanent_keys(); }

    /// Null where there is none.
    std::shared_ptr<RegistryValues> find(std::u16string_view path) const;
    /// The same, made where it is missing, with the keys above it. Raises `std::invalid_argument`, with nothing made,
    /// where there is no such root, or the path is longer or deeper than one may be, or would break its line.
    std::shared_ptr<RegistryValues> create(std::u16string_view path);
    /// The name of the key that has this index, from 0, among those right below a path.
    std::optional<std::u16string> name_below(std::u16string_view path, std::uint32_t index) const;
    /// Whether a key is always there.
    static bool is_permanent(std::u16string_view path) noexcept;
    /// Removes a key and everything below it. Permanent ones become empty.
    void remove(std::u16string_view path);

    /// Raises RegistryDamage.
    void apply(const std::vector<RegistrySection>& sections);
    /// Becomes what was read anew; the values of a key that is there in both stay the same object.
    void take(RegistryKeys& fresh);
    /// All of it as a registry text.
    std::string text() const;

private:
    void create_permanent_keys();

    std::map<std::u16string, std::shared_ptr<RegistryValues>, NameOrder> keys_;
};

/// A store that many processes may use at once. A change is made under the lock on a file beside the store's, to what
/// the file holds by then, and puts a whole new file in the place of the old one. It is there for good once `update`
/// has returned, also when the process is killed right then: a kill leaves the old file or the new one. A power cut is
/// another matter: nothing waits for the disk, and the last changes, or the whole file, may be lost.
///
/// A file that holds anything else than a registry is refused with RegistryDamage and left as it is until someone
/// repairs it. Other failures of the system are raised as std::system_error; a link in place of the file is one.
/// Not for several threads.
class RegistryStore {
public:
    /// `file`: empty for a store in memory only. Nothing is read yet.
    explicit RegistryStore(std::filesystem::path file = {}) : file_(std::move(file)) {}

    /// What was last read or written.
    RegistryKeys& keys() noexcept { return keys_; }
    /// Reads the file again if it has changed.
    void refresh();
    /// Makes a change that `change` makes to the keys, which nobody else changes meanwhile; it answers whether there
    /// is one. Where the file cannot be written, it is read again, so that nothing is changed; only handles of a key
    /// that should have been deleted take it for deleted.
    void update(const std::function<bool()>& change);

private:
    struct Close {
        void operator()(std::FILE* file) const noexcept { std::fclose(file); }
    };
    using File = std::unique_ptr<std::FILE, Close>;
    /// What tells whether a file is the one that was read: device, inode, size, time of change in seconds and
    /// nanoseconds. All zero: there is none.
    using Stamp = std::tuple<dev_t, ino_t, off_t, time_t, long>;

    static Stamp stamp_of(const struct ::stat& status) noexcept;
    /// Opens a file for its owner alone, and no link. Null, with errno set, when it cannot.
    static File open(const std::filesystem::path& path, int flags);
    void load();

    std::filesystem::path file_;
    RegistryKeys keys_;
    /// Of what was read; nothing while the keys may be other than the file's.
    std::optional<Stamp> stamp_;
    /// The file of that stamp, kept open so that no later file gets its inode.
    File held_;
};

}  // namespace vex::platform::native
