// Names on windows.
#include "platform/win32/window_name.h"

#include <utility>

#include "core/unicode.h"

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

}  // namespace vex::platform::win32
