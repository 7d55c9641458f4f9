// What the windows of a form look like to other programs, and that nothing of them stays behind.
#include "platform/win32/windows_api.h"

#include <map>

#include "core/unicode.h"
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
    show([&] {
        EXPECT_EQ(platform::win32::window_name(form_window()), u"dlgSample");
        for (const char16_t* name : {u"panel", u"panel_label", u"pages", u"label", u"text", u"check", u"list", u"cmdOk"})
            EXPECT_NE(window_of(name), nullptr);
        EXPECT_EQ(window_of(u"shape"), nullptr);
        EXPECT_EQ(sim::control_window(form_window(), u"shape"), window_of(u"panel"));
        EXPECT_NE(GlobalFindAtomW(L"panel_label"), 0);
    });
    EXPECT_EQ(GlobalFindAtomW(L"panel_label"), 0);
}

TEST_F(WindowTest, ControlsStandWhereTheTablePutsThem) {
    show([&] {
        const auto scale = screen_scale();
        RECT client = {};
        GetClientRect(form_window(), &client);
        EXPECT_EQ(client.right, scale.x(6000));
        EXPECT_EQ(client.bottom, scale.y(4500));
        for (const forms::Control* control : std::vector<forms::Control*>{&form.cmdOk, &form.panel, &form.pages}) {
            const forms::Rect& at = control->place();
            const RECT expected = {scale.x(at.left), scale.y(at.top), scale.x(at.left + at.width),
                                   scale.y(at.top + at.height)};
            const RECT place = client_rectangle(window_of(from_utf8(control->name())), form_window());
            EXPECT_TRUE(EqualRect(&place, &expected)) << control->name();
        }
        // Inside its page, whose top lies above the form's.
        EXPECT_EQ(client_rectangle(window_of(u"text"), form_window()).top, scale.y(-330 + 900));
    });
}

TEST_F(WindowTest, LineAndLabelAreDrawnOnThePanelsColor) {
    show([&] {
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
}

TEST_F(WindowTest, OneLineLabelHasRoomForItsText) {
    show([&] {
        const auto right_end = [&] { return client_rectangle(window_of(u"panel_label"), window_of(u"panel")).right; };
        form.panel_label.set_caption(u"Short");
        EXPECT_EQ(right_end(), screen_scale().x(1200)) << "as designed";
        form.panel_label.set_caption(u"More than the designer's font would have needed");
        EXPECT_GT(right_end(), screen_scale().x(1200));
        EXPECT_LE(right_end(), screen_scale().x(1500)) << "it does not grow out of its panel";
    });
}

TEST_F(WindowTest, FormAndRowsHaveTheirIconsAndANewListHasNoOldSelection) {
    form.pages.set_tab(1);
    show([&] {
        for (const WPARAM size : {ICON_SMALL, ICON_BIG}) EXPECT_NE(SendMessageW(form_window(), WM_GETICON, size, 0), 0);
        const HWND list = window_of(u"list");
        for (const bool anew : {false, true}) {
            form.list.clear();
            form.list.add_row({}, u"good", u"good");
            form.list.add_row({}, u"bad", u"bad");
            if (!anew) form.list.select(1);
            RedrawWindow(list, nullptr, nullptr, RDW_UPDATENOW);
            const LRESULT selected = SendMessageW(list, LVM_GETNEXTITEM, static_cast<WPARAM>(-1), LVNI_SELECTED);
            EXPECT_EQ(selected, anew ? -1 : 1);
        }
        RECT icon = {};
        icon.left = LVIR_ICON;
        SendMessageW(list, LVM_GETITEMRECT, 1, reinterpret_cast<LPARAM>(&icon));
        const platform::win32::WindowContext context(list);
        const COLORREF middle = GetPixel(context.dc(), (icon.left + icon.right) / 2, (icon.top + icon.bottom) / 2 - 4);
        EXPECT_NE(middle, forms::kWhite) << "an icon is drawn";
    });
}

TEST_F(WindowTest, NothingOfManyFormsStaysBehind) {
    form.on_activate = [&] { form.hide(); };
    form.on_load = [&] {
        form.pages.set_tab(1);
        form.list.add_row({}, u"row", u"good");
    };
    expect_no_handle_stays(30, [&] { form.show_modal(); });
}

}  // namespace
}  // namespace vex::test
