// The host's selection dialog: all its displays, to be checked one by one and found by typing.
#pragma once

#include <cstddef>
#include <set>
#include <string>
#include <vector>

#include "forms/form.h"
#include "simulator/displays.h"

namespace vex::sim {

/// Shown modally, once. `displays` must outlive it and not change meanwhile. `chosen`: the names that are checked at
/// first, joined by ",".
class DisplayPicker final : public forms::Form {
public:
    DisplayPicker(forms::Toolkit& shown_on, const Displays& displays, const std::u16string& chosen = {});

    /// The names of the checked displays in the host's order, joined by ","; empty when the user cancelled.
    std::u16string answer() const;

protected:
    void Form_Load() override;

private:
    /// Lists the displays that the search text occurs in.
    void show_matches();
    /// Shows what is checked, and what the buttons do now.
    void show_checks();
    void toggle(std::size_t row);
    bool all_checked() const;
    void check_all();

    const Displays& displays_;
    bool accepted_ = false;
    std::set<std::size_t> checked_;
    /// The display of each row.
    std::vector<std::size_t> rows_;

    forms::ImageList images_;
    forms::Label search_label_, count_label_, none_label_;
    forms::TextBox search_box_;
    forms::ListView list_;
    forms::Button all_button_, ok_button_, cancel_button_;
};

}  // namespace vex::sim
