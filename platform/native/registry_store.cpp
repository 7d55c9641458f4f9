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

bool is_absent(int reason) { return reason == ENOENT || reason == ENOTDIR; }

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

RegistryStore::Stamp RegistryStore::stamp_of(const struct ::stat& status) noexcept {
    return {status.st_dev, status.st_ino, status.st_size, status.st_mtim.tv_sec, status.st_mtim.tv_nsec};
}

void RegistryStore::refresh() {
    if (file_.empty()) return;
    struct stat status = {};
    if (::lstat(file_.c_str(), &status) != 0 && !is_absent(errno)) fail(file_);
    if (stamp_ != stamp_of(status)) load();
}

void RegistryStore::load() {
    RegistryTree fresh;
    struct stat status = {};
    // A link is not followed: the file that takes this one's place would not be where it leads.
    Descriptor file(::open(file_.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK));
    if (file.is_open()) {
        if (::fstat(file.get(), &status) != 0) fail(file_);
        fresh.apply(read_registry(read_all(file, file_)));
    } else if (!is_absent(errno)) {
        fail(file_);
    }
    tree_.take(fresh);
    held_ = std::move(file);
    stamp_ = stamp_of(status);
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
    struct stat status = {};
    Descriptor file(::open(fresh.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, kOwnerOnly));
    if (!file.is_open()) fail(fresh);
    if (!write_all(file.get(), tree_.text()) || ::fchmod(file.get(), kOwnerOnly) != 0 ||
        ::fstat(file.get(), &status) != 0 || !take_place(fresh, file_)) {
        const int reason = errno;
        ::unlink(fresh.c_str());
        errno = reason;
        fail(file_);
    }
    held_ = std::move(file);
    stamp_ = stamp_of(status);
}

}  // namespace vex::platform::native
