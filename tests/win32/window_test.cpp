// What the windows of a form look like to other programs, and that nothing of them stays behind.
#include "platform/win32/windows_api.h"

#include <map>

#include "platform/win32/form_context.h"
#include "simulator/win32/win32_screen.h"
#include "tests/win32/handle_counts.h"
#include "tests/win32/window_fixture.h"

namespace vex::test {
namespace {

platform::win32::Scale screen_scale() {
    const platform::win32::WindowContext screen(nullptr);
    return {GetDeviceCaps(screen.dc(), LOGPIXELSX), GetDeviceCaps(screen.dc(), LOGPIXELSY)};
}

RECT client_rectangle(HWND window, HWND parent) {
    RECT place = {};
    GetWindowRect(window, &place);
    MapWindowPoints(nullptr, parent, reinterpret_cast<POINT*>(&place), 2);
    return place;
}

TEST_F(WindowTest, WindowsCarryTheNamesOfTheirControls) {
    user.then([&] {
        EXPECT_EQ(platform::win32::window_name(form_window()), u"dlgSample");
        for (const char16_t* name : {u"panel", u"panel_label", u"pages", u"label", u"text", u"option_a", u"check",
                                     u"list", u"cmdOk", u"cmdCancel"}) {
            EXPECT_NE(window_of(name), nullptr);
        }
        EXPECT_EQ(window_of(u"shape"), nullptr);
        EXPECT_EQ(sim::control_window(form_window(), u"shape"), window_of(u"panel"));
        EXPECT_NE(GlobalFindAtomW(L"panel_label"), 0);
    });
    show();
    EXPECT_EQ(GlobalFindAtomW(L"panel_label"), 0);
}

TEST_F(WindowTest, ControlsStandWhereTheTablePutsThem) {
    user.then([&] {
        const auto scale = screen_scale();
        RECT client = {};
        GetClientRect(form_window(), &client);
        EXPECT_EQ(client.right, scale.x(6000));
        EXPECT_EQ(client.bottom, scale.y(4500));
        for (const auto* control :
             {static_cast<forms::Control*>(&form.cmdOk), static_cast<forms::Control*>(&form.panel),
              static_cast<forms::Control*>(&form.pages)}) {
            const std::u16string name(control->name().begin(), control->name().end());
            const RECT place = client_rectangle(window_of(name), form_window());
            const forms::Rect& at = control->place();
            EXPECT_EQ(place.left, scale.x(at.left)) << control->name();
            EXPECT_EQ(place.top, scale.y(at.top)) << control->name();
            EXPECT_EQ(place.right, scale.x(at.left + at.width)) << control->name();
            EXPECT_EQ(place.bottom, scale.y(at.top + at.height)) << control->name();
        }
        // Inside its page, whose top lies above the form's.
        EXPECT_EQ(client_rectangle(window_of(u"text"), form_window()).top, scale.y(-330 + 900));
    });
    show();
}

TEST_F(WindowTest, LineAndLabelAreDrawnOnThePanelsColor) {
    user.then([&] {
        const HWND panel = window_of(u"panel");
        RedrawWindow(panel, nullptr, nullptr, RDW_UPDATENOW | RDW_ALLCHILDREN);
        const auto scale = screen_scale();
        const platform::win32::WindowContext context(panel);
        EXPECT_EQ(GetPixel(context.dc(), scale.x(150), scale.y(600)), forms::kWhite);
        EXPECT_EQ(GetPixel(context.dc(), scale.x(1400), scale.y(600)), forms::kDarkGrey);
        const platform::win32::WindowContext label(window_of(u"panel_label"));
        std::map<COLORREF, int> colors;
        for (int x = 0; x < scale.x(900); ++x) {
            for (int y = 0; y < scale.y(195); ++y) ++colors[GetPixel(label.dc(), x, y)];
        }
        EXPECT_GT(colors[forms::kDarkGrey], colors[forms::kWhite]);
        EXPECT_GT(colors[forms::kWhite], 20) << "the text";
    });
    show();
}

TEST_F(WindowTest, OneLineLabelHasRoomForItsText) {
    const std::u16string long_text = u"More than the designer's font would have needed";
    user.then([&] {
        form.panel_label.set_caption(u"Short");
        const LONG designed = client_rectangle(window_of(u"panel_label"), window_of(u"panel")).right;
        EXPECT_EQ(designed, screen_scale().x(1200));
        form.panel_label.set_caption(long_text);
        const LONG grown = client_rectangle(window_of(u"panel_label"), window_of(u"panel")).right;
        EXPECT_GT(grown, designed);
        EXPECT_LE(grown, screen_scale().x(1500)) << "it does not grow out of its panel";
    });
    show();
}

TEST_F(WindowTest, FormAndRowsHaveTheirIcons) {
    form.pages.set_tab(1);
    user.then([&] {
        EXPECT_NE(SendMessageW(form_window(), WM_GETICON, ICON_SMALL, 0), 0);
        EXPECT_NE(SendMessageW(form_window(), WM_GETICON, ICON_BIG, 0), 0);
        form.list.add_row({}, u"good", u"good");
        form.list.add_row({}, u"bad", u"bad");
        const HWND list = window_of(u"list");
        const auto images = reinterpret_cast<HIMAGELIST>(SendMessageW(list, LVM_GETIMAGELIST, LVSIL_SMALL, 0));
        EXPECT_EQ(ImageList_GetImageCount(images), 2);
        RECT icon = {};
        icon.left = LVIR_ICON;
        SendMessageW(list, LVM_GETITEMRECT, 1, reinterpret_cast<LPARAM>(&icon));
        RedrawWindow(list, nullptr, nullptr, RDW_UPDATENOW);
        const platform::win32::WindowContext context(list);
        const COLORREF middle = GetPixel(context.dc(), (icon.left + icon.right) / 2, (icon.top + icon.bottom) / 2 - 4);
        EXPECT_NE(middle, forms::kWhite) << "an icon is drawn";
    });
    show();
}

TEST_F(WindowTest, RowsOfANewListAreNotSelectedByThePlaceOfOldOnes) {
    form.pages.set_tab(1);
    user.then([&] {
        for (const bool anew : {false, true}) {
            form.list.clear();
            form.list.add_row({}, u"good", u"good");
            form.list.add_row({}, u"bad", u"bad");
            if (!anew) form.list.select(1);
            const HWND list = window_of(u"list");
            RedrawWindow(list, nullptr, nullptr, RDW_UPDATENOW);
            const LRESULT selected = SendMessageW(list, LVM_GETNEXTITEM, static_cast<WPARAM>(-1), LVNI_SELECTED);
            EXPECT_EQ(selected, anew ? -1 : 1);
        }
    });
    show();
}

TEST_F(WindowTest, NothingOfManyFormsStaysBehind) {
    constexpr int kForms = 30;
    form.on_activate = [&] { form.hide(); };
    form.on_load = [&] {
        form.pages.set_tab(1);
        form.list.add_row({}, u"row", u"good");
    };
    const auto show_some = [&](int count) {
        for (int shown = 0; shown < count; ++shown) form.show_modal();
    };
    // The first ones make what the system keeps for all.
    show_some(3);
    const HandleCounts before = count_handles();
    show_some(kForms);
    const HandleCounts after = count_handles();
    EXPECT_GT(before.graphics, 0U);
    EXPECT_EQ(after.user, before.user);
    EXPECT_EQ(after.graphics, before.graphics);
}

}  // namespace
}  // namespace vex::test
