// A computer's registry as one process sees it.
#pragma once

#include <string>

#include "platform/native/code_page_1252.h"
#include "platform/native/registry_service.h"
#include "tests/shared/temporary_folder.h"

namespace vex::platform::native {

inline constexpr RegistryKey kRoot = registry_key(kHkeyLocalMachine);
inline const CodePage1252 kCodePage;

struct Process {
    explicit Process(const test::TemporaryFolder& folder) { service.use_folder(folder.path()); }

    RegistryKey open(const std::string& path, std::uint32_t access = kKeyAllAccess) {
        RegistryKey key = 0;
        result = service.open_key(kRoot, path.c_str(), access, key);
        return key;
    }
    std::int32_t write(const std::string& path, const std::string& name, const std::string& text) {
        RegistryKey key = 0;
        result = service.create_key(kRoot, path.c_str(), nullptr, kKeyAllAccess, {}, key);
        if (result == kSuccess) {
            result = service.set_value(key, name.c_str(), kRegSz, reinterpret_cast<const std::uint8_t*>(text.c_str()),
                                       static_cast<std::uint32_t>(text.size() + 1));
        }
        service.close_key(key);
        return result;
    }
    /// A text, or the result code in parentheses.
    std::string read(RegistryKey key, const std::string& name) {
        std::uint32_t type = 0;
        std::string text(100'000, '\0');
        auto size = static_cast<std::uint32_t>(text.size());
        result = service.query_value(key, name.c_str(), type, reinterpret_cast<std::uint8_t*>(text.data()), size);
        return result == kSuccess ? text.substr(0, size - 1) : '(' + std::to_string(result) + ')';
    }
    std::string read(const std::string& path, const std::string& name) {
        const RegistryKey key = open(path, kKeyRead);
        if (key == 0) return '(' + std::to_string(result) + ')';
        std::string text = read(key, name);
        service.close_key(key);
        return text;
    }

    RegistryService service{kCodePage};
    std::int32_t result = kSuccess;
};

}  // namespace vex::platform::native
