// What somebody meets who tries the plug-in at a simulated host: its selection dialog, how far a run is, and the time
// that links take.
#pragma once

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <functional>
#include <set>
#include <string>
#include <vector>

#include "forms/form.h"
#include "simulator/host.h"

namespace vex::sim {

/// All displays of the host, to be checked one by one and found by typing. Shown modally, once. `displays` must outlive
/// it and not change meanwhile. `chosen`: the names that are checked at first, joined by ",".
class DisplayPicker final : public forms::Form {
public:
    DisplayPicker(forms::Toolkit& shown_on, const Displays& displays, const std::u16string& chosen);

    /// The names of the checked displays in the host's order, joined by ","; empty when the user cancelled.
    std::u16string answer() const;

private:
    /// Lists the displays that the search text occurs in.
    void show_matches();
    /// Shows what is checked, and what the buttons do now.
    void show_checks();
    void check_all();

    const Displays& displays_;
    bool accepted_ = false;
    std::set<std::size_t> checked_;
    /// The display of each row.
    std::vector<std::size_t> rows_;

    forms::ImageList images_;
    forms::Label search_label_, count_, none_;
    forms::TextBox search_;
    forms::ListView list_;
    forms::Button all_, ok_, cancel_;
};

/// How far an update run is, as the host sees it: by what its control does on the links. `host` must outlive it.
class RunProgress {
public:
    explicit RunProgress(const Host& host) noexcept : host_(host) {}

    /// The user chose displays: a new run.
    void begin_run(std::vector<std::u16string> names);
    void follow(const LinkEvent& event);

    /// Which display of how many, and which of its units, from 1; 0 before the first.
    std::size_t display_number = 0;
    std::size_t displays() const noexcept { return std::max<std::size_t>(chosen_.size(), 1); }
    std::size_t unit_number = 0;
    std::size_t units = 1;
    /// How much of the unit is done, and of the run: 0 to 1.
    double unit_share = 0;
    double run_share() const noexcept;

private:
    void begin_display(const std::u16string& name);

    const Host& host_;
    std::vector<std::u16string> chosen_;
    /// The run is over.
    bool cancelled_ = false;
};

/// While it lives, the host is in front of its user: its selection dialog is shown to him, and its links take the time
/// that real ones would, while he is served. The references must outlive it.
class Trial {
public:
    /// `speed`: how many times as fast as usual. `ended`: whether the user has left, who waits for nothing more.
    Trial(Host& host, forms::Toolkit& toolkit, RunProgress& progress, double speed, std::function<bool()> ended);
    Trial(const Trial&) = delete;
    ~Trial();

private:
    using Seconds = std::chrono::duration<double>;

    /// The usual time that this takes.
    Seconds time_of(const LinkEvent& event);
    void wait(Seconds usual);

    Host& host_;
    forms::Toolkit& toolkit_;
    double speed_;
    std::function<bool()> ended_;
    /// What the user chose last.
    std::u16string choice_;
    /// Who cancels waits for nothing more.
    bool cancelled_ = false;
    bool waiting_ = false;
    /// What the control says of a transfer is read while the next part is on its way.
    bool transferring_ = false;
};

}  // namespace vex::sim
