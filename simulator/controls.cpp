// The simulated host's two controls.
#include "simulator/controls.h"

#include <algorithm>
#include <cmath>
#include <memory>

#include "core/runtime_error.h"
#include "core/unicode.h"
#include "simulator/firmware_image.h"
#include "simulator/screen.h"
#include "simulator/words.h"
#include "support/text.h"

namespace vex::sim {
namespace {

constexpr std::u16string_view kName = u"vexDispTrans1";

/// A download goes over the link in parts of this size, and the control says how far it is at each quarter.
constexpr int kPercentStep = 5;
constexpr int kPercentSaid = 25;
/// Where the script's messages and faults come in a download: the unit holds half a program then.
constexpr int kScriptedPercent = 50;

std::u16string shown_call(Operation operation) {
    return std::u16string(u"call ").append(kName).append(u".").append(operation.name);
}

constexpr std::u16string_view kFinderName = u"FindXPort";
constexpr double kHighestHost = 255;

}  // namespace

std::span<const Member<TransmissionControl>> TransmissionControl::members() noexcept {
    using Control = TransmissionControl;
    constexpr WORD kMethod = DISPATCH_METHOD;
    static constexpr Member<Control> kMembers[] = {
        {u"OpenConnection", dispatch_id(0x60030065), kMethod, &Control::open_connection, {kObjectReference}},
        {u"CloseConnection", dispatch_id(0x60030066), kMethod, &Control::close_connection},
        {u"DownloadFirmware", dispatch_id(0x60030067), kMethod, &Control::download_firmware, {kTextReference}},
        {u"ResetAndClear", dispatch_id(0x60030068), kMethod, &Control::reset_and_clear},
        {u"CancelTransmission", dispatch_id(0x60030069), kMethod, &Control::cancel_transmission},
        {u"PrepareForFirmware", dispatch_id(0x6003004E), kMethod, &Control::prepare_for_firmware},
        {u"GetSignInfo", dispatch_id(0x60030053), kMethod, &Control::get_sign_info},
        {u"DownloadFirmwareWithLoader",
         dispatch_id(0x600300B2),
         kMethod,
         &Control::download_firmware_with_loader,
         {kTextReference, VT_BSTR}},
        {u"SignID", dispatch_id(0x68030001), DISPATCH_PROPERTYPUT, &Control::put_sign_id, {VT_I2}},
    };
    return kMembers;
}

// ---- The connection -----------------------------------------------------------------------------------

com::Variant TransmissionControl::open_connection(const CallArguments& arguments) {
    IDispatch** const place = arguments.object_place(0);
    const auto object = com::ComPtr<IDispatch>(*place).query<IConnectionSettings>();
    if (!object) throw RuntimeError(kTypeMismatch, u"OpenConnection: argument 1 is no HostConnection");
    const ConnectionSettings settings = object->settings();
    const auto answering = host_.display_on_line(settings.target.line());
    if (!display_ && !busy_) {
        called_display_ = answering ? host_.displays.at(*answering).name : u"";
        sign_id_ = settings.sign_id;
    }
    constexpr Operation kOperation = Operation::OpenConnection;
    std::u16string shown;
    for (const std::u16string& setting : settings.shown) shown += setting;
    return operate(kOperation, shown, [&](const ScriptedCall& scripted) {
        if (!goes_on(scripted, kOperation)) return false;
        if (display_) return refuse(u"A connection is open already");
        if (!answering) return refuse(u"No display answers");
        display_ = answering;
        if (scripted.fault == FaultKind::replace) {
            auto other = com::make_object<ConnectionObject>(host_, settings);
            com::ComPtr<IDispatch>::adopt(std::exchange(*place, other.detach()));
        }
        return true;
    });
}

ScriptedCall TransmissionControl::begin_at_once(const Call& call, const std::u16string& shown) {
    ScriptedCall scripted = host_.begin(call, shown);
    host_.trace.line(shown);
    tell({.kind = LinkEvent::Kind::begins, .call = call});
    return scripted;
}

com::Variant TransmissionControl::close_connection(const CallArguments& /*none*/) {
    constexpr Operation kOperation = Operation::CloseConnection;
    const ScriptedCall scripted = begin_at_once(call_of(kOperation), shown_call(kOperation));
    if (busy_) interrupted_ = true;
    display_.reset();
    say_all(scripted);
    return com::Variant::boolean(!scripted.fails());
}

com::Variant TransmissionControl::cancel_transmission(const CallArguments& /*none*/) {
    constexpr Operation kOperation = Operation::CancelTransmission;
    const ScriptedCall scripted = begin_at_once(call_of(kOperation), shown_call(kOperation));
    if (busy_ && !scripted.fails()) interrupted_ = true;
    say_all(scripted);
    return com::Variant::boolean(!scripted.fails());
}

// ---- Units --------------------------------------------------------------------------------------------

com::Variant TransmissionControl::put_sign_id(const CallArguments& arguments) {
    const std::int16_t id = arguments.int16(0);
    Call call = call_of(Operation::SignID);
    call.id = id;
    const std::u16string shown = std::u16string(u"put ").append(kName).append(u".SignID =") + arguments.shown();
    const ScriptedCall scripted = begin_at_once(call, shown);
    sign_id_ = id;
    say_all(scripted);
    return {};
}

com::Variant TransmissionControl::get_sign_info(const CallArguments& /*none*/) {
    const Call call = call_of(Operation::GetSignInfo);
    const std::u16string shown = shown_call(call.operation);
    const ScriptedCall scripted = host_.begin(call, shown);
    tell({.kind = LinkEvent::Kind::begins, .call = call});
    // What the display reports is under way before anybody can cancel. Without a connection, as after a cancel,
    // nobody answers and no slaves are known.
    std::optional<SlaveCounts> slaves;
    if (display_ && host_.units.answers(host_.displays.at(*display_), sign_id_))
        slaves = host_.units.slaves(call.display, sign_id_);
    say_all(scripted);
    if (scripted.fails()) {
        host_.trace.line(shown + u" -> " + shown_boolean(false));
        return com::Variant::boolean(false);
    }
    const auto info = com::make_object<SignInfoObject>(host_, slaves);
    host_.trace.line(shown + u" -> " + info->describe());
    return com::Variant::object(info.get());
}

com::Variant TransmissionControl::reset_and_clear(const CallArguments& /*none*/) {
    constexpr Operation kOperation = Operation::ResetAndClear;
    return operate_unit(kOperation, u"", [&](const Display& display, const ScriptedCall& scripted) {
        say({unit(u": resetting and clearing"), {}, false});
        if (!goes_on(scripted, kOperation)) return false;
        host_.units.store(display.name, sign_id_, {Content::State::empty, {}});
        return true;
    });
}

com::Variant TransmissionControl::prepare_for_firmware(const CallArguments& /*none*/) {
    constexpr Operation kOperation = Operation::PrepareForFirmware;
    return operate_unit(kOperation, u"", [&](const Display&, const ScriptedCall& scripted) {
        say({unit(u": preparing for firmware"), {}, false});
        return goes_on(scripted, kOperation);
    });
}

com::Variant TransmissionControl::download_firmware(const CallArguments& arguments) {
    return download(Operation::DownloadFirmware, arguments, [this, file = arguments.text(0)] {
        return read_motorola_image(host_.machine.real_path(file), file);
    });
}

com::Variant TransmissionControl::download_firmware_with_loader(const CallArguments& arguments) {
    const std::u16string file = arguments.text(0);
    const std::u16string loader = arguments.text(1);
    return download(Operation::DownloadFirmwareWithLoader, arguments, [this, file, loader] {
        Firmware firmware = read_rabbit_image(host_.machine.real_path(file), file);
        read_loader_image(host_.machine.real_path(loader), loader);
        return firmware;
    });
}

com::Variant TransmissionControl::download(Operation operation, const CallArguments& arguments,
                                           const std::function<Firmware()>& read) {
    return operate_unit(operation, arguments.shown(), [&](const Display& display, const ScriptedCall& scripted) {
        try {
            return transfer(display, read(), scripted, operation);
        } catch (const ImageError& error) {
            return goes_on(scripted, operation) && refuse(from_utf8(error.what()));
        }
    });
}

bool TransmissionControl::transfer(const Display& display, const Firmware& firmware, const ScriptedCall& scripted,
                                   Operation operation) {
    // Erased first: a unit that loses its link half way has neither its old firmware nor the new one.
    const std::int16_t id = sign_id_;
    host_.units.store(display.name, id, {Content::State::incomplete, {}});
    for (int percent = kPercentStep; percent <= 100; percent += kPercentStep) {
        tell({.kind = LinkEvent::Kind::transfers,
              .call = call_of(operation),
              .percent = percent,
              .bytes = static_cast<std::size_t>(firmware.size) * kPercentStep / 100});
        if (percent % kPercentSaid == 0)
            say({unit(u": ") + decimal_text(percent) + u" % of " + firmware.name, {}, false});
        if (interrupted_) return refuse(u"Transmission cancelled");
        if (percent == kScriptedPercent && !goes_on(scripted, operation)) return false;
    }
    host_.units.store(display.name, id, {Content::State::firmware, firmware});
    return true;
}

// ---- What all calls share -----------------------------------------------------------------------------

com::Variant TransmissionControl::operate(Operation operation, const std::u16string& arguments, const Work& work) {
    const Call call = call_of(operation);
    const std::u16string shown = shown_call(operation) + arguments;
    const ScriptedCall scripted = host_.begin(call, shown);
    bool done = false;
    if (busy_) {
        refuse(u"A transmission is in progress");
    } else {
        const std::unique_ptr<bool, void (*)(bool*)> busy(&busy_, [](bool* flag) { *flag = false; });
        busy_ = true;
        interrupted_ = false;
        operation_ = operation;
        tell({.kind = LinkEvent::Kind::begins, .call = call});
        done = interrupted_ ? refuse(u"Transmission cancelled") : work(scripted);
        tell({.kind = LinkEvent::Kind::ends, .call = call_of(operation), .succeeded = done});
    }
    host_.trace.line(shown + u" -> " + shown_boolean(done));
    return com::Variant::boolean(done);
}

com::Variant TransmissionControl::operate_unit(Operation operation, const std::u16string& arguments,
                                               const UnitWork& work) {
    return operate(operation, arguments, [&](const ScriptedCall& scripted) {
        if (!display_) return goes_on(scripted, operation) && refuse(u"No connection is open");
        // By value: what a user does meanwhile may change the host's displays.
        const Display display = host_.displays.at(*display_);
        if (!host_.units.answers(display, sign_id_))
            return goes_on(scripted, operation) && refuse(unit(u" does not answer"));
        return work(display, scripted);
    });
}

bool TransmissionControl::goes_on(const ScriptedCall& scripted, Operation operation) {
    for (std::size_t i = 0; i < scripted.messages.size() && !interrupted_; ++i) say(scripted.messages[i]);
    if (interrupted_) return refuse(u"Transmission cancelled");
    if (!scripted.fails()) return true;
    // A message of the script's own explains the failure where it has one.
    if (scripted.messages.empty()) refuse(unit(u": the line is disturbed, ").append(operation.name) + u" failed");
    return false;
}

bool TransmissionControl::refuse(const std::u16string& text) {
    say({text, {}, false});
    return false;
}

void TransmissionControl::say(ScriptedMessage message) {
    const std::u16string text = message.text;
    host_.trace.line(std::u16string(u"event ").append(kName).append(u".StatusMessage ") + in_quotes(text));
    host_.messages_said.push_back(std::move(message));
    sinks_.raise_event(kHandledEvent, {text});
    host_.messages_said.pop_back();
    if (busy_) tell({.kind = LinkEvent::Kind::says, .call = call_of(operation_)});
}

void TransmissionControl::say_all(const ScriptedCall& scripted) {
    for (const ScriptedMessage& message : scripted.messages) say(message);
}

void TransmissionControl::tell(const LinkEvent& event) {
    if (host_.on_link && !host_.on_link(event)) interrupted_ = true;
}

Call TransmissionControl::call_of(Operation operation) const { return {called_display_, sign_id_, operation}; }

std::u16string TransmissionControl::unit(std::u16string_view text) const {
    return (u"Unit " + decimal_text(sign_id_)).append(text);
}

// ---- The finder ---------------------------------------------------------------------------------------

std::span<const Member<BoxFinder>> BoxFinder::members() noexcept {
    static constexpr Member<BoxFinder> kMembers[] = {
        {u"SearchTimeout", dispatch_id(0x68030001), DISPATCH_PROPERTYPUT, &BoxFinder::put_timeout, {VT_I2}},
        {u"FindBoxes", dispatch_id(0x6003000A), DISPATCH_METHOD, &BoxFinder::find_boxes, {VT_BSTR, VT_R8, VT_R8}},
    };
    return kMembers;
}

void BoxFinder::on_call(const Member<BoxFinder>& member, const CallArguments& arguments) {
    const std::u16string shown = shown_call(kFinderName, member, arguments);
    host_.begin({host_.display_asked_about, 0, Operation{member.name}}, shown);
    host_.trace.line(shown);
}

com::Variant BoxFinder::find_boxes(const CallArguments& arguments) {
    const std::u16string address = arguments.text(0);
    const double first = std::ceil(std::max(arguments.real(1), 0.0));
    const double last = std::min(arguments.real(2), kHighestHost);
    const std::size_t point = address.rfind(u'.');
    if (point == address.npos) {
        if (first <= 0 && last >= 0) report(address);
        return {};
    }
    for (double host = first; host <= last; ++host)
        report(address.substr(0, point + 1) + decimal_text(static_cast<std::int32_t>(host)));
    return {};
}

void BoxFinder::report(const std::u16string& address) {
    // Collected first: what a user does meanwhile may change the host's displays.
    std::vector<std::u16string> found;
    for (const Display& display : host_.displays) {
        if (display.address == address) std::ranges::copy(host_.units.boxes(display.name), std::back_inserter(found));
    }
    for (const std::u16string& description : found) {
        host_.trace.line(std::u16string(u"event ").append(kFinderName) + u".BoxFound " + in_quotes(description));
        sinks_.raise_event(kHandledEvent, {address, description});
    }
}

// ---- Operations by name -------------------------------------------------------------------------------

bool speaks(Operation operation) noexcept {
    const auto members = TransmissionControl::members();
    return std::ranges::find(members, operation.name, &Member<TransmissionControl>::name) != members.end();
}

bool answers_success(Operation operation) noexcept { return speaks(operation) && operation != Operation::SignID; }

Operation parse_operation(std::u16string_view name) {
    std::vector<std::u16string_view> names;
    for (const auto& member : TransmissionControl::members()) names.push_back(member.name);
    for (const auto& member : BoxFinder::members()) names.push_back(member.name);
    for (const auto& member : DisplayListObject::members()) names.push_back(member.name);
    static const std::vector<std::u16string> kClasses = host_class_names();
    for (const std::u16string_view id : kClasses) names.push_back(id.substr(id.find(u'.') + 1));
    const auto found = std::ranges::find(names, name);
    if (found != names.end()) return {*found};
    std::string all;
    for (const std::u16string_view known : names) all += (all.empty() ? "" : ", ") + to_utf8(known);
    throw std::invalid_argument("\"" + to_utf8(name) + "\" is none of " + all);
}

}  // namespace vex::sim
