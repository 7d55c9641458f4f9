// Gives the plug-in host values of every odd kind in every field that it reads: it may fail a row or raise an
// automation error, and nothing else.
#include <gtest/gtest.h>

#include <limits>
#include <set>
#include <string>

#include "core/unicode.h"
#include "tests/proof/rig.h"

namespace vex::proof {
namespace {

std::vector<com::Variant> hostile_values() {
    std::u16string every_unit;
    for (std::uint32_t unit = 0; unit <= 0xFFFF; ++unit) every_unit += static_cast<char16_t>(unit);
    const std::u16string texts[] = {
        u"",      u" ",     u",",        u",,",     u"1,,2",  u"1, 2",       u"1,x",    u"32767", u"32768", u"-32768",
        u"-1",    u"99999999999999999999", u"1.5",  u"1e4",   u"0x10",       u"%s%n%d", u".",     u".5",    u"5.",
        u"1.2.3", u"TQ-1 - ", u"KQS",    u"\\",     u"a\\b",  u"..\\..\\x",  u"10.0.0.7",
        u"a.b.c.", u"\xD800",  u"\xDC00x",
        std::u16string(1, u'\0'), std::u16string(u"1\0" u"2", 3), std::u16string(70'000, u'9'),
        std::u16string(33'000, u','), std::u16string(70'000, u'x'), every_unit};
    std::vector<com::Variant> values;
    for (const std::u16string& text : texts) values.push_back(com::Variant::text(text));
    for (const int number : {0, 1, 2, 3, 4, -1, 32766, 32767, -32768})
        values.push_back(com::Variant::int16(static_cast<std::int16_t>(number)));
    for (const std::int32_t number : {32768, -32769, std::numeric_limits<std::int32_t>::max()})
        values.push_back(com::Variant::int32(number));
    for (const double number : {0.5, 1e300, -1e300, std::numeric_limits<double>::quiet_NaN(),
                                std::numeric_limits<double>::infinity()})
        values.push_back(com::Variant::real(number));
    values.push_back(com::Variant::boolean(true));
    values.push_back(com::Variant::boolean(false));
    values.push_back(com::Variant::object(nullptr));
    values.emplace_back();
    for (const VARTYPE none : {VT_NULL, VT_ERROR}) {
        values.emplace_back();
        values.back().get().vt = none;
        values.back().get().scode = DISP_E_PARAMNOTFOUND;
    }
    return values;
}

/// The run ended in one of the two ways that are allowed, and left nothing behind.
void check(const Outcome& outcome) {
    EXPECT_EQ(outcome.host_objects, 0);
    EXPECT_EQ(outcome.plugin_objects, 0);
    static const std::set<std::int32_t> kErrors = {5, 6, 9, 13, 91, 429, 438, 35602};
    if (outcome.error != 0) {
        EXPECT_TRUE(kErrors.contains(outcome.error)) << outcome.error;
        return;
    }
    for (const std::u16string& word : outcome.rows) {
        EXPECT_TRUE(word == u"Updated - " || word.starts_with(u"FAILED - ")) << to_utf8(word.substr(0, 80));
    }
}

TEST(HostileValues, InEveryFieldOfEveryHostObject) {
    const std::vector<com::Variant> values = hostile_values();
    std::set<std::u16string> tried_fields;
    for (const Mode mode : kModes) {
        Plan plan;
        plan.mode = mode;
        plan.displays = 2;
        plan.retry = false;
        const Outcome baseline = play(plan);
        for (const std::u16string& field : std::set(baseline.calls.begin(), baseline.calls.end())) {
            if (field.starts_with(u"new ") || !tried_fields.insert(field).second) continue;
            for (std::size_t i = 0; i < values.size(); ++i) {
                SCOPED_TRACE(std::string(name_of(mode)) + " " + to_utf8(field) + " value " + std::to_string(i));
                plan.meddle = [&](const std::u16string& call) {
                    return call == field ? std::optional(values[i]) : std::nullopt;
                };
                check(play(plan));
            }
        }
    }
}

}  // namespace
}  // namespace vex::proof
