// What a scenario lets happen on the links to the displays.
#include "simulator/link_script.h"

#include <iterator>
#include <stdexcept>
#include <utility>

#include "core/unicode.h"

namespace vex::sim {
namespace {

constexpr std::u16string_view kOperations[] = {
    u"OpenConnection",
    u"SignID",
    u"GetSignInfo",
    u"ResetAndClear",
    u"DownloadFirmware",
    u"PrepareForFirmware",
    u"DownloadFirmwareWithLoader",
    u"CloseConnection",
    u"CancelTransmission",
    u"SearchTimeout",
    u"FindBoxes",
    u"OpenDisplayFile",
    u"FindDisplay",
    u"SelectDisplay",
    u"ComPort",
    u"ComBaud",
    u"SignTypeCode",
    u"ConnectionType",
    u"NetworkAddress",
    u"PhoneNumber",
    u"SignIDs",
    u"DisplayName",
    u"DisplayTypeName",
    u"FirmwareVersion",
    u"vexDispTrans",
    u"vexLANBoxFinder2",
    u"HostDisplayList",
    u"HostDisplayPicker",
    u"HostConnection",
    u"HostSignInfo",
};
static_assert(std::size(kOperations) == static_cast<std::size_t>(Operation::HostSignInfo) + 1);

}  // namespace

std::u16string_view name_of(Operation operation) noexcept { return kOperations[static_cast<std::size_t>(operation)]; }

Operation parse_operation(std::u16string_view name) {
    std::string names;
    for (std::size_t i = 0; i < std::size(kOperations); ++i) {
        if (kOperations[i] == name) return static_cast<Operation>(i);
        names += (i == 0 ? "" : ", ") + to_utf8(kOperations[i]);
    }
    throw std::invalid_argument("\"" + to_utf8(name) + "\" is none of " + names);
}

template <class Content>
bool LinkScript::Entry<Content>::takes(const Call& call) {
    if (pattern.operation != call.operation || (pattern.display && *pattern.display != call.display) ||
        (pattern.id && *pattern.id != call.id)) {
        return false;
    }
    ++calls;
    return pattern.at == 0 || pattern.at == calls;
}

void LinkScript::add_fault(CallPattern pattern, FaultKind kind) { faults_.push_back({std::move(pattern), kind}); }

void LinkScript::add_message(CallPattern pattern, ScriptedMessage message) {
    messages_.push_back({std::move(pattern), std::move(message)});
}

ScriptedCall LinkScript::next(const Call& call) {
    ScriptedCall result;
    // Every entry counts the call, also one that an earlier fault keeps from taking effect.
    for (auto& fault : faults_) {
        if (fault.takes(call) && result.fault == FaultKind::none) result.fault = fault.content;
    }
    for (auto& message : messages_) {
        if (message.takes(call)) result.messages.push_back(message.content);
    }
    return result;
}

}  // namespace vex::sim
