// The plug-in's general-purpose access to the registry.
#include "support/registry_routines.h"

#include "core/narrow.h"
#include "core/runtime_error.h"
#include "platform/system.h"
#include "support/open_registry_key.h"

namespace vex {
namespace {

/// What a single read tries first.
constexpr std::size_t kFirstReadSize = 1024;

template <class Bytes>
std::uint32_t size_of(const Bytes& bytes, std::size_t more = 0) {
    return narrowed<std::uint32_t>(bytes.size() + more);
}

}  // namespace

bool RegistryRoutines::KeyExists() {
    platform::RegistryKey key{};
    // Kept: the key that opened is left open.
    return registry_.open_key(platform::registry_key(root_key_), platform::to_ansi(working_path()).c_str(),
                              platform::kKeyRead, key) == platform::kSuccess;
}

std::u16string RegistryRoutines::CreateKey(std::optional<AutomationValue>& KeyName) {
    if (!KeyName) KeyName = subkey_;
    return CreateKey(KeyName->to_text());
}

std::u16string RegistryRoutines::CreateKey() { return CreateKey(subkey_); }

std::u16string RegistryRoutines::CreateKey(std::u16string_view KeyName) {
    const std::string path = platform::to_ansi(key_root_ + u'\\' + std::u16string(KeyName));
    OpenRegistryKey key(registry_);
    const std::int32_t result = registry_.create_key(platform::registry_key(root_key_), path.c_str(), "",
                                                     platform::kKeyAllAccess, security_, key.receive());
    return result == platform::kSuccess ? u"0" : u"";
}

std::int32_t RegistryRoutines::DeleteKey(const std::u16string& KeyName) {
    const std::string path = platform::to_ansi(key_root_ + u'\\' + KeyName);
    // Kept: a null handle is closed after a success, which the system refuses without harm.
    if (registry_.delete_key(platform::registry_key(root_key_), path.c_str()) == platform::kSuccess)
        registry_.close_key(0);
    // Kept: callers are told of success either way.
    return platform::kSuccess;
}

std::int32_t RegistryRoutines::DeleteValue(const std::u16string& ValueName) {
    OpenRegistryKey key(registry_);
    const std::int32_t opened =
        key.open(platform::registry_key(root_key_), platform::to_ansi(working_path()), platform::kKeyAllAccess);
    if (opened != platform::kSuccess) return opened;
    return registry_.delete_value(key.get(), platform::to_ansi(ValueName).c_str());
}

AutomationValue RegistryRoutines::GetRegistryValue(const std::u16string& ValueName, AutomationValue DefaultValue) {
    OpenRegistryKey key(registry_);
    const std::int32_t opened =
        key.open(platform::registry_key(root_key_), platform::to_ansi(working_path()), platform::kKeyRead);
    if (opened != platform::kSuccess) return DefaultValue;
    return read_value(key.get(), ValueName, std::move(DefaultValue), EmptyExpandable::one_null);
}

bool RegistryRoutines::SetRegistryValue(const std::u16string& ValueName, const AutomationValue& Value,
                                        std::uint32_t DType) {
    OpenRegistryKey key(registry_);
    const std::int32_t opened =
        key.open(platform::registry_key(hKey()), platform::to_ansi(working_path()), platform::kKeyWrite);
    if (opened != platform::kSuccess) return false;
    return write_value(key.get(), ValueName, Value, DType) == platform::kSuccess;
}

AutomationValue RegistryRoutines::ReadRemoteRegistryValue(const std::u16string& sRemoteComputer, std::int32_t hKey,
                                                          const std::u16string& ValueName,
                                                          const std::u16string& KeyPath) {
    platform::RegistryKey root = 0;
    const std::int32_t connected =
        registry_.connect_registry(platform::to_ansi(sRemoteComputer).c_str(), platform::registry_key(hKey), root);
    if (connected != platform::kSuccess) return u"Error!";
    // Kept: an omitted path is the root itself, not the working path; and whether the path opens is left to
    // the read to find out, which fails on the null handle.
    OpenRegistryKey key(registry_);
    static_cast<void>(key.open(root, platform::to_ansi(KeyPath), platform::kKeyAllAccess));
    return read_value(key.get(), ValueName, {}, EmptyExpandable::empty_text);
}

bool RegistryRoutines::WriteRemoteRegistryValue(const std::u16string& sRemoteComputer, std::int32_t hKey,
                                                const std::u16string& ValueName, const AutomationValue& Value,
                                                std::uint32_t DType, const std::u16string& KeyPath) {
    platform::RegistryKey root = 0;
    const std::int32_t connected =
        registry_.connect_registry(platform::to_ansi(sRemoteComputer).c_str(), platform::registry_key(hKey), root);
    // Kept: the twin of the reader's "Error!", which a Boolean result cannot hold.
    if (connected != platform::kSuccess) throw RuntimeError(kTypeMismatch);
    // Kept: as in reading.
    OpenRegistryKey key(registry_);
    static_cast<void>(key.open(root, platform::to_ansi(KeyPath), platform::kKeyAllAccess));
    return write_value(key.get(), ValueName, Value, DType) == platform::kSuccess;
}

std::u16string RegistryRoutines::TrimNull(std::u16string& item) { return item = trimmed_at_null(std::move(item)); }

AutomationValue RegistryRoutines::read_value(platform::RegistryKey key, const std::u16string& name,
                                             AutomationValue initial, EmptyExpandable empty_expandable) {
    const std::string ansi_name = platform::to_ansi(name);
    RegistryData data;
    data.buffer.resize(kFirstReadSize);
    data.size = kFirstReadSize;
    std::int32_t result = registry_.query_value(key, ansi_name.c_str(), data.type, data.buffer.data(), data.size);
    if (result == platform::kMoreData) {
        data.buffer.assign(data.size, 0);
        result = registry_.query_value(key, ansi_name.c_str(), data.type, data.buffer.data(), data.size);
    }
    if (result == platform::kFileNotFound) return initial;
    // Any other failure reports no type, and no type is converted.
    return decode_value(std::move(data), std::move(initial), empty_expandable, registry_);
}

std::int32_t RegistryRoutines::write_value(platform::RegistryKey key, const std::u16string& name,
                                           const AutomationValue& value, std::uint32_t type) {
    const std::string ansi_name = platform::to_ansi(name);
    const auto write = [&](const void* data, std::uint32_t size) {
        return registry_.set_value(key, ansi_name.c_str(), type, static_cast<const std::uint8_t*>(data), size);
    };
    switch (type) {
        case platform::kRegSz:
        case platform::kRegExpandSz:
        case platform::kRegMultiSz: {
            // Kept: a multiple string gets one terminating null as well; its inner ones are the caller's.
            const std::string text = platform::to_ansi(value.to_text());
            return write(text.c_str(), size_of(text, 1));
        }
        case platform::kRegBinary: {
            const AutomationValue::Bytes& bytes = value.bytes();
            if (bytes.empty()) throw RuntimeError(kSubscriptOutOfRange);
            return write(bytes.data(), size_of(bytes));
        }
        case platform::kRegDword: {
            const auto number = static_cast<std::uint32_t>(value.to_int32());
            const std::uint8_t bytes[] = {static_cast<std::uint8_t>(number), static_cast<std::uint8_t>(number >> 8),
                                          static_cast<std::uint8_t>(number >> 16),
                                          static_cast<std::uint8_t>(number >> 24)};
            return write(bytes, sizeof bytes);
        }
        default:
            // Kept: nothing is written, and the operation succeeds.
            return platform::kSuccess;
    }
}

}  // namespace vex
