// The plug-in's general-purpose access to the registry.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "platform/registry.h"
#include "support/automation_value.h"
#include "support/keyed_collection.h"
#include "support/registry_data.h"

namespace vex {

/// Reads, writes, creates, deletes and enumerates below a root key and a key path. The working path is
/// `KeyRoot`, a backslash and `Subkey`, also when one of them is empty.
///
/// Failures are silent: each operation has a result that stands for them. Only conversions raise errors: a
/// value that cannot be converted to what is to be written (kTypeMismatch, kOverflow), binary data of no
/// bytes (kSubscriptOutOfRange), a multiple string shorter than its terminators (kInvalidProcedureCall).
/// Keys are opened and closed within one operation, save the two leaks that are told below.
class RegistryRoutines {
public:
    /// The name and the data of a value.
    using NamedValue = std::pair<std::u16string, AutomationValue>;

    /// `registry` outlives the object.
    explicit RegistryRoutines(platform::Registry& registry) : registry_(registry) {}
    RegistryRoutines(const RegistryRoutines&) = delete;
    RegistryRoutines& operator=(const RegistryRoutines&) = delete;

    /// The predefined root or open key to work under.
    std::int32_t hKey() const noexcept { return root_key_; }
    void set_hKey(std::int32_t vData) noexcept { root_key_ = vData; }
    const std::u16string& KeyRoot() const noexcept { return key_root_; }
    void set_KeyRoot(std::u16string vData) { key_root_ = std::move(vData); }
    const std::u16string& Subkey() const noexcept { return subkey_; }
    void set_Subkey(std::u16string vData) { subkey_ = std::move(vData); }

    /// Whether the working path opens. The handle opened for the test is left open.
    bool KeyExists();

    /// Creates or opens a key below `KeyRoot`: "0" on success, the empty text on failure. Without a name it
    /// is the one that `Subkey` has, and `KeyName` receives it.
    std::u16string CreateKey(std::optional<AutomationValue>& KeyName);
    std::u16string CreateKey(std::u16string_view KeyName);
    std::u16string CreateKey();

    /// Deletes a key below `KeyRoot`. Answers 0 whether or not it could be deleted.
    std::int32_t DeleteKey(const std::u16string& KeyName);
    /// Deletes a value of the working path's key and answers the system's result code.
    std::int32_t DeleteValue(const std::u16string& ValueName);

    /// The sub-keys of `KeyName` under the root `hKey`, or of the root itself when the name is empty. Empty
    /// when the key cannot be opened; a root that cannot be enumerated raises kDuplicateKey.
    KeyedCollection<std::u16string> EnumRegistryKeys(std::int32_t hKey, const std::u16string& KeyName);
    /// The values of a key as above. Binary data comes as hexadecimal text behind the text of the value
    /// before; strings of a multiple string are joined by commas.
    KeyedCollection<NamedValue> EnumRegistryValues(std::int32_t hKey, const std::u16string& KeyName);

    /// The value of the working path's key, or `DefaultValue` when there is none or its type is unknown.
    AutomationValue GetRegistryValue(const std::u16string& ValueName, AutomationValue DefaultValue = {});
    /// Writes to the working path's key, which must exist. False when it does not open or the write fails.
    /// A `DType` that is not handled writes nothing and succeeds.
    bool SetRegistryValue(const std::u16string& ValueName, const AutomationValue& Value, std::uint32_t DType);

    /// Reads below `hKey` of another computer: empty when there is no such key or value, the text "Error!"
    /// when the computer cannot be reached. The connection is left open.
    AutomationValue ReadRemoteRegistryValue(const std::u16string& sRemoteComputer, std::int32_t hKey,
                                            const std::u16string& ValueName, const std::u16string& KeyPath = {});
    /// Writes below `hKey` of another computer: false when the write fails; raises kTypeMismatch when the
    /// computer cannot be reached. The connection is left open.
    bool WriteRemoteRegistryValue(const std::u16string& sRemoteComputer, std::int32_t hKey,
                                  const std::u16string& ValueName, const AutomationValue& Value, std::uint32_t DType,
                                  const std::u16string& KeyPath = {});

    /// Cuts `item` at its first null character, in place too.
    static std::u16string TrimNull(std::u16string& item);

private:
    std::u16string working_path() const { return key_root_ + u'\\' + subkey_; }
    AutomationValue read_value(platform::RegistryKey key, const std::u16string& name, AutomationValue initial,
                               EmptyExpandable empty_expandable);
    std::int32_t write_value(platform::RegistryKey key, const std::u16string& name, const AutomationValue& value,
                             std::uint32_t type);

    platform::Registry& registry_;
    std::int32_t root_key_ = 0;
    std::u16string key_root_;
    std::u16string subkey_;
    /// Never filled in: keys are created with default security and handles that are not inherited.
    platform::SecurityAttributes security_;
};

}  // namespace vex
