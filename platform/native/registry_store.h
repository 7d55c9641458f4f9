// A registry in memory and in its file, kept the same.
#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "platform/native/registry_file.h"
#include "platform/native/registry_text.h"
#include "platform/native/registry_tree.h"
#include "platform/registry.h"

namespace vex::platform::native {

/// A store that many processes may use at once. A change is one write behind the end of the file, made under
/// a lock and after reading what others wrote before; it is there for good once `update` has returned, also
/// when the process is killed right then. A last line without its line break belongs to a change that was
/// never finished, and is dropped.
///
/// A file that holds anything else than a registry is refused, with RegistryDamage, and left as it is until
/// someone repairs it. Other failures of the system are raised as std::system_error. Not for several threads.
class RegistryStore {
public:
    /// Told when the tree has been read anew, which happens when the file did not just grow. The tree before
    /// is still there then, and nothing holds on to it afterwards.
    using ReloadListener = std::function<void(RegistryStore& store, RegistryTree& fresh)>;

    /// `file`: empty for a store in memory only. Nothing is read yet.
    RegistryStore(const std::filesystem::path& file, ReloadListener on_reload);
    RegistryStore(const RegistryStore&) = delete;
    RegistryStore& operator=(const RegistryStore&) = delete;

    /// Everything up to now, others' changes included. Valid until the next call.
    RegistryTree& current_tree();
    /// Everything up to the last call.
    RegistryTree& known_tree() const noexcept { return *tree_; }
    bool is_writable() const { return !file_ || file_->is_writable(); }

    /// Makes a change. `work` looks at the tree, which nobody else changes meanwhile, writes what is to change
    /// and answers the operation's result; the change is made when that is kSuccess.
    std::int32_t update(const std::function<std::int32_t(RegistryTree&, RegistryWriter&)>& work);

    /// Changes the store by a whole registry text, in either encoding: all of it, or nothing when it is
    /// damaged.
    void import(const std::string& bytes);

private:
    void catch_up();
    bool has_grown(const FileStamp& stamp) const;
    void load();
    void read_whole_lines(std::string_view text);
    void append(const std::string& text);
    void rewrite();
    bool pays_to_rewrite() const;

    std::optional<RegistryFile> file_;
    ReloadListener on_reload_;
    std::unique_ptr<RegistryTree> tree_;
    std::unique_ptr<RegistryReader> reader_;
    /// What keeps the file from being read; told again until the file has changed.
    std::optional<RegistryDamage> damage_;
    FileStamp stamp_;
    /// Where the last whole line ends, and the text before it, by which growth is told from other changes.
    std::uint64_t end_ = 0;
    std::string tail_;
    /// A text as Windows exports it, which cannot be appended to.
    bool foreign_ = false;
    /// How much of the superseded text a failed rewriting leaves for the next attempt to wait for.
    std::size_t rewriting_waits_for_ = 0;
};

}  // namespace vex::platform::native
