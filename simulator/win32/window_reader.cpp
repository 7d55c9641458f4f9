#include "simulator/win32/window_reader.h"

#include <algorithm>
#include <limits>

#include "platform/win32/window_name.h"
#include "platform/win32/windows_api.h"

namespace vex::sim {

using namespace platform::win32;

namespace {

HWND handle(WindowHandle window) noexcept { return static_cast<HWND>(window); }

bool has_style(HWND window, LONG_PTR style) noexcept { return (GetWindowLongPtrW(window, GWL_STYLE) & style) == style; }

std::u16string class_of(HWND window) {
    constexpr int kLongestName = 256;
    std::u16string name(kLongestName, u'\0');
    name.resize(static_cast<std::size_t>(GetClassNameW(window, wide(name), kLongestName)));
    return name;
}

bool has_class(HWND window, LPCWSTR name) { return lstrcmpiW(wide(class_of(window)), name) == 0; }

std::u16string shape_property(std::u16string_view shape) { return kShapePrefix + std::u16string(shape); }

struct ShapeSearch {
    std::u16string property;
    HWND found;
};

BOOL CALLBACK look_for_shape(HWND window, LPARAM parameter) noexcept {
    auto& search = *reinterpret_cast<ShapeSearch*>(parameter);
    if (GetPropW(window, wide(search.property)) != nullptr) search.found = window;
    return search.found == nullptr;
}

HWND find_surface_of_shape(HWND form, std::u16string_view shape) {
    ShapeSearch search{shape_property(shape), nullptr};
    if (look_for_shape(form, reinterpret_cast<LPARAM>(&search))) {
        EnumChildWindows(form, look_for_shape, reinterpret_cast<LPARAM>(&search));
    }
    return search.found;
}

BOOL CALLBACK look_for_top_form(HWND window, LPARAM found) noexcept {
    // A modal form keeps the ones below it from taking input.
    const bool form = GetPropW(window, kNameProperty) != nullptr;
    if (!form || !IsWindowVisible(window) || !IsWindowEnabled(window)) return TRUE;
    *reinterpret_cast<HWND*>(found) = window;
    return FALSE;
}

std::u16string cell(HWND list, std::size_t row, int column) {
    LVITEMW item = {};
    item.iSubItem = column;
    std::u16string text(64, u'\0');
    for (;;) {
        item.pszText = wide(text);
        item.cchTextMax = static_cast<int>(text.size());
        const auto length =
            static_cast<std::size_t>(SendMessageW(list, LVM_GETITEMTEXTW, row, reinterpret_cast<LPARAM>(&item)));
        if (length + 1 < text.size()) {
            text.resize(length);
            return text;
        }
        text.resize(text.size() * 2);
    }
}

}  // namespace

WindowHandle top_form_window() {
    HWND top = nullptr;
    EnumThreadWindows(GetCurrentThreadId(), look_for_top_form, reinterpret_cast<LPARAM>(&top));
    return top;
}

WindowHandle control_window(WindowHandle form, std::u16string_view control) {
    const HWND found = find_named_window(handle(form), control);
    return found != nullptr ? found : find_surface_of_shape(handle(form), control);
}

std::u16string shown_name(WindowHandle window) { return window_name(handle(window)); }

std::u16string shown_text(WindowHandle window) {
    std::u16string text(static_cast<std::size_t>(SendMessageW(handle(window), WM_GETTEXTLENGTH, 0, 0)) + 1, u'\0');
    text.resize(static_cast<std::size_t>(
        SendMessageW(handle(window), WM_GETTEXT, text.size(), reinterpret_cast<LPARAM>(text.data()))));
    return text;
}

bool shown_enabled(WindowHandle window) { return !has_style(handle(window), WS_DISABLED); }

bool shown_visible(WindowHandle window) { return has_style(handle(window), WS_VISIBLE); }

bool takes_input(WindowHandle window) {
    return IsWindowVisible(handle(window)) && IsWindowEnabled(handle(window)) &&
           IsWindowEnabled(GetAncestor(handle(window), GA_ROOT));
}

ShownKind shown_kind(WindowHandle window, std::u16string_view control) {
    const HWND shown = handle(window);
    if (window_name(shown) != control) return ShownKind::drawing;
    if (has_class(shown, WC_STATICW)) return ShownKind::text;
    if (has_class(shown, WC_EDITW)) return ShownKind::text_box;
    if (has_class(shown, WC_LISTVIEWW)) return ShownKind::list;
    if (has_class(shown, WC_BUTTONW)) {
        switch (GetWindowLongPtrW(shown, GWL_STYLE) & BS_TYPEMASK) {
            case BS_RADIOBUTTON:
            case BS_AUTORADIOBUTTON: return ShownKind::option_button;
            case BS_CHECKBOX:
            case BS_AUTOCHECKBOX: return ShownKind::check_box;
            default: return ShownKind::push_button;
        }
    }
    // Pages are containers in a container that have no names of their own.
    const HWND inside = GetWindow(shown, GW_CHILD);
    return inside != nullptr && has_class(inside, L"#32770") && window_name(inside).empty() ? ShownKind::pages
                                                                                            : ShownKind::other;
}

bool shown_checked(WindowHandle button) { return SendMessageW(handle(button), BM_GETCHECK, 0, 0) == BST_CHECKED; }

int shown_page(WindowHandle pages) {
    int page = 0;
    for (HWND inside = GetWindow(handle(pages), GW_CHILD); inside != nullptr; inside = GetWindow(inside, GW_HWNDNEXT)) {
        if (shown_visible(inside)) return page;
        ++page;
    }
    return -1;
}

std::optional<forms::Color> shown_fill_color(WindowHandle surface, std::u16string_view shape) {
    const HWND window = handle(surface);
    const auto point = reinterpret_cast<LPARAM>(GetPropW(window, wide(shape_property(shape))));
    if (point == 0) return std::nullopt;
    UpdateWindow(window);
    const WindowContext context(window);
    const COLORREF color = GetPixel(context.dc(), static_cast<short>(LOWORD(point)), static_cast<short>(HIWORD(point)));
    return color == CLR_INVALID ? std::nullopt : std::optional<forms::Color>(color);
}

std::size_t shown_row_count(WindowHandle list) {
    return static_cast<std::size_t>(SendMessageW(handle(list), LVM_GETITEMCOUNT, 0, 0));
}

std::vector<std::u16string> shown_row(WindowHandle list, std::size_t row) {
    const auto header = reinterpret_cast<HWND>(SendMessageW(handle(list), LVM_GETHEADER, 0, 0));
    const auto columns = std::max(0, static_cast<int>(SendMessageW(header, HDM_GETITEMCOUNT, 0, 0)));
    std::vector<std::u16string> cells;
    cells.reserve(static_cast<std::size_t>(columns));
    for (int column = 0; column < columns; ++column) cells.push_back(cell(handle(list), row, column));
    return cells;
}

forms::Color shown_row_color(WindowHandle list, std::size_t row) {
    // As the list asks its owner before it draws a row. A pixel would not do: smoothed letters have none that
    // is sure to be of their own colour.
    NMLVCUSTOMDRAW draw = {};
    draw.nmcd.hdr.hwndFrom = handle(list);
    draw.nmcd.hdr.idFrom = static_cast<UINT_PTR>(GetDlgCtrlID(handle(list)));
    draw.nmcd.hdr.code = NM_CUSTOMDRAW;
    draw.nmcd.dwDrawStage = CDDS_ITEMPREPAINT;
    draw.nmcd.dwItemSpec = row;
    SendMessageW(GetParent(handle(list)), WM_NOTIFY, draw.nmcd.hdr.idFrom, reinterpret_cast<LPARAM>(&draw));
    return draw.clrText;
}

}  // namespace vex::sim
