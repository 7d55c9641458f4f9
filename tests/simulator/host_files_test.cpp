// The host's displays and the units behind them: found without a search, kept in files that people can read.
#include "simulator/displays.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "simulator/words.h"
#include "tests/shared/temporary_folder.h"

namespace vex::sim {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST(Displays, SurviveTheirFile) {
    const test::TemporaryFolder folder;
    Displays written;
    Display odd;
    odd.name = u"Gate \"A\", #1";
    odd.type = u"TQ-1 - 64x16";
    odd.phone = u"0 30 / 123";
    odd.port = u"";
    odd.ids = u"1, 20";
    odd.connection = -3;
    written.put(odd);
    Display plain;
    plain.name = u"";
    written.put(plain);
    replace_file(folder / "Displays.dat", written.text());

    const Displays read = load<Displays>(folder / "Displays.dat");
    ASSERT_EQ(read.size(), 2U);
    EXPECT_EQ(read.text(), written.text());
    EXPECT_EQ(read.at(0).name, odd.name);
    EXPECT_EQ(read.at(0).port, u"");
    EXPECT_EQ(read.at(0).connection, -3);
    EXPECT_EQ(read.find(u""), 1U);
}

Display display_with(std::u16string ids) {
    Display display;
    display.name = u"A";
    display.ids = std::move(ids);
    return display;
}

TEST(Units, AreMastersTheirSlavesAndWhatWasPutThere) {
    Units units;
    const Display display = display_with(u"20, 1,x,,40000,1");
    EXPECT_THAT(units.ids(display), ElementsAre(20, 1));
    units.set_slaves(u"A", 1, {0, 2});
    units.set_slaves(u"A", 50, {0, 0});
    EXPECT_THAT(units.ids(display), ElementsAre(20, 1, 2, 3, 50));
    for (const int id : {1, 2, 3, 20, 50}) EXPECT_TRUE(units.answers(display, static_cast<std::int16_t>(id))) << id;
    for (const int id : {0, 4, 19, 21, -1}) EXPECT_FALSE(units.answers(display, static_cast<std::int16_t>(id))) << id;
    units.set_absent(u"A", 2);
    EXPECT_FALSE(units.answers(display, 2));
    EXPECT_TRUE(units.answers(display, 3));
    EXPECT_THAT(units.ids(display_with(u"")), ElementsAre(1, 50));
}

TEST(Units, SurviveTheirFile) {
    const test::TemporaryFolder folder;
    Units written;
    written.set_slaves(u"A", 1, {0, 2});
    written.set_absent(u"A", 3);
    written.add_box(u"A", u"XPort \"03\"");
    written.add_box(u"A", u"");
    written.store(u"A", 1, {Content::State::firmware, {u"new one.SHX", 12345, 0x0000ABCD}});
    written.store(u"A", 2, {Content::State::incomplete, {}});
    written.store(u"A", -7, {Content::State::empty, {}});
    replace_file(folder / "Units.dat", written.text());

    Units read = load<Units>(folder / "Units.dat");
    EXPECT_EQ(read.slaves(u"A", 1)->x, 2);
    EXPECT_FALSE(read.answers(display_with(u"1"), 3));
    EXPECT_THAT(read.boxes(u"A"), ElementsAre(u"XPort \"03\"", u""));
    EXPECT_EQ(describe(read.content(u"A", 1)), u"\"new one.SHX\", 12345 bytes, CRC-32 0000ABCD");
    EXPECT_EQ(describe(read.content(u"A", 2)), u"incomplete");
    EXPECT_EQ(describe(read.content(u"A", -7)), u"empty");
    EXPECT_EQ(describe(read.content(u"A", 5)), u"as delivered");
    // Set up anew, a display keeps what its units hold.
    read.clear_hardware(u"A");
    EXPECT_EQ(read.slaves(u"A", 1), std::nullopt);
    EXPECT_THAT(read.boxes(u"A"), IsEmpty());
    EXPECT_EQ(describe(read.content(u"A", 2)), u"incomplete");
}

}  // namespace
}  // namespace vex::sim
