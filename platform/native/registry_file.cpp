// The file of a registry: appended to under a lock, replaced as a whole, and watched for others' changes.
#include "platform/native/registry_file.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

#include "platform/native/write_all.h"

namespace vex::platform::native {
namespace {

constexpr mode_t kOwnerOnly = S_IRUSR | S_IWUSR;

[[noreturn]] void fail(const std::filesystem::path& path) {
    throw std::system_error(errno, std::generic_category(), path.native());
}

std::int64_t nanoseconds(const timespec& time) { return std::int64_t{time.tv_sec} * 1'000'000'000 + time.tv_nsec; }

}  // namespace

bool RegistryFile::open_with(int flags) {
    int opened = -1;
    do {
        // A link is not followed: the file that takes this one's place in the end would not be where it leads.
        opened = ::open(path_.c_str(), flags | O_APPEND | O_CLOEXEC | O_NOFOLLOW, kOwnerOnly);
    } while (opened < 0 && errno == EINTR);
    if (opened < 0) return false;
    close();
    descriptor_ = opened;
    for_writing_ = (flags & O_RDWR) != 0;
    return true;
}

bool RegistryFile::open() {
    if (open_with(O_RDWR)) return true;
    if ((errno == EACCES || errno == EROFS || errno == EPERM) && open_with(O_RDONLY)) return true;
    close();
    if (errno == ENOENT || errno == ENOTDIR) return false;
    fail(path_);
}

void RegistryFile::open_for_writing() {
    if (is_open() && for_writing_) return;
    if (open_with(O_RDWR | O_CREAT)) return;
    if (errno != ENOENT) fail(path_);
    const std::filesystem::path folder = path_.parent_path();
    std::filesystem::create_directories(folder.parent_path());
    if (::mkdir(folder.c_str(), S_IRWXU) != 0 && errno != EEXIST) fail(folder);
    if (!open_with(O_RDWR | O_CREAT)) fail(path_);
}

void RegistryFile::close() noexcept {
    if (descriptor_ < 0) return;
    const int kept = errno;
    ::close(descriptor_);
    errno = kept;
    descriptor_ = -1;
}

FileStamp RegistryFile::stamp() const {
    struct stat status = {};
    if (::fstat(descriptor_, &status) != 0) fail(path_);
    return {status.st_dev, status.st_ino, static_cast<std::uint64_t>(status.st_size), nanoseconds(status.st_mtim),
            nanoseconds(status.st_ctim)};
}

bool RegistryFile::is_replaced() const {
    struct stat at_path = {};
    // If the path cannot even be looked at, opening it again will tell why.
    if (::stat(path_.c_str(), &at_path) != 0) return true;
    struct stat opened = {};
    if (::fstat(descriptor_, &opened) != 0) fail(path_);
    return at_path.st_dev != opened.st_dev || at_path.st_ino != opened.st_ino;
}

bool RegistryFile::is_writable() const {
    if (::access(path_.c_str(), W_OK) == 0) return true;
    if (errno != ENOENT) return false;
    return ::access(path_.parent_path().c_str(), W_OK) == 0 || errno == ENOENT;
}

std::string RegistryFile::read(std::uint64_t offset, std::size_t size) const {
    std::string text(size, '\0');
    std::size_t done = 0;
    while (done < size) {
        const ssize_t count = ::pread(descriptor_, text.data() + done, size - done, static_cast<off_t>(offset + done));
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) fail(path_);
        if (count == 0) break;
        done += static_cast<std::size_t>(count);
    }
    text.resize(done);
    return text;
}

void RegistryFile::append(std::uint64_t end, std::string_view text) {
    // What a writer that was killed left behind its last line.
    if (stamp().size != end && ::ftruncate(descriptor_, static_cast<off_t>(end)) != 0) fail(path_);
    if (write_all(descriptor_, text)) return;
    const int reason = errno;
    // Half a line would be dropped by every reader; it only should not stay in the way.
    [[maybe_unused]] const int cut = ::ftruncate(descriptor_, static_cast<off_t>(end));
    errno = reason;
    fail(path_);
}

void RegistryFile::replace(std::string_view text) {
    std::filesystem::path fresh = path_;
    fresh += ".new";
    // What lies there was left by a writer that was killed, under this lock; or it is no file of ours.
    ::unlink(fresh.c_str());
    const int descriptor = ::open(fresh.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, kOwnerOnly);
    if (descriptor < 0) fail(fresh);
    // Unlike an append, this puts everything at stake: the content must be on the disk before the name is.
    const bool written = write_all(descriptor, text) && ::fsync(descriptor) == 0;
    int reason = errno;
    ::close(descriptor);
    if (!written || ::rename(fresh.c_str(), path_.c_str()) != 0) {
        if (written) reason = errno;
        ::unlink(fresh.c_str());
        errno = reason;
        fail(fresh);
    }
    if (!open_with(O_RDWR)) fail(path_);
}

RegistryFile::Lock::Lock(RegistryFile& file) : file_(file) {
    for (;;) {
        file_.open_for_writing();
        while (::flock(file_.descriptor_, LOCK_EX) != 0) {
            if (errno != EINTR) fail(file_.path_);
        }
        // While it waited, the file may have been replaced by its next generation.
        if (!file_.is_replaced()) return;
        file_.close();
    }
}

RegistryFile::Lock::~Lock() {
    if (file_.is_open()) ::flock(file_.descriptor_, LOCK_UN);
}

}  // namespace vex::platform::native
