// The simulated host's transmission control, and what goes with it.
#include "simulator/transmission_control.h"

#include <functional>
#include <memory>
#include <optional>

#include "core/digits.h"
#include "core/runtime_error.h"
#include "core/unicode.h"
#include "simulator/firmware_image.h"
#include "simulator/words.h"

namespace vex::sim {
namespace {

constexpr IID kOwnConnection = own_identity(0x4E);
constexpr IID kTransmissionEvents = own_identity(0x51);

constexpr std::u16string_view kControlName = u"vexDispTrans1";

/// A download goes over the link in parts of this size, and the control says how far it is at each quarter.
constexpr int kPercentStep = 5;
constexpr int kPercentSaid = 25;
/// Where the script's messages and faults come in a download: the unit holds half a program then.
constexpr int kScriptedPercent = 50;

/// What a connection is asked to use.
struct ConnectionSettings {
    /// Of which only what names its line counts.
    Display target = Display::none();
    std::int16_t sign_id = 0;
    /// ` KEY=VALUE` of those that were set, in the order of the members.
    std::array<std::u16string, 6> shown;
};

/// Takes settings from everybody. The transmission control reads them: it alone knows the identity under which the
/// object gives itself away.
class ConnectionObject final : public AutomationObject<ConnectionObject> {
public:
    static constexpr char16_t kClass[] = u"HostConnection";

    explicit ConnectionObject(Host& host, ConnectionSettings settings = {}) noexcept
        : AutomationObject(host), settings_(std::move(settings)) {}

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) noexcept override {
        if (!IsEqualGUID(iid, kOwnConnection)) return AutomationObject::QueryInterface(iid, object);
        AddRef();
        *object = this;
        return S_OK;
    }

    const ConnectionSettings& settings() const noexcept { return settings_; }

    void on_call(const CallArguments& arguments) {
        const MemberFacts& member = arguments.member();
        settings_.shown.at(member.id - 1) = u" " + std::u16string(member.name) + u"=" + arguments.shown().substr(1);
    }

    template <auto Field>
    com::Variant put_text(const CallArguments& arguments) {
        settings_.target.*Field = arguments.text(0);
        return {};
    }
    com::Variant put_connection(const CallArguments& arguments) {
        settings_.target.connection = arguments.int16(0);
        return {};
    }
    com::Variant put_sign_id(const CallArguments& arguments) {
        settings_.sign_id = arguments.int16(0);
        return {};
    }

    static constexpr Member<ConnectionObject> kMembers[] = {
        {{u"ConnectionType", 1, kPut, {VT_I2}}, &ConnectionObject::put_connection},
        {{u"ComPort", 2, kPut, {VT_BSTR}}, &ConnectionObject::put_text<&Display::port>},
        {{u"PhoneNumber", 3, kPut, {VT_BSTR}}, &ConnectionObject::put_text<&Display::phone>},
        {{u"NetworkAddress", 4, kPut, {VT_BSTR}}, &ConnectionObject::put_text<&Display::address>},
        {{u"ComBaud", 5, kPut, {VT_BSTR}}, &ConnectionObject::put_text<&Display::baud>},
        {{u"SignID", 6, kPut, {VT_I2}}, &ConnectionObject::put_sign_id},
    };

private:
    ConnectionSettings settings_;
};

/// What a display reports of the slaves behind one of its units.
class SignInfoObject final : public AutomationObject<SignInfoObject> {
public:
    static constexpr char16_t kClass[] = u"HostSignInfo";

    explicit SignInfoObject(Host& host, std::optional<SlaveCounts> slaves = {}) noexcept
        : AutomationObject(host), has_slaves_(slaves.has_value()), counts_(slaves.value_or(SlaveCounts())) {}

    std::u16string describe() const {
        return u"HasSlaves=" + shown_boolean(has_slaves_) + u" SlaveCountY=" + decimal_text(counts_.y) +
               u" SlaveCountX=" + decimal_text(counts_.x);
    }

    // NOLINTNEXTLINE(readability-make-member-function-const): the table's members are none
    com::Variant has_slaves(const CallArguments& /*none*/) { return com::Variant::boolean(has_slaves_); }
    template <auto Field>
    com::Variant count(const CallArguments& /*none*/) {
        return com::Variant::int16(counts_.*Field);
    }

    static constexpr Member<SignInfoObject> kMembers[] = {
        {{u"HasSlaves", 1, kGet}, &SignInfoObject::has_slaves},
        {{u"SlaveCountY", 2, kGet}, &SignInfoObject::count<&SlaveCounts::y>},
        {{u"SlaveCountX", 3, kGet}, &SignInfoObject::count<&SlaveCounts::x>},
    };

private:
    bool has_slaves_;
    SlaveCounts counts_;
};

/// Has one connection to a display and works on its units. Every operation answers whether it succeeded and says in its
/// status event why not. While it says something, callers may call back: to cancel, to close, or to find that an
/// operation is in progress.
class TransmissionControl final : public EventfulControl<TransmissionControl> {
public:
    static constexpr char16_t kClass[] = u"vexDispTrans";
    static constexpr const IID& kSourceInterface = kTransmissionEvents;

    using EventfulControl::EventfulControl;

    // ---- The connection

    com::Variant open_connection(const CallArguments& arguments) {
        IDispatch** const place = arguments.object_place(0);
        com::ComPtr<ConnectionObject> object;
        if (*place == nullptr || FAILED((*place)->QueryInterface(kOwnConnection, object.put_void())))
            throw RuntimeError(kTypeMismatch, u"OpenConnection: argument 1 is no HostConnection");
        const ConnectionSettings settings = object->settings();
        const auto answering = host_.display_on_line(settings.target.line());
        if (!display_ && !busy_) {
            called_display_ = answering ? host_.displays.at(*answering).name : u"";
            sign_id_ = settings.sign_id;
        }
        std::u16string shown;
        for (const std::u16string& setting : settings.shown) shown += setting;
        return operate(arguments, shown, [&](const ScriptedCall& scripted) {
            if (!goes_on(scripted)) return false;
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

    com::Variant close_connection(const CallArguments& arguments) {
        const ScriptedCall scripted = begin_at_once(arguments);
        if (busy_) interrupted_ = true;
        display_.reset();
        return say_all(scripted);
    }

    com::Variant cancel_transmission(const CallArguments& arguments) {
        const ScriptedCall scripted = begin_at_once(arguments);
        if (busy_ && !scripted.fails()) interrupted_ = true;
        return say_all(scripted);
    }

    // ---- Units

    com::Variant put_sign_id(const CallArguments& arguments) {
        sign_id_ = arguments.int16(0);
        say_all(begin_at_once(arguments));
        return {};
    }

    com::Variant get_sign_info(const CallArguments& arguments) {
        const Call call = call_of(arguments.member().name);
        const std::u16string shown = arguments.shown_call(kControlName);
        const ScriptedCall scripted = host_.begin(call, shown);
        tell({.kind = LinkEvent::Kind::begins, .call = call});
        // What the display reports is under way before anybody can cancel. Without a connection, as after a cancel,
        // nobody answers and no slaves are known.
        std::optional<SlaveCounts> slaves;
        if (display_ && host_.units.answers(host_.displays.at(*display_), sign_id_))
            slaves = host_.units.slaves(call.display, sign_id_);
        say_all(scripted);
        const auto info = com::make_object<SignInfoObject>(host_, slaves);
        host_.trace.line(shown + u" -> " + (scripted.fails() ? shown_boolean(false) : info->describe()));
        return scripted.fails() ? com::Variant::boolean(false) : com::Variant::object(info.get());
    }

    com::Variant reset_and_clear(const CallArguments& arguments) {
        return operate_unit(arguments, [&](const ScriptedCall& scripted) {
            say({unit(u": resetting and clearing")});
            if (!goes_on(scripted)) return false;
            host_.units.store(called_display_, sign_id_, u"empty");
            return true;
        });
    }

    com::Variant prepare_for_firmware(const CallArguments& arguments) {
        return operate_unit(arguments, [&](const ScriptedCall& scripted) {
            say({unit(u": preparing for firmware")});
            return goes_on(scripted);
        });
    }

    com::Variant download_firmware(const CallArguments& arguments) {
        return download(arguments, [&](const std::string& image) { check_motorola_image(image, arguments.text(0)); });
    }

    com::Variant download_firmware_with_loader(const CallArguments& arguments) {
        return download(arguments, [&](const std::string& /*anything is firmware*/) {
            const std::u16string loader = arguments.text(1);
            check_loader_image(read_image(host_.machine.real_path(loader), loader), loader);
        });
    }

    using Control = TransmissionControl;
    static constexpr Member<Control> kMembers[] = {
        {{u"OpenConnection", 0x60030065, kMethod, {kObjectReference}}, &Control::open_connection},
        {{u"CloseConnection", 0x60030066, kMethod}, &Control::close_connection},
        {{u"DownloadFirmware", 0x60030067, kMethod, {kTextReference}}, &Control::download_firmware},
        {{u"ResetAndClear", 0x60030068, kMethod}, &Control::reset_and_clear},
        {{u"CancelTransmission", 0x60030069, kMethod}, &Control::cancel_transmission},
        {{u"PrepareForFirmware", 0x6003004E, kMethod}, &Control::prepare_for_firmware},
        {{u"GetSignInfo", 0x60030053, kMethod}, &Control::get_sign_info},
        {{u"DownloadFirmwareWithLoader", 0x600300B2, kMethod, {kTextReference, VT_BSTR}},
         &Control::download_firmware_with_loader},
        {{u"SignID", 0x68030001, kPut, {VT_I2}}, &Control::put_sign_id},
    };

private:
    /// Work on the connection or a unit; answers its success.
    using Work = std::function<bool(const ScriptedCall& scripted)>;

    /// Writes the firmware file that is the first argument into the selected unit. `check` raises `ImageError`.
    com::Variant download(const CallArguments& arguments, const std::function<void(const std::string& image)>& check) {
        return operate_unit(arguments, [&](const ScriptedCall& scripted) {
            const std::u16string file = arguments.text(0);
            try {
                const std::string image = read_image(host_.machine.real_path(file), file);
                check(image);
                return transfer(image, file, scripted);
            } catch (const ImageError& error) {
                return goes_on(scripted) && refuse(from_utf8(error.what()));
            }
        });
    }

    bool transfer(const std::string& image, const std::u16string& file, const ScriptedCall& scripted) {
        // Erased first: a unit that loses its link half way has neither its old firmware nor the new one.
        const Call call = call_of(operation_);
        host_.units.store(call.display, call.id, u"incomplete");
        for (int percent = kPercentStep; percent <= 100; percent += kPercentStep) {
            tell({.kind = LinkEvent::Kind::transfers,
                  .call = call,
                  .percent = percent,
                  .bytes = image.size() * kPercentStep / 100});
            if (percent % kPercentSaid == 0) say({unit(u": ") + decimal_text(percent) + u" % of " + file_name(file)});
            if (interrupted_) return refuse(u"Transmission cancelled");
            if (percent == kScriptedPercent && !goes_on(scripted)) return false;
        }
        host_.units.store(call.display, call.id, describe_image(image, file));
        return true;
    }

    // ---- What all calls share

    /// A call that answers its success: traced, and refused while another one is in progress. `shown`: what the trace
    /// shows besides the arguments.
    com::Variant operate(const CallArguments& arguments, const std::u16string& shown, const Work& work) {
        const Call call = call_of(arguments.member().name);
        const std::u16string line = arguments.shown_call(kControlName) + shown;
        const ScriptedCall scripted = host_.begin(call, line);
        bool done = false;
        if (busy_) {
            refuse(u"A transmission is in progress");
        } else {
            const std::unique_ptr<bool, void (*)(bool*)> busy(&busy_, [](bool* flag) { *flag = false; });
            busy_ = true;
            interrupted_ = false;
            operation_ = call.operation;
            tell({.kind = LinkEvent::Kind::begins, .call = call});
            done = interrupted_ ? refuse(u"Transmission cancelled") : work(scripted);
        }
        host_.trace.line(line + u" -> " + shown_boolean(done));
        return com::Variant::boolean(done);
    }

    /// The same for the selected unit, which must be connected and answer.
    com::Variant operate_unit(const CallArguments& arguments, const Work& work) {
        return operate(arguments, u"", [&](const ScriptedCall& scripted) {
            if (!display_) return goes_on(scripted) && refuse(u"No connection is open");
            if (!host_.units.answers(host_.displays.at(*display_), sign_id_))
                return goes_on(scripted) && refuse(unit(u" does not answer"));
            return work(scripted);
        });
    }

    /// A call that may come in the midst of another one: traced when it begins.
    ScriptedCall begin_at_once(const CallArguments& arguments) {
        const Call call = call_of(arguments.member().name);
        const std::u16string shown = arguments.shown_call(kControlName);
        ScriptedCall scripted = host_.begin(call, shown);
        host_.trace.line(shown);
        tell({.kind = LinkEvent::Kind::begins, .call = call});
        return scripted;
    }

    /// Says what the script has for the operation in progress. False when it cannot go on: cancelled, or a fault.
    bool goes_on(const ScriptedCall& scripted) {
        for (std::size_t i = 0; i < scripted.messages.size() && !interrupted_; ++i) say(scripted.messages[i]);
        if (interrupted_) return refuse(u"Transmission cancelled");
        if (!scripted.fails()) return true;
        // A message of the script's own explains the failure where it has one.
        if (scripted.messages.empty()) refuse(unit(u": the line is disturbed, ").append(operation_) + u" failed");
        return false;
    }

    /// Says why the operation fails; answers false.
    bool refuse(const std::u16string& text) {
        say({text});
        return false;
    }

    void say(ScriptedMessage message) {
        const std::u16string text = message.text;
        host_.trace.line(std::u16string(u"event ").append(kControlName).append(u".StatusMessage ") + in_quotes(text));
        host_.messages_said.push_back(std::move(message));
        raise_event(kHandledEvent, {text});
        host_.messages_said.pop_back();
        if (busy_) tell({.kind = LinkEvent::Kind::says, .call = call_of(operation_)});
    }

    /// Answers whether the call succeeds.
    com::Variant say_all(const ScriptedCall& scripted) {
        for (const ScriptedMessage& message : scripted.messages) say(message);
        return com::Variant::boolean(!scripted.fails());
    }

    void tell(const LinkEvent& event) {
        if (host_.on_link && !host_.on_link(event)) interrupted_ = true;
    }

    Call call_of(Operation operation) const { return {called_display_, sign_id_, operation}; }

    std::u16string unit(std::u16string_view text) const { return (u"Unit " + decimal_text(sign_id_)).append(text); }

    /// The connected display, by its position.
    std::optional<std::size_t> display_;
    /// The display that was connected last, or asked for: whose calls these are, also when it is gone.
    std::u16string called_display_;
    /// The unit that operations address.
    std::int16_t sign_id_ = 0;
    bool busy_ = false;
    /// What is in progress while busy.
    Operation operation_;
    /// The operation in progress was cancelled or lost its connection.
    bool interrupted_ = false;
};

}  // namespace

std::vector<HostClass> transmission_classes() {
    return {host_class<TransmissionControl>(own_identity(0x50), u"vexDTCon4"),
            host_class<ConnectionObject>(own_identity(0x4D), u"vexBrivolaClasses4"),
            host_class<SignInfoObject>(own_identity(0x4F), u"vexBrivolaClasses4")};
}

bool speaks(Operation operation) noexcept {
    return std::ranges::count(TransmissionControl::kMembers, operation, &MemberFacts::name) > 0;
}

}  // namespace vex::sim
