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
using testing::StartsWith;

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
    written.save(folder / "Displays.dat");

    const Displays read = Displays::load(folder / "Displays.dat");
    ASSERT_EQ(read.size(), 2U);
    EXPECT_EQ(read.text(), written.text());
    EXPECT_EQ(read.at(0).name, odd.name);
    EXPECT_EQ(read.at(0).port, u"");
    EXPECT_EQ(read.at(0).connection, -3);
    EXPECT_EQ(read.find(u""), 1U);
}

/// What is wrong with a text as the host's file.
template <class File>
std::string damage_of(const std::string& text) {
    try {
        File::parse("F", text);
    } catch (const TextError& error) {
        return error.what();
    }
    return "nothing";
}

TEST(HostFiles, NameTheDamagedLine) {
    const std::string header = "# Brivola displays, version 1\n";
    const std::pair<std::string, const char*> displays[] = {
        {"", "F:1: expected the line # Brivola"},
        {"display A\n", "F:1: expected the line # Brivola"},
        {header + "\n# note\ndisplay\n", "F:4: expected display NAME"},
        {header + "sign A\n", "F:2: expected display NAME"},
        {header + "display A\ndisplay B color=red\n", "F:3: color=red is no KEY=VALUE"},
        {header + "display A port\n", "F:2: port is no KEY=VALUE"},
        {header + "display A connection=two\n", "F:2: connection=two needs a number"},
        {header + "display A\ndisplay A\n", "F:3: display A stands here twice"},
        {header + "display \"A\n", "F:2: a quote is not closed"},
        {header + std::string("display A\0B", 11), "F:2: a control character"},
        {header + "display A port=\xFF\xFE x\n", "F:2: byte 16 of the line is no UTF-8"},
    };
    for (const auto& [text, message] : displays) EXPECT_THAT(damage_of<Displays>(text), StartsWith(message)) << text;

    const std::string units_header = "# Brivola units, version 1\n";
    const std::pair<std::string, const char*> units[] = {
        {"holds A 1 empty\n", "F:1: expected the line # Brivola"},
        {units_header + "holds A one empty\n", "F:2: \"one\" is no display ID"},
        {units_header + "holds A 1 full\n", "F:2: \"full\" is nothing that a unit holds"},
        {units_header + "holds A 1 a.SHX many 0\n", "F:2: expected a size"},
        {units_header + "holds A 1 a.SHX 1 XYZ\n", "F:2: expected a checksum"},
        {units_header + "slaves A 1 3\n", "F:2: \"3\" is no grid"},
        {units_header + "slaves A 1 1x2x3\n", "F:2: \"1x2x3\" is no grid"},
        {units_header + "\nbox A\n", "F:3: expected slaves NAME"},
    };
    for (const auto& [text, message] : units) EXPECT_THAT(damage_of<Units>(text), StartsWith(message)) << text;
}

TEST(Displays, ShareALineByWhatTheirConnectionUses) {
    Display cable;
    Display network = cable;
    network.connection = kNetwork;
    Display modem = cable;
    modem.connection = kModem;
    EXPECT_NE(modem.line(), cable.line());
    const auto same = [](const Display& display, std::u16string Display::*field) {
        Display other = display;
        other.*field = u"other";
        return other.line() == display.line();
    };
    EXPECT_TRUE(same(cable, &Display::phone) && same(cable, &Display::address));
    EXPECT_FALSE(same(cable, &Display::baud) || same(cable, &Display::port));
    EXPECT_TRUE(same(network, &Display::baud));
    EXPECT_FALSE(same(network, &Display::port) || same(network, &Display::address));
    EXPECT_FALSE(same(modem, &Display::phone));
    Display unknown = network;
    unknown.connection = 9;
    EXPECT_EQ(network.line(), unknown.line());
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

TEST(Units, OfAGridBeyondAllBoundsEndAtTheHighestId) {
    Units units;
    units.set_slaves(u"A", 32766, {200, 200});
    EXPECT_THAT(units.ids(display_with(u"32766")), ElementsAre(32766, 32767));
    // A display may report anything, and some of it makes no sense.
    units.set_slaves(u"A", 1, {-1, 5});
    EXPECT_THAT(units.ids(display_with(u"1")), ElementsAre(1, 32766));
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
    written.save(folder / "Units.dat");

    Units read = Units::load(folder / "Units.dat");
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
