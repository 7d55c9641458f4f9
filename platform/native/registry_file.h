// The file of a registry: appended to under a lock, replaced as a whole, and watched for others' changes.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>

namespace vex::platform::native {

/// What tells whether an open file has changed.
struct FileStamp {
    std::uint64_t device = 0;
    std::uint64_t inode = 0;
    std::uint64_t size = 0;
    std::int64_t modified = 0;
    std::int64_t changed = 0;

    friend bool operator==(const FileStamp&, const FileStamp&) = default;
};

/// An open file, or none. All failures of the system are raised as std::system_error.
class RegistryFile {
public:
    explicit RegistryFile(std::filesystem::path path) : path_(std::move(path)) {}
    RegistryFile(const RegistryFile&) = delete;
    RegistryFile& operator=(const RegistryFile&) = delete;
    ~RegistryFile() { close(); }

    const std::filesystem::path& path() const noexcept { return path_; }
    bool is_open() const noexcept { return descriptor_ >= 0; }

    /// Opens the file that is at the path now. False when there is none.
    bool open();
    /// Opens it for writing, and creates it and its folder for their owner alone when they are missing.
    void open_for_writing();
    void close() noexcept;

    FileStamp stamp() const;
    /// Whether the path leads to another file by now, or to none.
    bool is_replaced() const;
    /// Whether the file can be written, or created where there is none.
    bool is_writable() const;

    /// Fewer bytes where the file ends before.
    std::string read(std::uint64_t offset, std::size_t size) const;
    /// Writes behind the end, which is cut back to `end` first. All of it, or nothing and a failure.
    void append(std::uint64_t end, std::string_view text);
    /// Puts a new file with this content in the place of the old one, in one step, and opens it.
    void replace(std::string_view text);

    /// Keeps other writers out: of the file that is at the path, whichever that is.
    class Lock {
    public:
        explicit Lock(RegistryFile& file);
        Lock(const Lock&) = delete;
        Lock& operator=(const Lock&) = delete;
        ~Lock();

    private:
        RegistryFile& file_;
    };

private:
    bool open_with(int flags);

    std::filesystem::path path_;
    int descriptor_ = -1;
    bool for_writing_ = false;
};

}  // namespace vex::platform::native
