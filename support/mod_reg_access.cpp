// The host's settings, in its branch of the registry.
#include "support/mod_reg_access.h"

#include "support/registry_routines.h"

namespace vex {
namespace {

constexpr char16_t kVendorPrefix[] = u"Software\\Norvan\\";

}  // namespace

std::u16string ReadHostSetting(const Services& services, const std::u16string& application,
                               const std::u16string& section, const std::u16string& key,
                               const std::u16string& default_value) {
    RegistryRoutines registry(services.registry);
    registry.set_hKey(platform::kHkeyLocalMachine);
    registry.set_KeyRoot(kVendorPrefix + application + u'\\' + section);
    return registry.GetRegistryValue(key, default_value).text_or(default_value);
}

void WriteHostSetting(const Services& services, const std::u16string& application, const std::u16string& section,
                      const std::u16string& key, const std::u16string& value) {
    RegistryRoutines registry(services.registry);
    registry.set_hKey(platform::kHkeyLocalMachine);
    registry.set_KeyRoot(kVendorPrefix + application);
    registry.CreateKey(section);
    registry.set_KeyRoot(kVendorPrefix + application + u'\\' + section);
    registry.SetRegistryValue(key, value, platform::kRegSz);
}

std::u16string host_installation_folder(const Services& services) {
    std::u16string folder = ReadHostSetting(services, u"Brivola3", u"Settings", u"AppPath", services.module_folder);
    if (!folder.ends_with(u'\\')) folder += u'\\';
    return folder;
}

}  // namespace vex
