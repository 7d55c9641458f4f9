// What a scenario lets happen on the links to the displays.
#include "simulator/link_script.h"

#include <utility>

namespace vex::sim {

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
