// Draws what the user of a screen looks at, as text.
#pragma once

#include <ostream>
#include <string>

#include "platform/native/terminal/list_pane.h"
#include "simulator/native/native_screen.h"

namespace vex::sim {

/// Draws a dialog where it looks different from what was drawn last, message boxes, and dialogs at work, once each.
/// `out` must outlive it.
class Pictures final : public Onlooker {
public:
    explicit Pictures(std::ostream& out);

    void sees(forms::Form& form) override;
    void sees(const forms::MessageBox& box) override;
    void sees(const forms::OpenFileRequest& request) override;

private:
    void print(const std::string& picture);

    std::ostream& out_;
    platform::native::terminal::IconCharacters icons_;
    std::string last_;
};

}  // namespace vex::sim
