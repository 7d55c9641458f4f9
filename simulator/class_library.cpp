// The simulated host's class library, and its classes.
#include "simulator/class_library.h"

#include "com/class_factory.h"
#include "core/digits.h"
#include "core/runtime_error.h"
#include "core/unicode.h"
#include "simulator/controls.h"
#include "simulator/registry_editor.h"
#include "simulator/screen.h"

namespace vex::sim {
namespace {

// The error numbers of file trouble that automation clients know.
constexpr std::int32_t kFileNotFound = 53;
constexpr std::int32_t kInvalidFileFormat = 321;

constexpr WORD kGet = DISPATCH_PROPERTYGET;
constexpr WORD kPut = DISPATCH_PROPERTYPUT;
constexpr WORD kMethod = DISPATCH_METHOD;

using Maker = com::ComPtr<IDispatch> (*)(Host& host);

template <class Class>
com::ComPtr<IDispatch> make(Host& host) {
    return com::make_object<Class>(host).template query<IDispatch>();
}

struct HostClass {
    const CLSID& clsid;
    std::u16string_view programmatic_id;
    Maker make;
};

constexpr HostClass kClasses[] = {
    {kHostDisplayListClass, u"vexBrivolaClasses4.HostDisplayList", &make<DisplayListObject>},
    {kHostDisplayPickerClass, u"vexBrivolaClasses4.HostDisplayPicker", &make<DisplayPickerObject>},
    {kHostConnectionClass, u"vexBrivolaClasses4.HostConnection", &make<ConnectionObject>},
    {kHostSignInfoClass, u"vexBrivolaClasses4.HostSignInfo", &make<SignInfoObject>},
    {kTransmissionControlClass, u"vexDTCon4.vexDispTrans", &make<TransmissionControl>},
    {kBoxFinderClass, u"vexLantronixControls2.vexLANBoxFinder2", &make<BoxFinder>},
};

std::u16string text_of(REFCLSID clsid) {
    OLECHAR text[39];
    StringFromGUID2(clsid, text, 39);
    return reinterpret_cast<const char16_t*>(text);
}

void register_names(RegistryEditor& registry, const HostClass& entry) {
    const std::u16string name(entry.programmatic_id);
    const std::u16string clsid = text_of(entry.clsid);
    const std::pair<std::u16string, const std::u16string&> values[] = {
        {name, name}, {name + u"\\CLSID", clsid}, {u"CLSID\\" + clsid, name}, {u"CLSID\\" + clsid + u"\\ProgID", name}};
    for (const auto& [key, text] : values) registry.write({platform::kHkeyClassesRoot, key}, u"", u"sz", text);
}

}  // namespace

// ---- Display list -------------------------------------------------------------------------------------

std::span<const Member<DisplayListObject>> DisplayListObject::members() noexcept {
    static constexpr Member<DisplayListObject> kMembers[] = {
        {u"ComPort", 1, kGet, &DisplayListObject::get<&Display::port>},
        {u"ComBaud", 2, kGet, &DisplayListObject::get<&Display::baud>},
        {u"SignTypeCode", 3, kGet, &DisplayListObject::get<&Display::code>},
        {u"ConnectionType", 4, kGet, &DisplayListObject::connection},
        {u"NetworkAddress", 5, kGet, &DisplayListObject::get<&Display::address>},
        {u"PhoneNumber", 6, kGet, &DisplayListObject::get<&Display::phone>},
        {u"SignIDs", 7, kGet, &DisplayListObject::get<&Display::ids>},
        {u"DisplayName", 8, kGet, &DisplayListObject::get<&Display::name>},
        {u"SelectDisplay", 9, kMethod, &DisplayListObject::select, {VT_I4}},
        {u"OpenDisplayFile", 10, kMethod, &DisplayListObject::open, {kTextReference}},
        {u"FindDisplay", 11, kMethod, &DisplayListObject::find, {kTextReference}},
        {u"DisplayTypeName", 12, kGet, &DisplayListObject::get<&Display::type>},
        {u"FirmwareVersion", 13, kGet, &DisplayListObject::get<&Display::version>},
    };
    return kMembers;
}

void DisplayListObject::on_call(const Member<DisplayListObject>& member, const CallArguments& arguments) {
    std::u16string about = current_ < displays_.size() ? displays_.at(current_).name : u"";
    if (member.name == u"FindDisplay") about = arguments.text(0);
    if (member.name == u"SelectDisplay" && is_handle(arguments.int32(0)))
        about = displays_.at(static_cast<std::size_t>(arguments.int32(0)) - 1).name;
    const std::u16string shown = shown_call(u"HostDisplayList", member, arguments);
    host_.begin({about, 0, Operation{member.name}}, shown);
    if (member.kind == DISPATCH_METHOD) host_.trace.line(shown);
}

com::Variant DisplayListObject::open(const CallArguments& arguments) {
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

com::Variant DisplayListObject::find(const CallArguments& arguments) {
    const auto index = displays_.find(arguments.text(0));
    return com::Variant::int32(index ? static_cast<std::int32_t>(*index) + 1 : 0);
}

com::Variant DisplayListObject::select(const CallArguments& arguments) {
    if (is_handle(arguments.int32(0))) current_ = static_cast<std::size_t>(arguments.int32(0)) - 1;
    current();
    return {};
}

const Display& DisplayListObject::current() {
    static const Display kNone = Display::none();
    if (current_ >= displays_.size()) return kNone;
    host_.display_asked_about = displays_.at(current_).name;
    return displays_.at(current_);
}

std::span<const Member<DisplayPickerObject>> DisplayPickerObject::members() noexcept {
    static constexpr Member<DisplayPickerObject> kMembers[] = {
        {u"ShowDisplayPicker", 1, kMethod, &DisplayPickerObject::show}};
    return kMembers;
}

// ---- Connection settings ------------------------------------------------------------------------------

std::span<const Member<ConnectionObject>> ConnectionObject::members() noexcept {
    static constexpr Member<ConnectionObject> kMembers[] = {
        {u"ConnectionType", 1, kPut, &ConnectionObject::put_connection, {VT_I2}},
        {u"ComPort", 2, kPut, &ConnectionObject::put_text<&Display::port>, {VT_BSTR}},
        {u"PhoneNumber", 3, kPut, &ConnectionObject::put_text<&Display::phone>, {VT_BSTR}},
        {u"NetworkAddress", 4, kPut, &ConnectionObject::put_text<&Display::address>, {VT_BSTR}},
        {u"ComBaud", 5, kPut, &ConnectionObject::put_text<&Display::baud>, {VT_BSTR}},
        {u"SignID", 6, kPut, &ConnectionObject::put_sign_id, {VT_I2}},
    };
    return kMembers;
}

void ConnectionObject::on_call(const Member<ConnectionObject>& member, const CallArguments& arguments) {
    settings_.shown.at(static_cast<std::size_t>(member.id) - 1) =
        u" " + std::u16string(member.name) + u"=" + arguments.shown().substr(1);
}

com::Variant ConnectionObject::put_connection(const CallArguments& arguments) {
    settings_.target.connection = arguments.int16(0);
    return {};
}

com::Variant ConnectionObject::put_sign_id(const CallArguments& arguments) {
    settings_.sign_id = arguments.int16(0);
    return {};
}

// ---- Sign information ---------------------------------------------------------------------------------

std::span<const Member<SignInfoObject>> SignInfoObject::members() noexcept {
    static constexpr Member<SignInfoObject> kMembers[] = {
        {u"HasSlaves", 1, kGet, &SignInfoObject::has_slaves},
        {u"SlaveCountY", 2, kGet, &SignInfoObject::count<&SlaveCounts::y>},
        {u"SlaveCountX", 3, kGet, &SignInfoObject::count<&SlaveCounts::x>},
    };
    return kMembers;
}

std::u16string SignInfoObject::describe() const {
    return u"HasSlaves=" + shown_boolean(has_slaves_) + u" SlaveCountY=" + decimal_text(counts_.y) + u" SlaveCountX=" +
           decimal_text(counts_.x);
}

// ---- The classes --------------------------------------------------------------------------------------

HostClasses::HostClasses(Host& host) {
    RegistryEditor registry;
    for (const HostClass& entry : kClasses) {
        register_names(registry, entry);
        cookies_.push_back(com::offer_class(host.lifetime, entry.clsid, [&host, &entry] {
            const std::u16string_view name = entry.programmatic_id.substr(entry.programmatic_id.find(u'.') + 1);
            host.begin({host.display_asked_about, 0, Operation{name}}, u"new " + std::u16string(name));
            return entry.make(host);
        }));
    }
}

std::vector<std::u16string> host_class_names() {
    std::vector<std::u16string> names;
    for (const HostClass& entry : kClasses) names.emplace_back(entry.programmatic_id);
    return names;
}

HostClasses::~HostClasses() {
    for (const DWORD cookie : cookies_) CoRevokeClassObject(cookie);
}

}  // namespace vex::sim
