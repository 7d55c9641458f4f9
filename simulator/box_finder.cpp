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

}  // namespace

std::span<const Member<BoxFinder>> BoxFinder::members() noexcept {
    static constexpr Member<BoxFinder> kMembers[] = {
        {u"SearchTimeout",
         dispatch_id(0x68030001),
         DISPATCH_PROPERTYPUT,
         // A simulated search takes no time.
         [](BoxFinder&, const Arguments&) { return com::Variant(); },
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

void BoxFinder::on_call(const Member<BoxFinder>& member, const Arguments& arguments) {
    const std::u16string shown = shown_call(kName, member, arguments);
    host_.begin({host_.display_asked_about, 0, parse_operation(member.name)}, shown);
    host_.trace.line(shown);
}

void BoxFinder::find_boxes(const std::u16string& address, double first, double last) {
    const std::size_t point = address.rfind(u'.');
    if (point == address.npos) {
        if (first <= 0 && last >= 0) report(address);
        return;
    }
    const std::u16string network = address.substr(0, point + 1);
    const double end = std::min(last, kHighestHost);
    const double start = std::max(first, 0.0);
    for (double host = std::ceil(start); host <= end; ++host)
        report(network + decimal_text(static_cast<std::int32_t>(host)));
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
