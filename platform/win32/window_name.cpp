#include "platform/win32/window_name.h"

#include <string>
#include <utility>

#include "com/com_ptr.h"
#include "core/unicode.h"

#include <oleacc.h>

namespace vex::platform::win32 {
namespace {

struct NameSearch {
    std::u16string_view name;
    HWND found;
};

BOOL CALLBACK look_at_name(HWND window, LPARAM parameter) noexcept {
    auto& search = *reinterpret_cast<NameSearch*>(parameter);
    if (window_name(window) == search.name) search.found = window;
    return search.found == nullptr;
}

constexpr CLSID kAnnotationService = {0xB5F8350B, 0x0548, 0x48B1, {0xA6, 0xEE, 0x88, 0xBD, 0x00, 0xB4, 0xA5, 0xE7}};
constexpr IID kAnnotationServiceInterface = {
    0x6E26E776, 0x04F0, 0x495D, {0x80, 0xE4, 0x33, 0x30, 0x35, 0x2E, 0x31, 0x69}};
constexpr MSAAPROPID kAccessibleName = {0x608D3DF8, 0x8128, 0x4AA7, {0xA4, 0x28, 0xF5, 0x5E, 0x49, 0x26, 0x72, 0x91}};
constexpr auto kClientArea = static_cast<DWORD>(OBJID_CLIENT);

com::ComPtr<IAccPropServices> annotation_service() noexcept {
    com::ComPtr<IAccPropServices> service;
    CoCreateInstance(kAnnotationService, nullptr, CLSCTX_INPROC_SERVER, kAnnotationServiceInterface,
                     service.put_void());
    return service;
}

}  // namespace

WindowName::WindowName(HWND window, std::string_view name)
    : window_(window), atom_(GlobalAddAtomW(wide(from_utf8(name)))) {
    // A window without a name works as well; it is only harder to find.
    if (atom_ != 0) SetPropW(window_, kNameProperty, reinterpret_cast<HANDLE>(static_cast<UINT_PTR>(atom_)));
}

WindowName::WindowName(WindowName&& other) noexcept
    : window_(std::exchange(other.window_, nullptr)), atom_(std::exchange(other.atom_, ATOM{0})) {}

WindowName& WindowName::operator=(WindowName&& other) noexcept {
    std::swap(window_, other.window_);
    std::swap(atom_, other.atom_);
    return *this;
}

WindowName::~WindowName() {
    if (window_ != nullptr) RemovePropW(window_, kNameProperty);
    if (atom_ != 0) GlobalDeleteAtom(atom_);
}

std::u16string window_name(HWND window) {
    const auto atom = static_cast<ATOM>(reinterpret_cast<UINT_PTR>(GetPropW(window, kNameProperty)));
    if (atom == 0) return {};
    constexpr int kLongestAtom = 256;
    std::u16string name(kLongestAtom, u'\0');
    name.resize(GlobalGetAtomNameW(atom, wide(name), kLongestAtom));
    return name;
}

HWND find_named_window(HWND ancestor, std::u16string_view name) {
    NameSearch search{name, nullptr};
    EnumChildWindows(ancestor, look_at_name, reinterpret_cast<LPARAM>(&search));
    return search.found;
}

void set_accessible_name(HWND window, std::u16string_view name) {
    if (const auto service = annotation_service()) {
        service->SetHwndPropStr(window, kClientArea, CHILDID_SELF, kAccessibleName, wide(std::u16string(name)));
    }
}

void clear_accessible_name(HWND window) {
    if (const auto service = annotation_service()) {
        MSAAPROPID property = kAccessibleName;
        service->ClearHwndProps(window, kClientArea, CHILDID_SELF, &property, 1);
    }
}

}  // namespace vex::platform::win32
