// The simulated host's display list, display picker and finder of LAN device servers, and its classes.
#include "simulator/class_library.h"

#include "com/class_factory.h"
#include "core/runtime_error.h"
#include "core/unicode.h"
#include "platform/class_keys.h"
#include "simulator/transmission_control.h"

namespace vex::sim {
namespace {

constexpr IID kBoxFinderEvents = own_identity(0x53);

constexpr std::u16string_view kFinderName = u"FindXPort";

/// The displays of the host's file, one of them current: the first one after opening, then the one that was
/// selected last. Before opening, and of a host without displays, the fields are empty.
class DisplayListObject final : public AutomationObject<DisplayListObject> {
public:
    static constexpr char16_t kClass[] = u"HostDisplayList";

    using AutomationObject::AutomationObject;

    void on_call(const CallArguments& arguments) {
        const MemberFacts& member = arguments.member();
        const std::u16string shown = arguments.shown_call(kClass);
        if (member.name == u"FindDisplay") host_.display_asked_about = arguments.text(0);
        host_.begin({host_.display_asked_about, 0, member.name}, shown);
        if (member.kind == kMethod) host_.trace.line(shown);
    }

    /// Reads the file anew.
    com::Variant open(const CallArguments& arguments) {
        // The error numbers of file trouble that automation clients know.
        constexpr std::int32_t kFileNotFound = 53;
        constexpr std::int32_t kInvalidFileFormat = 321;
        const std::u16string file = arguments.text(0);
        host_.save_displays();
        if (!equal_ignoring_case(file, u"Displays.dat") || !std::filesystem::exists(host_.display_file))
            throw RuntimeError(kFileNotFound, u"File not found: " + file);
        try {
            displays_ = Displays::parse(to_utf8(Host::kDisplayFile), read_file(host_.display_file));
            current_ = 0;
        } catch (const TextError& error) {
            throw RuntimeError(kInvalidFileFormat, from_utf8(error.what()));
        }
        return {};
    }

    /// A handle is a position from 1; 0 for a name that is not known.
    com::Variant find(const CallArguments& arguments) {
        const auto index = displays_.find(arguments.text(0));
        return com::Variant::int32(index ? static_cast<std::int32_t>(*index) + 1 : 0);
    }

    /// An unknown handle leaves the current display as it is.
    com::Variant select(const CallArguments& arguments) {
        const auto index = static_cast<std::size_t>(arguments.int32(0)) - 1;
        if (index < displays_.size()) current_ = index;
        current();
        return {};
    }

    template <auto Field>
    com::Variant get(const CallArguments& /*none*/) {
        return com::Variant::text(current().*Field);
    }
    com::Variant connection(const CallArguments& /*none*/) { return com::Variant::int16(current().connection); }

    using List = DisplayListObject;
    static constexpr Member<List> kMembers[] = {
        {{u"ComPort", 1, kGet}, &List::get<&Display::port>},
        {{u"ComBaud", 2, kGet}, &List::get<&Display::baud>},
        {{u"SignTypeCode", 3, kGet}, &List::get<&Display::code>},
        {{u"ConnectionType", 4, kGet}, &List::connection},
        {{u"NetworkAddress", 5, kGet}, &List::get<&Display::address>},
        {{u"PhoneNumber", 6, kGet}, &List::get<&Display::phone>},
        {{u"SignIDs", 7, kGet}, &List::get<&Display::ids>},
        {{u"DisplayName", 8, kGet}, &List::get<&Display::name>},
        {{u"SelectDisplay", 9, kMethod, {VT_I4}}, &List::select},
        {{u"OpenDisplayFile", 10, kMethod, {kTextReference}}, &List::open},
        {{u"FindDisplay", 11, kMethod, {kTextReference}}, &List::find},
        {{u"DisplayTypeName", 12, kGet}, &List::get<&Display::type>},
        {{u"FirmwareVersion", 13, kGet}, &List::get<&Display::version>},
    };

private:
    const Display& current() {
        static const Display kNone = Display::none();
        if (current_ >= displays_.size()) return kNone;
        host_.display_asked_about = displays_.at(current_).name;
        return displays_.at(current_);
    }

    Displays displays_;
    std::size_t current_ = 0;
};

/// The host's selection dialog.
class DisplayPickerObject final : public AutomationObject<DisplayPickerObject> {
public:
    static constexpr char16_t kClass[] = u"HostDisplayPicker";

    using AutomationObject::AutomationObject;

    com::Variant show(const CallArguments& /*none*/) { return com::Variant::text(host_.choose_displays()); }

    static constexpr Member<DisplayPickerObject> kMembers[] = {
        {{u"ShowDisplayPicker", 1, kMethod}, &DisplayPickerObject::show}};
};

/// Reports the device servers in front of the displays at the addresses that it searches.
class BoxFinder final : public EventfulControl<BoxFinder> {
public:
    static constexpr char16_t kClass[] = u"vexLANBoxFinder2";
    static constexpr const IID& kSourceInterface = kBoxFinderEvents;

    using EventfulControl::EventfulControl;

    void on_call(const CallArguments& arguments) {
        const std::u16string shown = arguments.shown_call(kFinderName);
        host_.begin({host_.display_asked_about, 0, arguments.member().name}, shown);
        host_.trace.line(shown);
    }

    /// A simulated search takes no time.
    com::Variant put_timeout(const CallArguments& /*seconds*/) { return {}; }

    /// Searches the hosts from the second argument to the third of the network that the address lies in.
    com::Variant find_boxes(const CallArguments& arguments) {
        const std::u16string network = split_address(arguments.text(0)).first;
        // Collected first: what a user does meanwhile may change the host's displays.
        std::vector<std::pair<std::u16string, std::u16string>> found;
        for (const Display& display : host_.displays) {
            const auto [its_network, number] = split_address(display.address);
            if (its_network != network || number < arguments.real(1) || number > arguments.real(2)) continue;
            for (const std::u16string& box : host_.units.boxes(display.name)) found.emplace_back(display.address, box);
        }
        for (const auto& [address, box] : found) {
            host_.trace.line(std::u16string(u"event ").append(kFinderName) + u".BoxFound " + in_quotes(box));
            raise_event(kHandledEvent, {address, box});
        }
        return {};
    }

    static constexpr Member<BoxFinder> kMembers[] = {
        {{u"SearchTimeout", 0x68030001, kPut, {VT_I2}}, &BoxFinder::put_timeout},
        {{u"FindBoxes", 0x6003000A, kMethod, {VT_BSTR, VT_R8, VT_R8}}, &BoxFinder::find_boxes},
    };

private:
    /// The network and the number of a host in it. An address without a "." is a network of its own, with host 0.
    static std::pair<std::u16string, double> split_address(const std::u16string& address) {
        const std::size_t point = address.rfind(u'.');
        if (point == address.npos) return {address, 0};
        return {address.substr(0, point), number_of<double>(to_utf8(address.substr(point + 1))).value_or(-1)};
    }
};

constexpr CLSID kDisplayListClass = {0x2AF1D132, 0xAC50, 0x445B, {0xBE, 0x5B, 0x80, 0x59, 0xD3, 0x20, 0x64, 0x9C}};
constexpr CLSID kDisplayPickerClass = {0x829CA34E, 0xAE00, 0x4DDB, {0x94, 0x0C, 0xDB, 0xF8, 0x94, 0x72, 0xB8, 0xFA}};

}  // namespace

const std::vector<HostClass>& host_classes() {
    static const std::vector<HostClass> kClasses = [] {
        std::vector<HostClass> classes = transmission_classes();
        classes.push_back(host_class<BoxFinder>(own_identity(0x52), u"vexLantronixControls2"));
        classes.push_back(host_class<DisplayListObject>(kDisplayListClass, u"vexBrivolaClasses4", false));
        classes.push_back(host_class<DisplayPickerObject>(kDisplayPickerClass, u"vexBrivolaClasses4", false));
        return classes;
    }();
    return kClasses;
}

Operation parse_operation(std::u16string_view name) {
    std::string all;
    const auto is_meant = [&](std::u16string_view known) {
        all += (all.empty() ? "" : ", ") + to_utf8(known);
        return known == name;
    };
    for (const HostClass& known : host_classes()) {
        if (is_meant(known.name())) return known.name();
        // The two controls and the display list.
        if (!known.name().starts_with(u"vex") && known.name() != u"HostDisplayList") continue;
        for (const MemberFacts& member : known.members)
            if (is_meant(member.name)) return member.name;
    }
    refuse(name, "is none of " + all);
}

HostClasses::HostClasses(Host& host) {
    for (const HostClass& entry : host_classes()) {
        // Known by its name; the class itself is the process's.
        OLECHAR clsid[39];
        StringFromGUID2(entry.clsid, clsid, 39);
        const std::u16string key = entry.programmatic_id + u"\\CLSID";
        if (entry.found_by_name && !platform::write_class_text(key, u"", reinterpret_cast<const char16_t*>(clsid)))
            throw RuntimeError(kAutomationError, entry.programmatic_id + u" cannot be registered");
        cookies_.push_back(com::offer_class(host.lifetime, entry.clsid, [&host, &entry] {
            const ObjectCall creation{entry.name()};
            const auto make = [&] {
                host.begin({host.display_asked_about, 0, entry.name()}, creation.name());
                return com::Variant::object(entry.make(host).get());
            };
            return com::ComPtr<IDispatch>(host.outcome_of(creation, make).get().pdispVal);
        }));
    }
}

HostClasses::~HostClasses() {
    for (const DWORD cookie : cookies_) CoRevokeClassObject(cookie);
}

}  // namespace vex::sim
