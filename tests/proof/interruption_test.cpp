// Interrupts an update at every host call, in every way that it can be interrupted, and checks the outcome.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "core/runtime_error.h"
#include "core/unicode.h"
#include "tests/proof/rig.h"

namespace vex::proof {
namespace {

using Words = std::vector<std::u16string>;

const std::u16string kUpdated = u"Updated - ";
const std::u16string kCancelled = u"Cancelled - ";
const std::u16string kNotUpdated = u"Not Updated";

/// PrepareForFirmware counts only where the outside tool does the rest; closing never counts.
bool false_fails_row(Mode mode, const std::u16string& call) {
    if (call == u"vexDispTrans.CloseConnection") return false;
    if (call == u"vexDispTrans.PrepareForFirmware") return mode == Mode::external_tool;
    return true;
}

bool has_boolean_result(const std::u16string& call) {
    return call.starts_with(u"vexDispTrans.") && call != u"vexDispTrans.GetSignInfo" &&
           call != u"vexDispTrans.SignID" && call != u"vexDispTrans.CancelTransmission";
}

class InterruptionTest : public ::testing::TestWithParam<std::tuple<Mode, std::size_t>> {
protected:
    InterruptionTest() {
        plan_.mode = std::get<0>(GetParam());
        plan_.displays = std::get<1>(GetParam());
        baseline_ = play(plan_);
        // A session begins with its control; what comes before belongs to the display before, or to the wizard.
        std::size_t session = 0;
        for (const std::u16string& call : baseline_.calls) {
            if (call == u"new vexDispTrans") ++session;
            display_of_call_.push_back(session);
        }
    }

    std::string about(std::size_t call, const char* what) const {
        return std::string(name_of(plan_.mode)) + ", call " + std::to_string(call) + " " +
               to_utf8(baseline_.calls.at(call)) + ": " + what;
    }

    /// What holds after every run, however it was interrupted.
    void check_always(const Outcome& outcome) {
        EXPECT_EQ(outcome.host_objects, 0);
        EXPECT_EQ(outcome.plugin_objects, 0);
        for (const std::u16string& word : outcome.rows_after_retry) EXPECT_EQ(word, kUpdated) << "a retry can succeed";
    }

    /// Displays from `first` on (from 0) hold what they held when they were delivered.
    void check_untouched(const Outcome& outcome, std::size_t first) {
        for (std::size_t i = first; i < outcome.units.size(); ++i) {
            for (const std::u16string& unit : outcome.units[i]) EXPECT_EQ(unit, u"as delivered") << "display " << i + 1;
        }
    }

    Plan plan_;
    Outcome baseline_;
    /// 0: before the first session.
    std::vector<std::size_t> display_of_call_;
};

TEST_P(InterruptionTest, UninterruptedEveryDisplayIsUpdated) {
    EXPECT_EQ(baseline_.error, 0);
    EXPECT_EQ(baseline_.rows, Words(plan_.displays, kUpdated));
    check_always(baseline_);
    const std::size_t connections =
        static_cast<std::size_t>(std::ranges::count(baseline_.calls, u"vexDispTrans.OpenConnection"));
    EXPECT_EQ(connections, plan_.displays);
    EXPECT_EQ(static_cast<std::size_t>(std::ranges::count(baseline_.calls, u"vexDispTrans.CloseConnection")),
              connections);
    EXPECT_EQ(std::ranges::count(baseline_.calls, u"vexLANBoxFinder2.FindBoxes"), plan_.displays > 1 ? 1 : 0);
    EXPECT_EQ(baseline_.programs.size(), plan_.mode == Mode::external_tool ? plan_.displays : 0);
    if (plan_.mode == Mode::external_tool) return;
    // TQ-1 firmware goes to the first display ID only, everything else to every unit.
    for (const Words& units : baseline_.units) {
        for (std::size_t i = 0; i < units.size(); ++i) {
            const bool reached = plan_.mode != Mode::flash_loader || i == 0;
            EXPECT_EQ(units[i] != u"as delivered", reached) << to_utf8(units[i]);
        }
    }
}

TEST_P(InterruptionTest, ACallThatAnswersFalseFailsItsOwnRowOnly) {
    for (std::size_t k = 0; k < baseline_.calls.size(); ++k) {
        if (!has_boolean_result(baseline_.calls[k])) continue;
        SCOPED_TRACE(about(k, "answers False"));
        Plan plan = plan_;
        std::size_t count = 0;
        plan.meddle = [&](const std::u16string&) {
            return count++ == k ? std::optional(com::Variant::boolean(false)) : std::nullopt;
        };
        const Outcome outcome = play(plan);
        check_always(outcome);
        ASSERT_EQ(outcome.error, 0);
        ASSERT_EQ(outcome.rows.size(), plan.displays);
        for (std::size_t row = 0; row < outcome.rows.size(); ++row) {
            const bool own = row + 1 == display_of_call_[k] && false_fails_row(plan.mode, baseline_.calls[k]);
            EXPECT_EQ(outcome.rows[row].starts_with(u"FAILED - "), own) << to_utf8(outcome.rows[row]);
            EXPECT_EQ(outcome.rows[row] == kUpdated, !own) << to_utf8(outcome.rows[row]);
        }
        if (baseline_.calls[k] == u"vexDispTrans.OpenConnection") {
            EXPECT_EQ(outcome.rows[display_of_call_[k] - 1], u"FAILED - Unable to open connection to display!");
        } else {
            // An opened connection is closed, whatever failed on it.
            EXPECT_EQ(std::ranges::count(outcome.calls, u"vexDispTrans.CloseConnection"),
                      std::ranges::count(baseline_.calls, u"vexDispTrans.CloseConnection"));
        }
    }
}

TEST_P(InterruptionTest, AnErrorOfTheHostReachesTheCallerAndTouchesNothingElse) {
    for (std::size_t k = 0; k < baseline_.calls.size(); ++k) {
        const bool creation = baseline_.calls[k].starts_with(u"new ");
        SCOPED_TRACE(about(k, creation ? "cannot be created" : "raises an error"));
        Plan plan = plan_;
        std::size_t count = 0;
        plan.meddle = [&](const std::u16string&) -> std::optional<com::Variant> {
            if (count++ == k) throw RuntimeError(kRaisedNumber, u"raised by the test");
            return std::nullopt;
        };
        const Outcome outcome = play(plan);
        EXPECT_EQ(outcome.error, creation ? static_cast<std::int32_t>(kCannotCreateObject) : kRaisedNumber);
        EXPECT_EQ(outcome.host_objects, 0);
        EXPECT_EQ(outcome.plugin_objects, 0);
        EXPECT_EQ(outcome.calls.size(), k + 1) << "no call follows an error";
        check_untouched(outcome, display_of_call_[k]);
    }
}

TEST_P(InterruptionTest, AConfirmedCancelStopsEverything) {
    for (auto [k, moment] : moments(baseline_.calls)) {
        SCOPED_TRACE(about(k, "the user cancels"));
        Plan plan = plan_;
        moment.cancel = forms::MessageAnswer::yes;
        plan.moment = moment;
        const Outcome outcome = play(plan);
        check_always(outcome);
        const std::size_t own = display_of_call_[k] - 1;
        ASSERT_EQ(outcome.error, 0);
        ASSERT_EQ(outcome.rows.size(), plan.displays);
        for (std::size_t row = 0; row < outcome.rows.size(); ++row) {
            EXPECT_EQ(outcome.rows[row], row < own ? kUpdated : row == own ? kCancelled : kNotUpdated);
        }
        check_untouched(outcome, own + 1);
        // No call at all comes before the cancellation, and the close comes right after it.
        ASSERT_TRUE(outcome.calls_before_cancel);
        ASSERT_GE(outcome.calls.size(), *outcome.calls_before_cancel + 2);
        EXPECT_EQ(outcome.calls[*outcome.calls_before_cancel], u"vexDispTrans.CancelTransmission");
        EXPECT_EQ(outcome.calls[*outcome.calls_before_cancel + 1], u"vexDispTrans.CloseConnection");
        // No unit beyond the one in work is changed: what was to come holds what it held.
        const Words& units = outcome.units[own];
        const Words& all = baseline_.units[own];
        std::size_t changed = 0;
        for (std::size_t i = 0; i < units.size(); ++i)
            changed += units[i] == all[i] && all[i] != u"as delivered" ? 1 : 0;
        std::size_t done = 0;
        for (std::size_t c = 0; c < k; ++c) {
            const bool works = baseline_.calls[c] == u"vexDispTrans.ResetAndClear" ||
                               baseline_.calls[c].starts_with(u"vexDispTrans.DownloadFirmware");
            done += works && display_of_call_[c] == own + 1 ? 1 : 0;
        }
        EXPECT_EQ(changed, done);
    }
}

TEST_P(InterruptionTest, ACancelStopsAlsoAHostThatDoesNotHeedIt) {
    for (auto [k, moment] : moments(baseline_.calls)) {
        SCOPED_TRACE(about(k, "the user cancels, and the host goes on"));
        Plan plan = plan_;
        plan.heedless = true;
        moment.cancel = forms::MessageAnswer::yes;
        plan.moment = moment;
        const Outcome outcome = play(plan);
        check_always(outcome);
        EXPECT_EQ(outcome.rows.at(display_of_call_[k] - 1), kCancelled);
        // The unit that has just been addressed is still tried, on a connection that is closed by then, and no other.
        const Words& calls = outcome.calls_after_cancel;
        EXPECT_LE(std::ranges::count(calls, u"vexDispTrans.ResetAndClear") +
                      std::ranges::count(calls, u"vexDispTrans.DownloadFirmware"),
                  baseline_.calls[k] == u"vexDispTrans.SignID" ? 1 : 0);
    }
}

TEST_P(InterruptionTest, ADeclinedCancelAndAMereMessageChangeNothing) {
    for (auto [k, moment] : moments(baseline_.calls)) {
        for (const auto& answer : {std::optional<forms::MessageAnswer>(), std::optional(forms::MessageAnswer::no)}) {
            SCOPED_TRACE(about(k, answer ? "the user cancels and declines" : "a message is shown"));
            Plan plan = plan_;
            moment.cancel = answer;
            plan.moment = moment;
            const Outcome outcome = play(plan);
            check_always(outcome);
            EXPECT_EQ(outcome.rows, baseline_.rows);
            EXPECT_EQ(outcome.calls, baseline_.calls);
            EXPECT_EQ(outcome.units, baseline_.units);
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Modes, InterruptionTest,
                         ::testing::Combine(::testing::ValuesIn(kModes), ::testing::Values(1, 2, 3)),
                         [](const auto& test) {
                             std::string name = name_of(std::get<0>(test.param));
                             std::ranges::replace(name, ' ', '_');
                             return name + "_" + std::to_string(std::get<1>(test.param));
                         });

}  // namespace
}  // namespace vex::proof
