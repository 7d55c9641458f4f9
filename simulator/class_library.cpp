// The simulated host's display list and display picker, and its classes.
#include "simulator/class_library.h"

#include "com/class_factory.h"
#include "core/runtime_error.h"
#include "core/unicode.h"
#include "platform/class_keys.h"
#include "simulator/controls.h"

namespace vex::sim {
namespace {

/// The displays of the host's file, one of them current: the first one after opening, then the one that was
/// selected last. Before opening, and of a host without displays, the fields are empty.
class DisplayListObject final : public AutomationObject<DisplayListObject> {
public:
    using AutomationObject::AutomationObject;

    static std::span<const Member<DisplayListObject>> members() noexcept {
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
        return kMembers;
    }

    void on_call(const CallArguments& arguments) {
        const MemberFacts& member = arguments.member();
        const std::u16string shown = arguments.shown_call(u"HostDisplayList");
        if (member.name == u"FindDisplay") host_.display_asked_about = arguments.text(0);
        host_.begin({host_.display_asked_about, 0, member.name}, shown);
        if (member.kind == kMethod) host_.trace.line(shown);
    }

private:
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
    using AutomationObject::AutomationObject;

    static std::span<const Member<DisplayPickerObject>> members() noexcept {
        static constexpr Member<DisplayPickerObject> kMembers[] = {
            {{u"ShowDisplayPicker", 1, kMethod}, &DisplayPickerObject::show}};
        return kMembers;
    }

private:
    com::Variant show(const CallArguments& /*none*/) { return com::Variant::text(host_.choose_displays()); }
};

constexpr CLSID kDisplayListClass = {0x2AF1D132, 0xAC50, 0x445B, {0xBE, 0x5B, 0x80, 0x59, 0xD3, 0x20, 0x64, 0x9C}};
constexpr CLSID kDisplayPickerClass = {0x829CA34E, 0xAE00, 0x4DDB, {0x94, 0x0C, 0xDB, 0xF8, 0x94, 0x72, 0xB8, 0xFA}};

/// Makes the class known by its name; the class itself is the process's.
void register_name(const HostClass& entry) {
    OLECHAR clsid[39];
    StringFromGUID2(entry.clsid, clsid, 39);
    if (!platform::write_class_text(entry.programmatic_id + u"\\CLSID", u"", reinterpret_cast<const char16_t*>(clsid)))
        throw RuntimeError(kAutomationError, entry.programmatic_id + u" cannot be registered");
}

}  // namespace

const std::vector<HostClass>& host_classes() {
    static const std::vector<HostClass> kClasses = [] {
        std::vector<HostClass> classes = control_classes();
        classes.push_back(host_class<DisplayListObject>(kDisplayListClass, u"vexBrivolaClasses4.HostDisplayList"));
        classes.push_back(
            host_class<DisplayPickerObject>(kDisplayPickerClass, u"vexBrivolaClasses4.HostDisplayPicker"));
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
        register_name(entry);
        cookies_.push_back(com::offer_class(host.lifetime, entry.clsid, [&host, &entry] {
            host.begin({host.display_asked_about, 0, entry.name()}, u"new " + std::u16string(entry.name()));
            return entry.make(host);
        }));
    }
}

HostClasses::~HostClasses() {
    for (const DWORD cookie : cookies_) CoRevokeClassObject(cookie);
}

}  // namespace vex::sim
