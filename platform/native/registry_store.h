// A registry in memory and in its file, kept the same.
#pragma once

#include <sys/stat.h>

#include <filesystem>
#include <functional>
#include <optional>
#include <tuple>
#include <utility>

#include "platform/native/descriptor.h"
#include "platform/native/registry_tree.h"

namespace vex::platform::native {

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
    RegistryStore(const RegistryStore&) = delete;
    RegistryStore& operator=(const RegistryStore&) = delete;

    /// What was last read or written. Its keys stay the same objects as long as they are there.
    RegistryTree& tree() noexcept { return tree_; }
    /// Reads the file again if it has changed.
    void refresh();
    /// Makes a change that `change` makes to the tree, which nobody else changes meanwhile; it answers whether there
    /// is one. Where the file cannot be written, the tree is read again, so that nothing is changed; only handles of
    /// a key that should have been deleted take it for deleted.
    void update(const std::function<bool()>& change);
    bool is_writable() const;

private:
    /// What tells whether a file is the one that was read: device, inode, size, time of change in seconds and
    /// nanoseconds. All zero: there is none.
    using Stamp = std::tuple<dev_t, ino_t, off_t, time_t, long>;
    static Stamp stamp_of(const struct ::stat& status) noexcept;
    void load();
    void save();

    const std::filesystem::path file_;
    RegistryTree tree_;
    /// Of what the tree holds; nothing when that is not known to be in the file.
    std::optional<Stamp> stamp_;
    /// The file of that stamp, kept open so that no later file gets its inode.
    Descriptor held_;
};

}  // namespace vex::platform::native
