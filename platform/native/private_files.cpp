// Files and folders for their owner alone: by their modes, from the moment they are made.
#include "platform/private_files.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <system_error>

namespace vex::platform {
namespace {

[[noreturn]] void fail(int reason, const std::string& path) {
    throw std::system_error(reason, std::generic_category(), path);
}

/// Also where the system takes the bytes in parts or is interrupted. False, with errno set, when it cannot.
bool write_all(int descriptor, std::string_view bytes) noexcept {
    while (!bytes.empty()) {
        const ssize_t written = ::write(descriptor, bytes.data(), bytes.size());
        if (written < 0 && errno == EINTR) continue;
        if (written < 0) return false;
        bytes.remove_prefix(static_cast<std::size_t>(written));
    }
    return true;
}

/// Puts a file in another's place in one step. Where the system can exchange the two, that takes a fraction of the
/// time: to rename one over the other, ext4 first writes it to the disk.
bool take_place(const char* fresh, const char* path) noexcept {
    if (::renameat2(AT_FDCWD, fresh, AT_FDCWD, path, RENAME_EXCHANGE) != 0) return ::rename(fresh, path) == 0;
    return ::unlink(fresh) == 0;
}

}  // namespace

bool make_private_folder(const std::filesystem::path& folder) {
    if (::mkdir(folder.c_str(), S_IRWXU) == 0) return true;
    if (errno != EEXIST) fail(errno, folder.native());
    return false;
}

void replace_private_file(const std::filesystem::path& path, std::string_view bytes) {
    // Made anew, readable for its owner only, under a name that nobody can have prepared.
    std::string fresh = path.native() + ".XXXXXX";
    const int descriptor = ::mkostemp(fresh.data(), O_CLOEXEC);
    if (descriptor < 0) fail(errno, path.native());
    const bool written = write_all(descriptor, bytes) && ::fchmod(descriptor, S_IRUSR | S_IWUSR) == 0;
    int reason = written ? 0 : errno;
    if (::close(descriptor) != 0 && reason == 0) reason = errno;
    if (reason == 0 && !take_place(fresh.c_str(), path.c_str())) reason = errno;
    if (reason == 0) return;
    ::unlink(fresh.c_str());
    fail(reason, path.native());
}

}  // namespace vex::platform
