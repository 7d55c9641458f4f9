// What a session reads out of a display's texts.
#include "update/display_facts.h"

#include "core/runtime_error.h"
#include "core/unicode.h"
#include "support/text.h"

namespace vex {

bool is_kqs_controller(std::u16string_view version) { return equal_ignoring_case(version.substr(0, 3), u"KQS"); }

double version_number(std::u16string_view version) {
    const std::size_t point = version.rfind(u'.');
    if (point == std::u16string_view::npos) return 0;
    if (point == 0) throw RuntimeError(kInvalidProcedureCall);
    return leading_number(version.substr(point - 1));
}

double host_number(std::u16string_view address) {
    const std::size_t point = address.rfind(u'.');
    return point == std::u16string_view::npos ? 0 : leading_number(address.substr(point + 1));
}

std::u16string_view lan_box_type(std::u16string_view description) {
    for (const std::u16string_view box : {u"XPort", u"UDS", u"MSS"}) {
        if (description.find(box) != std::u16string_view::npos) return box;
    }
    return u"Unknown";
}

}  // namespace vex
