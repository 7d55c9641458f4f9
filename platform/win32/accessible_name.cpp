// Accessible names by the system's annotation service.
#include "platform/win32/accessible_name.h"

#include <string>

#include "com/com_ptr.h"

#include <oleacc.h>

namespace vex::platform::win32 {
namespace {

constexpr CLSID kAnnotationService = {0xB5F8350B, 0x0548, 0x48B1, {0xA6, 0xEE, 0x88, 0xBD, 0x00, 0xB4, 0xA5, 0xE7}};
constexpr IID kAnnotationServiceInterface = {
    0x6E26E776, 0x04F0, 0x495D, {0x80, 0xE4, 0x33, 0x30, 0x35, 0x2E, 0x31, 0x69}};
constexpr MSAAPROPID kNameProperty = {0x608D3DF8, 0x8128, 0x4AA7, {0xA4, 0x28, 0xF5, 0x5E, 0x49, 0x26, 0x72, 0x91}};
constexpr auto kClientArea = static_cast<DWORD>(OBJID_CLIENT);

com::ComPtr<IAccPropServices> annotation_service() noexcept {
    com::ComPtr<IAccPropServices> service;
    CoCreateInstance(kAnnotationService, nullptr, CLSCTX_INPROC_SERVER, kAnnotationServiceInterface,
                     service.put_void());
    return service;
}

}  // namespace

void set_accessible_name(HWND window, std::u16string_view name) {
    if (const auto service = annotation_service()) {
        service->SetHwndPropStr(window, kClientArea, CHILDID_SELF, kNameProperty, wide(std::u16string(name)));
    }
}

void clear_accessible_name(HWND window) {
    if (const auto service = annotation_service()) {
        MSAAPROPID property = kNameProperty;
        service->ClearHwndProps(window, kClientArea, CHILDID_SELF, &property, 1);
    }
}

}  // namespace vex::platform::win32
