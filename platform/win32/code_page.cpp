// The code page seam: the system's ANSI code page.
#include "platform/code_page.h"

#include <limits>

#include "platform/win32/system.h"
#include "platform/win32/windows_api.h"

namespace vex::platform::win32 {
namespace {

int checked_length(std::size_t length) {
    if (length > static_cast<std::size_t>(std::numeric_limits<int>::max())) throw RuntimeError(kOutOfMemory);
    return static_cast<int>(length);
}

/// A character that the page lacks becomes "?", which no path can hold. One that only looks like it, such as a
/// full-width backslash's plain one, would make another path of it.
DWORD exact_only() noexcept { return GetACP() == CP_UTF8 ? 0 : WC_NO_BEST_FIT_CHARS; }

class AnsiCodePage final : public CodePage {
public:
    std::string to_ansi(std::u16string_view text) const override {
        const int length = checked_length(text.size());
        if (length == 0) return {};
        const auto* source = reinterpret_cast<LPCWSTR>(text.data());
        const int size = WideCharToMultiByte(CP_ACP, exact_only(), source, length, nullptr, 0, nullptr, nullptr);
        std::string bytes(static_cast<std::size_t>(size), '\0');
        WideCharToMultiByte(CP_ACP, exact_only(), source, length, bytes.data(), size, nullptr, nullptr);
        return bytes;
    }

    std::u16string from_ansi(std::string_view bytes) const override {
        const int size = checked_length(bytes.size());
        if (size == 0) return {};
        const int length = MultiByteToWideChar(CP_ACP, 0, bytes.data(), size, nullptr, 0);
        std::u16string text(static_cast<std::size_t>(length), u'\0');
        MultiByteToWideChar(CP_ACP, 0, bytes.data(), size, wide(text), length);
        return text;
    }
};

}  // namespace

const CodePage& code_page() {
    static const AnsiCodePage instance;
    return instance;
}

}  // namespace vex::platform::win32
