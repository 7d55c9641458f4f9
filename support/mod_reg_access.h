// The host's settings, in its branch of the registry.
#pragma once

#include <string>

#include "support/services.h"

namespace vex {

/// The setting `key` of a section of one of the host's applications, or `default_value` when it cannot be
/// read or holds bytes. Settings live under HKEY_LOCAL_MACHINE only. A number comes back as its decimal text.
/// Raises what the registry access class raises for data that it cannot convert at all, as binary data of no bytes.
std::u16string ReadHostSetting(const Services& services, const std::u16string& application,
                               const std::u16string& section, const std::u16string& key,
                               const std::u16string& default_value);

/// Stores a setting as a text, and creates its key when it is missing. A failure is not told: the next read
/// answers the default again.
void WriteHostSetting(const Services& services, const std::u16string& application, const std::u16string& section,
                      const std::u16string& key, const std::u16string& value);

/// The host's installation folder, ending in a backslash: its setting, else the plug-in's own folder.
std::u16string host_installation_folder(const Services& services);

}  // namespace vex
