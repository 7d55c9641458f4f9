// The file seam on the system's file attributes.
#include "platform/files.h"

#include "platform/paths.h"
#include "platform/win32/system.h"
#include "platform/win32/windows_api.h"

namespace vex::platform::win32 {
namespace {

class SystemFiles final : public Files {
public:
    bool ordinary_file_exists(const std::u16string& path) override {
        constexpr DWORD kExtraordinary = FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM;
        if (!is_full_path(path)) return false;
        const DWORD attributes = GetFileAttributesW(wide(path));
        return attributes != INVALID_FILE_ATTRIBUTES && (attributes & kExtraordinary) == 0;
    }
};

}  // namespace

Files& files() {
    static SystemFiles instance;
    return instance;
}

}  // namespace vex::platform::win32
