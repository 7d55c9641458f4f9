// The registry seam: the narrow-character operations that the registry access class needs, with Windows'
// own result codes, sizes and handles. One side calls advapi32, the other keeps a store of its own.
#pragma once

#include <cstdint>

namespace vex::platform {

/// An open or predefined key. A 32-bit predefined value is widened with its sign, as Windows does.
using RegistryKey = std::intptr_t;

constexpr RegistryKey registry_key(std::int32_t handle) noexcept { return handle; }

constexpr std::int32_t kHkeyClassesRoot = static_cast<std::int32_t>(0x80000000U);
constexpr std::int32_t kHkeyCurrentUser = static_cast<std::int32_t>(0x80000001U);
constexpr std::int32_t kHkeyLocalMachine = static_cast<std::int32_t>(0x80000002U);
constexpr std::int32_t kHkeyUsers = static_cast<std::int32_t>(0x80000003U);

constexpr std::uint32_t kKeyRead = 0x20019;
constexpr std::uint32_t kKeyWrite = 0x20006;
constexpr std::uint32_t kKeyAllAccess = 0xF003F;
/// Read-control plus all six key-specific rights.
constexpr std::uint32_t kKeySpecificRights = 0x2003F;

enum RegistryType : std::uint32_t {
    kRegNone = 0,
    kRegSz = 1,
    kRegExpandSz = 2,
    kRegBinary = 3,
    kRegDword = 4,
    kRegMultiSz = 7,
};

/// Windows' result codes that callers test or meet.
enum RegistryResult : std::int32_t {
    kSuccess = 0,
    kFileNotFound = 2,
    kAccessDenied = 5,
    kInvalidHandle = 6,
    kBadNetPath = 53,
    kInvalidParameter = 87,
    kDiskFull = 112,
    kMoreData = 234,
    kNoMoreItems = 259,
    kRegistryCorrupt = 1009,
    kRegistryIoFailed = 1016,
    kKeyDeleted = 1018,
};

/// Security attributes as they are passed to key creation: length, descriptor, inherit flag.
struct SecurityAttributes {
    std::uint32_t length = 0;
    const void* descriptor = nullptr;
    std::int32_t inherit_handle = 0;
};

/// Ten registry operations and the environment expansion. Texts are in the ANSI code page and
/// null-terminated; names are compared without regard to case and keep theirs; leading and trailing
/// backslashes of a path do not count. Each operation answers Windows' result code and never throws.
/// Handles that are opened or created belong to the caller until `close_key`.
class Registry {
public:
    virtual ~Registry() = default;

    virtual std::int32_t open_key(RegistryKey parent, const char* path, std::uint32_t access,
                                  RegistryKey& key) noexcept = 0;
    /// Opens or creates a key and the missing keys above it. `attributes` may be all zero.
    virtual std::int32_t create_key(RegistryKey parent, const char* path, const char* class_name, std::uint32_t access,
                                    const SecurityAttributes& attributes, RegistryKey& key) noexcept = 0;
    virtual std::int32_t close_key(RegistryKey key) noexcept = 0;
    /// Refuses a key that has sub-keys.
    virtual std::int32_t delete_key(RegistryKey parent, const char* path) noexcept = 0;
    virtual std::int32_t delete_value(RegistryKey key, const char* name) noexcept = 0;
    /// `name_length`: in, the room in bytes with the null; out, the length without it.
    virtual std::int32_t enum_key(RegistryKey key, std::uint32_t index, char* name,
                                  std::uint32_t& name_length) noexcept = 0;
    /// `data` may be null: then only type and size are told. `data_size`: in, the room; out, the size.
    virtual std::int32_t enum_value(RegistryKey key, std::uint32_t index, char* name, std::uint32_t& name_length,
                                    std::uint32_t& type, std::uint8_t* data, std::uint32_t& data_size) noexcept = 0;
    virtual std::int32_t query_value(RegistryKey key, const char* name, std::uint32_t& type, std::uint8_t* data,
                                     std::uint32_t& data_size) noexcept = 0;
    virtual std::int32_t set_value(RegistryKey key, const char* name, std::uint32_t type, const std::uint8_t* data,
                                   std::uint32_t data_size) noexcept = 0;
    /// Connects to `root` of another computer's registry.
    virtual std::int32_t connect_registry(const char* computer, RegistryKey root, RegistryKey& key) noexcept = 0;

    /// Replaces %NAME% in `source`; answers the length with the null that the expansion has or needs.
    /// What `target` holds when it does not fit is the side's own business. 0 on failure.
    virtual std::uint32_t expand_environment(const char* source, char* target, std::uint32_t capacity) noexcept = 0;
};

/// The system's, for use on any thread. An object, since callers are handed what stands in for it as well.
Registry& registry();

}  // namespace vex::platform
