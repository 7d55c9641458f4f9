// What a display takes for firmware.
#include "simulator/firmware_image.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "core/unicode.h"
#include "tests/shared/temporary_folder.h"

namespace vex::sim {
namespace {

constexpr char kData[] = "S1050000010FEA\n";
constexpr char kEnd[] = "S9030000FC\n";

std::string fault_of(const std::string& text) {
    try {
        check_motorola_image(text, u"D:\\a.SHX");
    } catch (const ImageError& error) {
        return error.what();
    }
    return {};
}

TEST(MotorolaImage, TakesEveryKindOfRecord) {
    EXPECT_EQ(fault_of(std::string(kData) + kEnd), "");
    EXPECT_EQ(fault_of("S00600004844521B\r\nS1050000010FEA\r\n\r\nS9030000FC\r\n"), "");
    EXPECT_EQ(fault_of("S206000000010FE9\nS804000000FB"), "");
    EXPECT_EQ(fault_of("S30700000000010fe8\nS5030001FB\nS70500000000FA\n"), "");
    EXPECT_EQ(fault_of(std::string(kData) + "S604000001FA\n" + kEnd), "");
}

TEST(MotorolaImage, OfAnySizeCanBeMade) {
    for (const std::size_t size : {1U, 31U, 32U, 33U, 255U, 70'000U})
        EXPECT_EQ(fault_of(make_motorola_image(size)), "") << size;
    EXPECT_NE(crc32(make_motorola_image(64)), crc32(make_motorola_image(65)));
}

TEST(MotorolaImage, ShowsEveryFlippedBit) {
    const std::string good = "S206000000010FE9\nS804000000FB";
    for (std::size_t bit = 0; bit < good.size() * 8; ++bit) {
        // The type of a record is not in its checksum: S2 may well become S3.
        const std::size_t at = bit / 8;
        if (at > 0 && good[at - 1] == 'S') continue;
        std::string bad = good;
        bad[at] = static_cast<char>(bad[at] ^ 1 << bit % 8);
        // A digit in the other case is the same digit.
        if (good[at] != 'S' && equal_ignoring_case(from_utf8(bad), from_utf8(good))) continue;
        EXPECT_NE(fault_of(bad), "") << bad;
    }
}

TEST(Images, AreKnownByNameSizeAndChecksum) {
    EXPECT_EQ(crc32("123456789"), 0xCBF43926U);
    const test::TemporaryFolder folder;
    const Firmware rabbit = read_rabbit_image(folder.write("r", "123456789"), u"D:\\fw\\new.bin");
    EXPECT_EQ(rabbit.name, u"new.bin");
    EXPECT_EQ(rabbit.size, 9U);
    EXPECT_EQ(rabbit.crc32, 0xCBF43926U);
    const std::string records = std::string(kData) + kEnd;
    EXPECT_EQ(read_motorola_image(folder.write("m", records), u"a.SHX").size, records.size());
}

}  // namespace
}  // namespace vex::sim
