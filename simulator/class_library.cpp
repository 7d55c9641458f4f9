// The simulated host's class library, and its classes.
#include "simulator/class_library.h"

#include <string>

#include "com/class_factory.h"
#include "core/runtime_error.h"
#include "core/unicode.h"
#include "simulator/controls.h"
#include "simulator/registry_editor.h"
#include "simulator/screen.h"

namespace vex::sim {
namespace {

constexpr char16_t kDisplayFile[] = u"Displays.dat";

// The error numbers of file trouble that automation clients know.
constexpr std::int32_t kFileNotFound = 53;
constexpr std::int32_t kInvalidFileFormat = 321;

std::u16string decimal(std::int16_t number) { return from_utf8(std::to_string(number)); }

com::Variant nothing() noexcept { return {}; }

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
    registry.write_text(kHkeyClassesRoot, name, u"", name);
    registry.write_text(kHkeyClassesRoot, name + u"\\CLSID", u"", clsid);
    registry.write_text(kHkeyClassesRoot, u"CLSID\\" + clsid, u"", name);
    registry.write_text(kHkeyClassesRoot, u"CLSID\\" + clsid + u"\\ProgID", u"", name);
}

}  // namespace

// ---- Display list -------------------------------------------------------------------------------------

std::span<const Member<DisplayListObject>> DisplayListObject::members() noexcept {
    using List = DisplayListObject;
    constexpr WORD kGet = DISPATCH_PROPERTYGET;
    static constexpr Member<List> kMembers[] = {
        {u"ComPort", 1, kGet, &get<&Display::port>},
        {u"ComBaud", 2, kGet, &get<&Display::baud>},
        {u"SignTypeCode", 3, kGet, &get<&Display::code>},
        {u"ConnectionType", 4, kGet,
         [](List& list, const CallArguments&) { return com::Variant::int16(list.current().connection); }},
        {u"NetworkAddress", 5, kGet, &get<&Display::address>},
        {u"PhoneNumber", 6, kGet, &get<&Display::phone>},
        {u"SignIDs", 7, kGet, &get<&Display::ids>},
        {u"DisplayName", 8, kGet, &get<&Display::name>},
        {u"SelectDisplay",
         9,
         DISPATCH_METHOD,
         [](List& list, const CallArguments& arguments) {
             list.select(arguments.int32(0));
             return nothing();
         },
         {VT_I4}},
        {u"OpenDisplayFile",
         10,
         DISPATCH_METHOD,
         [](List& list, const CallArguments& arguments) {
             list.open(arguments.text(0));
             return nothing();
         },
         {kTextReference}},
        {u"FindDisplay",
         11,
         DISPATCH_METHOD,
         [](List& list, const CallArguments& arguments) { return com::Variant::int32(list.find(arguments.text(0))); },
         {kTextReference}},
        {u"DisplayTypeName", 12, kGet, &get<&Display::type>},
        {u"FirmwareVersion", 13, kGet, &get<&Display::version>},
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

void DisplayListObject::open(const std::u16string& file_name) {
    host_.save_displays();
    if (!equal_ignoring_case(file_name, kDisplayFile) || !std::filesystem::exists(host_.display_file)) {
        throw RuntimeError(kFileNotFound, u"File not found: " + file_name);
    }
    try {
        displays_ = Displays::parse(to_utf8(Host::kDisplayFile), read_file(host_.display_file));
        current_ = 0;
    } catch (const TextError& error) {
        throw RuntimeError(kInvalidFileFormat, from_utf8(error.what()));
    }
}

std::int32_t DisplayListObject::find(const std::u16string& name) const {
    const auto index = displays_.find(name);
    return index ? static_cast<std::int32_t>(*index) + 1 : 0;
}

void DisplayListObject::select(std::int32_t handle) {
    if (is_handle(handle)) current_ = static_cast<std::size_t>(handle) - 1;
    if (current_ < displays_.size()) host_.display_asked_about = displays_.at(current_).name;
}

const Display& DisplayListObject::current() const {
    static const Display kNone{
        .name{}, .type{}, .code{}, .port{}, .baud{}, .phone{}, .connection = 0, .address{}, .ids{}, .version{}};
    if (current_ >= displays_.size()) return kNone;
    const Display& display = displays_.at(current_);
    host_.display_asked_about = display.name;
    return display;
}

// ---- Display picker -----------------------------------------------------------------------------------

std::span<const Member<DisplayPickerObject>> DisplayPickerObject::members() noexcept {
    static constexpr Member<DisplayPickerObject> kMembers[] = {
        {u"ShowDisplayPicker", 1, DISPATCH_METHOD,
         [](DisplayPickerObject& picker, const CallArguments&) {
             return com::Variant::text(picker.host_.choose_displays());
         }},
    };
    return kMembers;
}

// ---- Connection settings ------------------------------------------------------------------------------

std::span<const Member<ConnectionObject>> ConnectionObject::members() noexcept {
    constexpr WORD kPut = DISPATCH_PROPERTYPUT;
    static constexpr Member<ConnectionObject> kMembers[] = {
        {u"ConnectionType", 1, kPut, &put_number<&ConnectionSettings::connection_type>, {VT_I2}},
        {u"ComPort", 2, kPut, &put_text<&ConnectionSettings::com_port>, {VT_BSTR}},
        {u"PhoneNumber", 3, kPut, &put_text<&ConnectionSettings::phone_number>, {VT_BSTR}},
        {u"NetworkAddress", 4, kPut, &put_text<&ConnectionSettings::network_address>, {VT_BSTR}},
        {u"ComBaud", 5, kPut, &put_text<&ConnectionSettings::com_baud>, {VT_BSTR}},
        {u"SignID", 6, kPut, &put_number<&ConnectionSettings::sign_id>, {VT_I2}},
    };
    return kMembers;
}

std::u16string ConnectionSettings::describe() const {
    std::u16string line;
    const auto add = [&line](std::u16string_view key, const std::u16string& value) {
        line.append(line.empty() ? u"" : u" ").append(key).append(u"=").append(value);
    };
    if (connection_type) add(u"ConnectionType", decimal(*connection_type));
    if (com_port) add(u"ComPort", in_quotes(*com_port));
    if (phone_number) add(u"PhoneNumber", in_quotes(*phone_number));
    if (network_address) add(u"NetworkAddress", in_quotes(*network_address));
    if (com_baud) add(u"ComBaud", in_quotes(*com_baud));
    if (sign_id) add(u"SignID", decimal(*sign_id));
    return line;
}

std::u16string ConnectionSettings::line() const {
    return connection_line(connection_type.value_or(0), com_port.value_or(u""), com_baud.value_or(u""),
                           phone_number.value_or(u""), network_address.value_or(u""));
}

// ---- Sign information ---------------------------------------------------------------------------------

std::span<const Member<SignInfoObject>> SignInfoObject::members() noexcept {
    using Info = SignInfoObject;
    constexpr WORD kGet = DISPATCH_PROPERTYGET;
    static constexpr Member<Info> kMembers[] = {
        {u"HasSlaves", 1, kGet,
         [](Info& info, const CallArguments&) { return com::Variant::boolean(info.slaves_.has_value()); }},
        {u"SlaveCountY", 2, kGet,
         [](Info& info, const CallArguments&) { return com::Variant::int16(info.slaves_.value_or(SlaveCounts()).y); }},
        {u"SlaveCountX", 3, kGet,
         [](Info& info, const CallArguments&) { return com::Variant::int16(info.slaves_.value_or(SlaveCounts()).x); }},
    };
    return kMembers;
}

std::u16string SignInfoObject::describe() const {
    const SlaveCounts counts = slaves_.value_or(SlaveCounts());
    return u"HasSlaves=" + shown_boolean(slaves_.has_value()) + u" SlaveCountY=" + decimal(counts.y) +
           u" SlaveCountX=" + decimal(counts.x);
}

HostClasses::HostClasses(Host& host) {
    RegistryEditor registry(host.machine.registry(), host.machine.code_page());
    for (const HostClass& entry : kClasses) {
        register_names(registry, entry);
        cookies_.push_back(com::offer_class(host.lifetime, entry.clsid, [&host, &entry] {
            const std::u16string_view name = entry.programmatic_id.substr(entry.programmatic_id.find(u'.') + 1);
            host.begin({host.display_asked_about, 0, Operation{name}}, u"new " + std::u16string(name));
            return entry.make(host);
        }));
    }
}

std::vector<std::u16string_view> host_class_names() {
    std::vector<std::u16string_view> names;
    for (const HostClass& entry : kClasses) names.push_back(entry.programmatic_id);
    return names;
}

HostClasses::~HostClasses() {
    for (const DWORD cookie : cookies_) CoRevokeClassObject(cookie);
}

}  // namespace vex::sim
