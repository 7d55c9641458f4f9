// Which calls a fault or a message is about.
#include "simulator/link_script.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace vex::sim {
namespace {

const Call kReset{u"A", 1, Operation::ResetAndClear};

TEST(LinkScript, MatchesDisplayUnitMemberAndCount) {
    LinkScript script;
    script.add_fault({u"A", 1, Operation::ResetAndClear, 2}, FaultKind::fail);
    script.add_fault({{}, {}, Operation::PrepareForFirmware}, FaultKind::raise);
    const std::pair<Call, FaultKind> calls[] = {{{u"B", 1, Operation::ResetAndClear}, FaultKind::none},
                                                {{u"A", 2, Operation::ResetAndClear}, FaultKind::none},
                                                {{u"A", 1, Operation::DownloadFirmware}, FaultKind::none},
                                                {kReset, FaultKind::none},
                                                {kReset, FaultKind::fail},
                                                {kReset, FaultKind::none},
                                                {{u"", -5, Operation::PrepareForFirmware}, FaultKind::raise},
                                                {{u"A", 1, Operation::PrepareForFirmware}, FaultKind::raise}};
    for (const auto& [call, fault] : calls) EXPECT_EQ(script.next(call).fault, fault);
}

TEST(LinkScript, KeepsTheOrderOfMessagesAndTheFirstFault) {
    LinkScript script;
    script.add_message({u"A", 1, Operation::ResetAndClear}, {u"one", {}});
    script.add_message({{}, {}, Operation::ResetAndClear}, {u"two", {}});
    script.add_fault({u"A", 1, Operation::ResetAndClear}, FaultKind::raise);
    script.add_fault({u"A", 1, Operation::ResetAndClear, 1}, FaultKind::fail);
    const ScriptedCall call = script.next(kReset);
    ASSERT_EQ(call.messages.size(), 2U);
    EXPECT_EQ(call.messages[0].text, u"one");
    EXPECT_EQ(call.messages[1].text, u"two");
    EXPECT_EQ(call.fault, FaultKind::raise);
}

TEST(LinkScript, KnowsTheMembersByName) {
    for (const auto operation : {Operation::OpenConnection, Operation::SignID, Operation::CancelTransmission}) {
        EXPECT_EQ(parse_operation(name_of(operation)), operation);
    }
    EXPECT_THROW(parse_operation(u"resetandclear"), std::invalid_argument);
}

}  // namespace
}  // namespace vex::sim
