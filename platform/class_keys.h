// The keys below HKEY_CLASSES_ROOT where classes are registered: a seam of its own beside the registry's, since a
// library may lie in a folder whose name has no form in the ANSI code page.
#pragma once

#include <string>

namespace vex::platform {

/// Writes a text value, and makes the keys that are missing; an empty name is the default value's. False when it
/// cannot be written so that it reads the same.
bool write_class_text(const std::u16string& key, const std::u16string& name, const std::u16string& text);

/// Removes a value. True when there is none afterwards.
bool remove_class_text(const std::u16string& key, const std::u16string& name);

/// Removes a key that holds neither values nor keys; leaves any other.
void remove_empty_class_key(const std::u16string& key);

}  // namespace vex::platform
