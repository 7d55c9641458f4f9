// The simulated host's finder of LAN device servers.
#include "simulator/box_finder.h"

#include <algorithm>
#include <cmath>

#include "core/unicode.h"
#include "simulator/words.h"
#include "support/text.h"

namespace vex::sim {
namespace {

constexpr std::u16string_view kName = u"FindXPort";
constexpr double kHighestHost = 255;

/// A whole number without a point, as callers pass them; others in the shortest form.
std::u16string shown_number(double number) {
    if (std::abs(number) < 1e9 && number == std::floor(number)) return decimal_text(static_cast<std::int32_t>(number));
    return from_utf8(std::to_string(number));
}

}  // namespace

std::span<const Member<BoxFinder>> BoxFinder::members() noexcept {
    static constexpr Member<BoxFinder> kMembers[] = {
        {u"SearchTimeout",
         dispatch_id(0x68030001),
         DISPATCH_PROPERTYPUT,
         [](BoxFinder& finder, const Arguments& arguments) {
             // A simulated search takes no time.
             finder.host_.trace.line(std::u16string(u"put ").append(kName) + u".SearchTimeout = " +
                                     decimal_text(arguments.int16(0)));
             return com::Variant();
         },
         {VT_I2}},
        {u"FindBoxes",
         dispatch_id(0x6003000A),
         DISPATCH_METHOD,
         [](BoxFinder& finder, const Arguments& arguments) {
             finder.find_boxes(arguments.text(0), arguments.real(1), arguments.real(2));
             return com::Variant();
         },
         {VT_BSTR, VT_R8, VT_R8}},
    };
    return kMembers;
}

void BoxFinder::find_boxes(const std::u16string& address, double first, double last) {
    host_.trace.line(std::u16string(u"call ").append(kName) + u".FindBoxes " + in_quotes(address) + u" " +
                     shown_number(first) + u" " + shown_number(last));
    const std::size_t point = address.rfind(u'.');
    if (point == address.npos) {
        if (first <= 0 && last >= 0) report(address);
        return;
    }
    const std::u16string network = address.substr(0, point + 1);
    const double end = std::min(last, kHighestHost);
    const double start = std::max(first, 0.0);
    for (int step = 0; start + step <= end; ++step) report(network + shown_number(start + step));
}

void BoxFinder::report(const std::u16string& address) {
    for (const std::size_t index : host_.displays.at_address(address)) {
        for (const std::u16string& description : host_.units.boxes(host_.displays.at(index).name)) {
            host_.trace.line(std::u16string(u"event ").append(kName) + u".BoxFound " + in_quotes(description));
            com::Bstr text(description);
            com::Bstr where(address);
            // Last argument first.
            VARIANT arguments[] = {com::Variant::text_reference(text.put_reference()).detach(),
                                   com::Variant::text_reference(where.put_reference()).detach()};
            events().raise_event(kHandledEvent, arguments);
        }
    }
}

}  // namespace vex::sim
