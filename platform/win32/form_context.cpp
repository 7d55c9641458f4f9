#include "platform/win32/form_context.h"

#include <cstring>

namespace vex::platform::win32 {
namespace {

Scale screen_scale() noexcept {
    const WindowContext screen(nullptr);
    return Scale(GetDeviceCaps(screen.dc(), LOGPIXELSX), GetDeviceCaps(screen.dc(), LOGPIXELSY));
}

}  // namespace

FormContext::FormContext(forms::Form& form) : form_(form), scale_(screen_scale()) {}

HFONT FormContext::font(const forms::Font& font) {
    LOGFONTW request = {};
    request.lfHeight = -scale_.font_height(font.points);
    request.lfWeight = font.bold ? FW_BOLD : FW_NORMAL;
    request.lfCharSet = DEFAULT_CHARSET;
    font.face.copy(reinterpret_cast<char16_t*>(request.lfFaceName), LF_FACESIZE - 1);
    for (const CachedFont& cached : fonts_) {
        if (std::memcmp(&cached.request, &request, sizeof request) == 0) return cached.handle.get();
    }
    OwnedFont handle(CreateFontIndirectW(&request));
    if (!handle) throw last_error(u"A font cannot be made");
    return fonts_.emplace_back(CachedFont{request, std::move(handle)}).handle.get();
}

}  // namespace vex::platform::win32
