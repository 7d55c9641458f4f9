// A registry in memory and in its file, kept the same.
#include "platform/native/registry_store.h"

#include <fcntl.h>
#include <sys/file.h>

#include <cerrno>
#include <cstdio>
#include <system_error>

namespace vex::platform::native {
namespace {

constexpr mode_t kOwnerOnly = S_IRUSR | S_IWUSR;

[[noreturn]] void fail(const std::filesystem::path& path) {
    throw std::system_error(errno, std::generic_category(), path.native());
}

/// Keeps other writers out until it is closed. The lock's file stays: it is nobody's content.
Descriptor lock(const std::filesystem::path& path) {
    Descriptor file(::open(path.c_str(), O_RDONLY | O_CREAT | O_CLOEXEC | O_NOFOLLOW, kOwnerOnly));
    if (!file.is_open()) fail(path);
    while (::flock(file.get(), LOCK_EX) != 0) {
        if (errno != EINTR) fail(path);
    }
    return file;
}

std::string read_all(const Descriptor& file, const std::filesystem::path& path) {
    std::string bytes;
    char part[65536];
    for (;;) {
        const ssize_t count = ::read(file.get(), part, sizeof part);
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) fail(path);
        if (count == 0) return bytes;
        bytes.append(part, static_cast<std::size_t>(count));
    }
}

/// Puts a file in another's place in one step. Where the system can exchange the two, that takes a thirtieth of the
/// time: to rename one over the other, ext4 first writes it to the disk.
bool take_place(const std::filesystem::path& fresh, const std::filesystem::path& path) {
    if (::renameat2(AT_FDCWD, fresh.c_str(), AT_FDCWD, path.c_str(), RENAME_EXCHANGE) != 0) {
        return ::rename(fresh.c_str(), path.c_str()) == 0;
    }
    ::unlink(fresh.c_str());
    return true;
}

std::filesystem::path beside(std::filesystem::path path, const char* ending) { return path += ending; }

}  // namespace

RegistryStore::Stamp::Stamp(const struct ::stat& status)
    : device(status.st_dev),
      inode(status.st_ino),
      size(status.st_size),
      seconds(status.st_mtim.tv_sec),
      nanoseconds(status.st_mtim.tv_nsec) {}

RegistryStore::Stamp RegistryStore::stamp_at_path() const {
    struct stat status = {};
    if (::lstat(file_.c_str(), &status) == 0) return Stamp(status);
    if (errno != ENOENT && errno != ENOTDIR) fail(file_);
    return {};
}

RegistryStore::Stamp RegistryStore::stamp_of(const Descriptor& file) const {
    struct stat status = {};
    if (::fstat(file.get(), &status) != 0) fail(file_);
    return Stamp(status);
}

void RegistryStore::refresh() {
    if (!file_.empty() && stamp_ != stamp_at_path()) load();
}

void RegistryStore::load() {
    RegistryTree fresh;
    Stamp stamp;
    // A link is not followed: the file that takes this one's place would not be where it leads.
    Descriptor file(::open(file_.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK));
    if (file.is_open()) {
        stamp = stamp_of(file);
        fresh.apply(read_registry(read_all(file, file_)));
    } else if (errno != ENOENT && errno != ENOTDIR) {
        fail(file_);
    }
    tree_.take(fresh);
    held_ = std::move(file);
    stamp_ = stamp;
}

bool RegistryStore::is_writable() const {
    if (file_.empty()) return true;
    const bool may_replace = ::access(file_.c_str(), W_OK) == 0 || errno == ENOENT;
    return may_replace && ::access(file_.parent_path().c_str(), W_OK) == 0;
}

void RegistryStore::update(const std::function<bool()>& change) {
    if (file_.empty()) {
        change();
        return;
    }
    if (!is_writable()) fail(file_);
    const Descriptor locked = lock(beside(file_, ".lock"));
    refresh();
    if (!change()) return;
    stamp_.reset();
    save();
}

void RegistryStore::save() {
    // What lies there was left by a writer that was killed under this lock, or is no file of ours.
    const std::filesystem::path fresh = beside(file_, ".new");
    ::unlink(fresh.c_str());
    Descriptor file(::open(fresh.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, kOwnerOnly));
    if (!file.is_open()) fail(fresh);
    if (!write_all(file.get(), tree_.text()) || ::fchmod(file.get(), kOwnerOnly) != 0 || !take_place(fresh, file_)) {
        const int reason = errno;
        ::unlink(fresh.c_str());
        errno = reason;
        fail(file_);
    }
    stamp_ = stamp_of(file);
    held_ = std::move(file);
}

}  // namespace vex::platform::native
