// What the windows of one form share: the form, the scale, the fonts, and the boundary to the system's frames.
#pragma once

#include <exception>
#include <optional>
#include <utility>
#include <vector>

#include "forms/form.h"
#include "platform/win32/handles.h"
#include "platform/win32/scale.h"

namespace vex::platform::win32 {

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
