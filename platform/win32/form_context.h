// What the windows of one form share: the form, the scale, the fonts, and the boundary to the system's frames.
#pragma once

#include <exception>
#include <optional>
#include <utility>
#include <vector>

#include "forms/controls.h"
#include "forms/form.h"
#include "platform/win32/windows_api.h"

namespace vex::platform::win32 {

/// Edges are rounded, not sizes, so that what touches in twips touches in pixels.
class Scale {
public:
    /// Dots per inch.
    Scale(int horizontal, int vertical) noexcept : horizontal_(horizontal), vertical_(vertical) {}

    int x(forms::Twips twips) const noexcept { return rounded(twips, horizontal_, kTwipsPerInch); }
    int y(forms::Twips twips) const noexcept { return rounded(twips, vertical_, kTwipsPerInch); }
    forms::Twips twips_x(int pixels) const noexcept { return rounded(pixels, kTwipsPerInch, horizontal_); }
    forms::Twips twips_y(int pixels) const noexcept { return rounded(pixels, kTwipsPerInch, vertical_); }
    /// The character height, without the internal leading, of a size in points.
    int font_height(double points) const noexcept {
        // NOLINTNEXTLINE(bugprone-incorrect-roundings): sizes are positive and small, and need no library to round
        return rounded(static_cast<int>(points * kTwipsPerPoint + 0.5), vertical_, kTwipsPerInch);
    }

private:
    static constexpr int kTwipsPerInch = 1440;
    static constexpr int kTwipsPerPoint = 20;

    static int rounded(int value, int numerator, int denominator) noexcept {
        return MulDiv(value, numerator, denominator);
    }

    int horizontal_;
    int vertical_;
};

class FormContext {
public:
    explicit FormContext(forms::Form& form);
    FormContext(const FormContext&) = delete;
    FormContext& operator=(const FormContext&) = delete;

    forms::Form& form() const noexcept { return form_; }
    const Scale& scale() const noexcept { return scale_; }
    /// A font that lives as long as the context.
    HFONT font(const forms::Font& font);

    /// Runs what a window procedure does. Nothing unwinds through the system's frames: an exception is kept,
    /// ends the form's modal display, and `rethrow_fault` raises it there. `failed` is answered meanwhile.
    template <class Body>
    auto guarded(Body&& body, decltype(body()) failed = {}) noexcept {
        try {
            return body();
        } catch (...) {
            if (fault_ == nullptr) fault_ = std::current_exception();
            form_.hide();
            return failed;
        }
    }
    void rethrow_fault() {
        if (fault_ != nullptr) std::rethrow_exception(std::exchange(fault_, nullptr));
    }

    /// While one lives, what the windows report is the echo of a change that the program makes.
    class Update {
    public:
        explicit Update(FormContext& context) noexcept : context_(context), before_(context.updating_) {
            context_.updating_ = true;
        }
        Update(const Update&) = delete;
        Update& operator=(const Update&) = delete;
        ~Update() { context_.updating_ = before_; }

    private:
        FormContext& context_;
        bool before_;
    };
    bool updating() const noexcept { return updating_; }

    /// Where the next context menu belongs, in screen pixels, when it is not asked for by mouse.
    std::optional<POINT> menu_place;

private:
    struct CachedFont {
        LOGFONTW request;
        OwnedFont handle;
    };

    forms::Form& form_;
    Scale scale_;
    std::vector<CachedFont> fonts_;
    std::exception_ptr fault_;
    bool updating_ = false;
};

}  // namespace vex::platform::win32
