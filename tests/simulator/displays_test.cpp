// The host's displays: kept in a file that people can read, found without a search.
#include "simulator/displays.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/shared/temporary_folder.h"

namespace vex::sim {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

constexpr char kHeader[] = "# Brivola displays, version 1\n";

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
    written.save(folder.path() / "Displays.dat");

    const Displays read = Displays::load(folder.path() / "Displays.dat");
    ASSERT_EQ(read.size(), 2U);
    EXPECT_EQ(read.at(0).name, odd.name);
    EXPECT_EQ(read.at(0).type, odd.type);
    EXPECT_EQ(read.at(0).phone, odd.phone);
    EXPECT_EQ(read.at(0).port, u"");
    EXPECT_EQ(read.at(0).ids, odd.ids);
    EXPECT_EQ(read.at(0).connection, -3);
    EXPECT_EQ(read.at(1).baud, plain.baud);
    EXPECT_EQ(read.find(u""), 1U);
}

TEST(Displays, NameTheDamagedLineOfTheirFile) {
    const test::TemporaryFolder folder;
    const struct {
        std::string text;
        const char* message;
    } cases[] = {
        {"", "Displays.dat:1: expected the line # Brivola"},
        {"display A\n", "Displays.dat:1: expected the line # Brivola"},
        {std::string(kHeader) + "\n# note\ndisplay\n", "Displays.dat:4: expected display NAME"},
        {std::string(kHeader) + "sign A\n", "Displays.dat:2: expected display NAME"},
        {std::string(kHeader) + "display A\ndisplay B color=red\n", "Displays.dat:3: color=red is no KEY=VALUE"},
        {std::string(kHeader) + "display A port\n", "Displays.dat:2: port is no KEY=VALUE"},
        {std::string(kHeader) + "display A connection=two\n", "Displays.dat:2: connection=two needs a number"},
        {std::string(kHeader) + "display A\ndisplay A\n", "Displays.dat:3: display A stands here twice"},
        {std::string(kHeader) + "display \"A\n", "Displays.dat:2: a quote is not closed"},
        {std::string(kHeader) + std::string("display A\0B", 11), "Displays.dat:2: a control character"},
        {std::string(kHeader) + "display A port=\xFF\xFE x\n", "Displays.dat:2: x is no KEY=VALUE"},
    };
    for (const auto& damaged : cases) {
        const auto path = folder.write("Displays.dat", damaged.text);
        try {
            Displays::load(path);
            ADD_FAILURE() << damaged.text;
        } catch (const TextError& error) {
            EXPECT_THAT(error.what(), StartsWith(damaged.message));
        }
    }
}

TEST(Displays, AreFoundOnTheirLineAlsoAfterAChange) {
    Displays displays;
    for (const char16_t* name : {u"A", u"B", u"C"}) {
        Display display;
        display.name = name;
        display.address = u"10.0.0.1";
        displays.put(display);
    }
    const std::u16string line = displays.at(0).line();
    EXPECT_EQ(displays.first_on_line(line), 0U);

    Display moved = displays.at(0);
    moved.port = u"COM7";
    moved.address = u"10.0.0.2";
    displays.put(moved);
    EXPECT_EQ(displays.size(), 3U);
    EXPECT_EQ(displays.first_on_line(line), 1U);
    EXPECT_EQ(displays.first_on_line(moved.line()), 0U);
    EXPECT_THAT(displays.at_address(u"10.0.0.1"), ElementsAre(1, 2));
    EXPECT_THAT(displays.at_address(u"10.0.0.2"), ElementsAre(0));

    moved.address = u"10.0.0.1";
    displays.put(moved);
    EXPECT_THAT(displays.at_address(u"10.0.0.1"), ElementsAre(0, 1, 2));
    EXPECT_THAT(displays.at_address(u"10.0.0.2"), IsEmpty());
}

TEST(Displays, ShareALineByWhatTheirConnectionUses) {
    Display cable;
    Display other = cable;
    other.phone = u"1";
    other.address = u"10.0.0.1";
    EXPECT_EQ(cable.line(), other.line());
    other.baud = u"19200";
    EXPECT_NE(cable.line(), other.line());

    Display network;
    network.connection = kNetwork;
    Display unknown = network;
    unknown.connection = 9;
    unknown.baud = u"1";
    EXPECT_EQ(network.line(), unknown.line());
    unknown.port = u"COM2";
    EXPECT_NE(network.line(), unknown.line());

    Display modem;
    modem.connection = kModem;
    EXPECT_NE(modem.line(), cable.line());
    Display other_number = modem;
    other_number.phone = u"2";
    EXPECT_NE(modem.line(), other_number.line());
}

}  // namespace
}  // namespace vex::sim
