#include "platform/win32/list_window.h"

#include <algorithm>
#include <utility>

#include "core/unicode.h"
#include "platform/win32/pictures.h"

namespace vex::platform::win32 {

ListWindow::ListWindow(Surface& parent, forms::ListView& list, int id) : ControlWindow(parent, list), list_(list) {
    create(WC_LISTVIEWW,
           LVS_REPORT | LVS_OWNERDATA | LVS_SINGLESEL | LVS_SHOWSELALWAYS | LVS_SHAREIMAGELISTS | LVS_NOSORTHEADER |
               WS_GROUP | (list.tab_index() < 0 ? 0U : WS_TABSTOP),
           WS_EX_CLIENTEDGE, id);
    ListView_SetExtendedListViewStyle(window(), LVS_EX_FULLROWSELECT | LVS_EX_LABELTIP | LVS_EX_DOUBLEBUFFER);
    make_icons();
    make_columns();
    show_rows();
}

void ListWindow::make_columns() {
    for (std::size_t index = 0; index < list_.columns.size(); ++index) {
        const forms::ListColumn& design = list_.columns[index];
        LVCOLUMNW column = {};
        column.mask = LVCF_TEXT | LVCF_WIDTH | LVCF_SUBITEM;
        column.cx = context().scale().x(design.width);
        column.pszText = const_cast<LPWSTR>(wide(design.header));
        column.iSubItem = static_cast<int>(index);
        SendMessageW(window(), LVM_INSERTCOLUMNW, index, reinterpret_cast<LPARAM>(&column));
    }
}

void ListWindow::make_icons() {
    if (list_.small_icons == nullptr) return;
    const int width = GetSystemMetrics(SM_CXSMICON);
    const int height = GetSystemMetrics(SM_CYSMICON);
    const auto& images = list_.small_icons->images();
    const auto count = static_cast<int>(images.size());
    icons_ = OwnedImageList(common_controls().create_image_list(width, height, ILC_COLOR32 | ILC_MASK, count, 0));
    if (!icons_) throw last_error(u"The icons of a list cannot be made");
    for (const forms::Image& image : images) {
        OwnedIcon icon = module_icon(image.icon, width, height);
        // A picture that is missing leaves its place empty, so that the others keep theirs.
        if (!icon) icon = empty_icon(width, height);
        common_controls().replace_icon(icons_.get(), -1, icon.get());
    }
    SendMessageW(window(), LVM_SETIMAGELIST, LVSIL_SMALL, reinterpret_cast<LPARAM>(icons_.get()));
}

void ListWindow::update(forms::Change change) {
    switch (change) {
        case forms::Change::rows:
            if (!std::exchange(stale_, true)) InvalidateRect(window(), nullptr, TRUE);
            break;
        case forms::Change::row: {
            // A list whose rows have changed is drawn again as a whole.
            const std::size_t row = list_.changed_row();
            if (!stale_) SendMessageW(window(), LVM_REDRAWITEMS, row, static_cast<LPARAM>(row));
            break;
        }
        case forms::Change::selection: show_selection(); break;
        case forms::Change::caption: break;
        default: ControlWindow::update(change);
    }
}

void ListWindow::show_rows() {
    const FormContext::Update update(context());
    const std::size_t count = list_.row_count();
    const bool more = count > std::exchange(shown_rows_, count);
    system_handling(LVM_SETITEMCOUNT, count, more ? LVSICF_NOSCROLL : 0);
    // The window keeps the selection by number, whatever stands there now.
    show_selection();
}

void ListWindow::show_selection() {
    const FormContext::Update update(context());
    LVITEMW state = {};
    state.stateMask = LVIS_SELECTED;
    constexpr auto kAllRows = static_cast<WPARAM>(-1);
    SendMessageW(window(), LVM_SETITEMSTATE, kAllRows, reinterpret_cast<LPARAM>(&state));
    if (!list_.selected()) return;
    state.stateMask = state.state = LVIS_SELECTED | LVIS_FOCUSED;
    SendMessageW(window(), LVM_SETITEMSTATE, *list_.selected(), reinterpret_cast<LPARAM>(&state));
}

forms::Twips ListWindow::row_top(std::size_t row) const noexcept {
    RECT bounds = {};
    bounds.left = LVIR_BOUNDS;
    SendMessageW(window(), LVM_GETITEMRECT, row, reinterpret_cast<LPARAM>(&bounds));
    return context().scale().twips_y(bounds.top);
}

std::optional<LRESULT> ListWindow::notify(NMHDR& header) {
    switch (header.code) {
        case LVN_GETDISPINFOW: tell_item(reinterpret_cast<NMLVDISPINFOW&>(header).item); return 0;
        case LVN_ITEMCHANGED: {
            const auto& changed = reinterpret_cast<const NMLISTVIEW&>(header);
            if (context().updating() || ((changed.uOldState ^ changed.uNewState) & LVIS_SELECTED) == 0) return 0;
            const LRESULT row = SendMessageW(window(), LVM_GETNEXTITEM, static_cast<WPARAM>(-1), LVNI_SELECTED);
            context().form().user_selection(list_,
                                            row < 0 ? std::nullopt : std::optional(static_cast<std::size_t>(row)));
            return 0;
        }
        case NM_CLICK:
            if (reinterpret_cast<const NMITEMACTIVATE&>(header).iItem >= 0) context().form().raise_click(list_);
            return 0;
        case LVN_KEYDOWN:
            if (reinterpret_cast<const NMLVKEYDOWN&>(header).wVKey == VK_SPACE) context().form().raise_click(list_);
            return 0;
        case LVN_ODFINDITEMW: return find_item(reinterpret_cast<const NMLVFINDITEMW&>(header));
        case NM_CUSTOMDRAW: return color_item(reinterpret_cast<NMLVCUSTOMDRAW&>(header));
        default: return std::nullopt;
    }
}

void ListWindow::tell_item(LVITEMW& item) const noexcept {
    const auto index = static_cast<std::size_t>(item.iItem);
    if (item.iItem < 0 || index >= list_.row_count()) return;
    const forms::ListRow& row = list_.rows()[index];
    if ((item.mask & LVIF_IMAGE) != 0) item.iImage = row.icon ? static_cast<int>(*row.icon) : I_IMAGENONE;
    if ((item.mask & LVIF_TEXT) == 0 || item.pszText == nullptr || item.cchTextMax <= 0) return;
    const auto column = static_cast<std::size_t>(item.iSubItem);
    const std::u16string* text = column == 0 ? &row.text : nullptr;
    if (column > 0 && column <= row.sub_items.size()) text = &row.sub_items[column - 1].text;
    std::size_t length = 0;
    if (text != nullptr) {
        length = text->copy(reinterpret_cast<char16_t*>(item.pszText), static_cast<std::size_t>(item.cchTextMax) - 1);
    }
    item.pszText[length] = L'\0';
}

LRESULT ListWindow::color_item(NMLVCUSTOMDRAW& draw) const noexcept {
    if (draw.nmcd.dwDrawStage == CDDS_PREPAINT) return CDRF_NOTIFYITEMDRAW | CDRF_NOTIFYPOSTPAINT;
    if (draw.nmcd.dwDrawStage == CDDS_POSTPAINT) draw_focus(draw.nmcd.hdc);
    const std::size_t index = draw.nmcd.dwItemSpec;
    if (index >= list_.row_count()) return CDRF_DODEFAULT;
    const forms::ListRow& row = list_.rows()[index];
    const auto column = static_cast<std::size_t>(draw.iSubItem);
    const bool cell = (draw.nmcd.dwDrawStage & CDDS_SUBITEM) != 0 && column > 0 && column <= row.sub_items.size();
    draw.clrText = text_color(cell ? row.sub_items[column - 1].fore_color : row.fore_color, COLOR_WINDOWTEXT);
    return draw.nmcd.dwDrawStage == CDDS_ITEMPREPAINT ? CDRF_NOTIFYSUBITEMDRAW : CDRF_DODEFAULT;
}

void ListWindow::draw_focus(HDC dc) const noexcept {
    // The system marks a row; where none has the focus, it would not be seen at all.
    const LRESULT row = SendMessageW(window(), LVM_GETNEXTITEM, static_cast<WPARAM>(-1), LVNI_FOCUSED);
    if (GetFocus() != window() || row >= 0) return;
    RECT area = {};
    RECT header = {};
    GetClientRect(window(), &area);
    GetClientRect(reinterpret_cast<HWND>(SendMessageW(window(), LVM_GETHEADER, 0, 0)), &header);
    area.top = header.bottom;
    DrawFocusRect(dc, &area);
}

int ListWindow::find_item(const NMLVFINDITEMW& search) const {
    constexpr int kNotFound = -1;
    const std::size_t count = list_.row_count();
    if ((search.lvfi.flags & (LVFI_STRING | LVFI_PARTIAL)) == 0 || count == 0) return kNotFound;
    const std::u16string_view wanted(reinterpret_cast<const char16_t*>(search.lvfi.psz));
    const auto start = static_cast<std::size_t>(std::max(search.iStart, 0));
    for (std::size_t step = 0; step < count; ++step) {
        const std::size_t index = (start + step) % count;
        const std::u16string_view text = list_.rows()[index].text;
        if (equal_ignoring_case(text.substr(0, wanted.size()), wanted)) return static_cast<int>(index);
    }
    return kNotFound;
}

std::optional<LRESULT> ListWindow::message(UINT message, WPARAM wide_parameter, LPARAM long_parameter) {
    // Told only when it next has something to do: counting anew for each of many rows would take long.
    if (std::exchange(stale_, false)) show_rows();
    if (message == WM_SETFOCUS || message == WM_KILLFOCUS) InvalidateRect(window(), nullptr, TRUE);
    if (message == WM_CONTEXTMENU) {
        // By mouse, the press has been told already.
        constexpr LPARAM kByKeyboard = -1;
        if (long_parameter == kByKeyboard) press_by_keyboard();
        return 0;
    }
    const auto button = pressed_button(message);
    if (!button) return std::nullopt;
    // The system selects what a left press hits; the handler's choice stands against it. It would do so for a
    // right press too, and wait for the release, which a context menu has taken by then.
    LRESULT result = 0;
    if (*button == forms::MouseButton::left) {
        result = system_handling(message, wide_parameter, long_parameter);
    } else {
        SetFocus(window());
    }
    raise_mouse_down(context(), list_, *button, long_parameter);
    return result;
}

void ListWindow::press_by_keyboard() {
    if (!list_.selected()) return;
    RECT bounds = {};
    bounds.left = LVIR_BOUNDS;
    SendMessageW(window(), LVM_GETITEMRECT, *list_.selected(), reinterpret_cast<LPARAM>(&bounds));
    POINT place = {bounds.left, (bounds.top + bounds.bottom) / 2};
    const LPARAM position = MAKELPARAM(place.x, place.y);
    ClientToScreen(window(), &place);
    context().menu_place = place;
    raise_mouse_down(context(), list_, forms::MouseButton::right, position);
    context().menu_place.reset();
}

}  // namespace vex::platform::win32
