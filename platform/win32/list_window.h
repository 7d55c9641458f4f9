// A list in report view. The rows stay the control's own: the window asks for what it draws, so that ten
// thousand rows cost no more than the ones on the screen.
#pragma once

#include "platform/win32/control_window.h"
#include "platform/win32/controls_context.h"

namespace vex::platform::win32 {

class ListWindow final : public ControlWindow {
public:
    ListWindow(Surface& parent, forms::ListView& list, int id);

    void update(forms::Change change) override;
    std::optional<LRESULT> notify(NMHDR& header) override;
    /// Where the top of a row stands, in twips of the list.
    forms::Twips row_top(std::size_t row) const noexcept;

private:
    std::optional<LRESULT> message(UINT message, WPARAM wide_parameter, LPARAM long_parameter) override;
    void make_columns();
    void make_icons();
    void show_rows();
    void show_selection();
    void tell_item(LVITEMW& item) const noexcept;
    LRESULT color_item(NMLVCUSTOMDRAW& draw) const noexcept;
    void draw_focus(HDC dc) const noexcept;
    int find_item(const NMLVFINDITEMW& search) const;
    void press_by_keyboard();

    forms::ListView& list_;
    OwnedImageList icons_;
    /// How many rows the window knows of; stale when the list has been given others since.
    std::size_t shown_rows_ = 0;
    bool stale_ = false;
};

}  // namespace vex::platform::win32
