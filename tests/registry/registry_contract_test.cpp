// What the registry seam promises, on either side. On Windows this runs against the real registry.
#include <gmock/gmock.h>

#include <algorithm>
#include <set>

#include "platform/system.h"
#include "tests/registry/test_key.h"

namespace vex::test {
namespace {

using namespace platform;
using ::testing::AnyOf;
using ::testing::UnorderedElementsAre;
using ::testing::UnorderedElementsAreArray;

constexpr std::uint8_t kPoison = 0xA5;
constexpr std::int32_t kBadPathName = 161;

class RegistryContract : public TestKeyFixture {
protected:
    /// Calls that only ask; what they tell is left in the members.
    std::int32_t query(RegistryKey asked, const char* value) {
        size = 0;
        return registry.query_value(asked, value, type, nullptr, size);
    }
    std::int32_t nth_key(RegistryKey asked, std::uint32_t index, std::uint32_t room = sizeof name) {
        length = room;
        return registry.enum_key(asked, index, name, length);
    }
    std::int32_t nth_value(RegistryKey asked, std::uint32_t index, std::uint32_t room = sizeof name) {
        length = room;
        size = static_cast<std::uint32_t>(data.size());
        return registry.enum_value(asked, index, name, length, type, data.empty() ? nullptr : data.data(), size);
    }

    Registry& registry = side_registry();
    RegistryKey opened = 0;
    char name[260];
    std::uint32_t length = 0, type = 0, size = 0;
    /// Where `nth_value` puts the data; empty: it tells the size only.
    Bytes data;
};

// ---- Keys

TEST_F(RegistryContract, CreatingMakesTheMissingKeysAboveAndOpensWhatExists) {
    Key::created(key.get(), "Upper\\Lower\\Lowest").set_text("kept", "still here");
    EXPECT_THAT(key.subkeys(), UnorderedElementsAre("Upper"));
    EXPECT_TRUE(Key::opened(key.get(), "Upper\\Lower"));
    EXPECT_EQ(Key::created(key.get(), "Upper\\Lower\\Lowest").get("kept").second, bytes_of({"still here\0", 11}));
    EXPECT_EQ(registry.open_key(key.get(), "Missing", kKeyRead, opened), kFileNotFound);
    EXPECT_EQ(registry.delete_key(key.get(), "Missing"), kFileNotFound);
}

TEST_F(RegistryContract, NamesAreFoundInAnyCaseAndKeepTheirs) {
    Key::created(key.get(), "MixedCase").set_text("ValueName", "x");
    const Key again = Key::created(key.get(), "mIXEDcASE");
    again.set_text("vALUEnAME", "y");
    EXPECT_THAT(key.subkeys(), UnorderedElementsAre("MixedCase"));
    EXPECT_EQ(nth_value(again.get(), 0), kSuccess);
    EXPECT_EQ(std::string(name, length), "ValueName");
    EXPECT_EQ(nth_value(again.get(), 1), kNoMoreItems);
}

TEST_F(RegistryContract, SeparatorsAroundAPathDoNotCountAndAnEmptyOneIsTheKeyItself) {
    Key::created(key.get(), "Sub\\").set_text("v", "1");
    EXPECT_THAT(key.subkeys(), UnorderedElementsAre("Sub"));
    EXPECT_EQ(Key::opened(key.get(), "Sub\\").get("v").first, kRegSz);
    // Systems differ for a leading one: the substitute and 32-bit programs on 64-bit Windows pass over it.
    EXPECT_THAT(registry.open_key(key.get(), "\\Sub", kKeyRead, opened), AnyOf(kSuccess, kBadPathName));
    if (opened != 0) registry.close_key(opened);
    Key::opened(key.get(), "").set_text("v", "1");
    EXPECT_EQ(key.get("v").first, kRegSz);
}

TEST_F(RegistryContract, AHandleOfADeletedKeyKnowsIt) {
    Key doomed = Key::created(key.get(), "Doomed");
    doomed.set_text("v", "1");
    ASSERT_EQ(registry.delete_key(key.get(), "Doomed"), kSuccess);
    EXPECT_EQ(query(doomed.get(), "v"), kKeyDeleted);
    EXPECT_EQ(registry.set_value(doomed.get(), "v", kRegBinary, &kPoison, 1), kKeyDeleted);
    const Key again = Key::created(key.get(), "Doomed");
    EXPECT_EQ(again.get("v").first, ~0U) << "a new key of the name has nothing of the old one";
    EXPECT_EQ(query(doomed.get(), "v"), kKeyDeleted);
}

TEST_F(RegistryContract, InvalidHandlesAreRefused) {
    EXPECT_EQ(registry.close_key(0), kInvalidHandle);
    EXPECT_EQ(registry.open_key(0, "Software", kKeyRead, opened), kInvalidHandle);
    EXPECT_EQ(query(0, "v"), kInvalidHandle);
    EXPECT_EQ(registry.set_value(0, "v", kRegBinary, &kPoison, 1), kInvalidHandle);
    EXPECT_EQ(nth_key(0, 0), kInvalidHandle);
    EXPECT_EQ(registry.delete_value(0, "v"), kInvalidHandle);
    EXPECT_EQ(registry.close_key(registry_key(kHkeyLocalMachine)), kSuccess) << "predefined keys never really close";
}

TEST_F(RegistryContract, SubKeysAreEnumeratedOnceEachAndANameNeedsRoomForItsNull) {
    std::vector<std::string> expected;
    for (int i = 10; i < 40; ++i) Key::created(key.get(), expected.emplace_back("Key " + std::to_string(i)));
    const std::vector<std::string> found = key.subkeys();
    EXPECT_THAT(found, UnorderedElementsAreArray(expected));
    EXPECT_EQ(nth_key(key.get(), 30), kNoMoreItems);
    std::fill(std::begin(name), std::end(name), static_cast<char>(kPoison));
    EXPECT_EQ(nth_key(key.get(), 0, 7), kSuccess);
    EXPECT_EQ(length, 6U);
    EXPECT_EQ(name, found[0]);
    EXPECT_EQ(static_cast<std::uint8_t>(name[7]), kPoison);
    EXPECT_EQ(nth_key(key.get(), 0, 6), kMoreData);
}

// ---- Rights

TEST_F(RegistryContract, AKeyOpenedForReadingRefusesWritingAndTheOtherWayRound) {
    key.set_text("v", "1");
    const Key reading = Key::opened(root, kTestPath, kKeyRead);
    EXPECT_EQ(registry.set_value(reading.get(), "v", kRegBinary, &kPoison, 1), kAccessDenied);
    EXPECT_EQ(registry.delete_value(reading.get(), "v"), kAccessDenied);
    EXPECT_EQ(reading.get("v").first, kRegSz);
    const Key writing = Key::opened(root, kTestPath, kKeyWrite);
    writing.set_text("v", "1");
    EXPECT_EQ(query(writing.get(), "v"), kAccessDenied);
    EXPECT_EQ(nth_value(writing.get(), 0), kAccessDenied);
    EXPECT_EQ(nth_key(writing.get(), 0), kAccessDenied);
}

// ---- Values

TEST_F(RegistryContract, EveryByteOfATextSurvives) {
    for (int byte = 1; byte < 256; ++byte) {
        const std::string one(1, static_cast<char>(byte));
        // Bytes that the code page has no character for are not promised.
        if (platform::to_ansi(platform::from_ansi(one)) == one) data.push_back(static_cast<std::uint8_t>(byte));
    }
    data.push_back(0);
    for (const std::uint32_t kind : {kRegSz, kRegExpandSz, kRegMultiSz}) {
        key.set("v", kind, data);
        EXPECT_EQ(key.get("v"), std::pair(kind, data));
    }
}

TEST_F(RegistryContract, ADataBufferMayBeJustBigEnough) {
    const Bytes text = bytes_of({"twelve char\0", 12});
    key.set("text", kRegSz, text);
    key.set("bytes", kRegBinary, text);
    for (const char* value : {"text", "bytes"}) {
        SCOPED_TRACE(value);
        EXPECT_EQ(query(key.get(), value), kSuccess) << "no buffer: only the size";
        EXPECT_EQ(size, text.size());

        Bytes buffer(20, kPoison);
        size = 12;
        EXPECT_EQ(registry.query_value(key.get(), value, type, buffer.data(), size), kSuccess);
        EXPECT_EQ(size, text.size());
        EXPECT_TRUE(std::equal(text.begin(), text.end(), buffer.begin()));
        EXPECT_EQ(buffer[12], kPoison);

        for (const std::uint32_t room : {11U, 1U, 0U}) {
            type = ~0U;
            size = room;
            buffer.assign(20, kPoison);
            EXPECT_EQ(registry.query_value(key.get(), value, type, buffer.data(), size), kMoreData) << room;
            EXPECT_EQ(size, text.size());
            EXPECT_NE(type, ~0U) << "the type is told";
            EXPECT_EQ(buffer[room], kPoison);
        }
    }
}

TEST_F(RegistryContract, ADeletedValueIsNotFoundAndTheDefaultHasTheEmptyName) {
    EXPECT_EQ(query(key.get(), ""), kFileNotFound);
    key.set_text("", "default");
    key.set_text("first", "1");
    EXPECT_EQ(query(key.get(), nullptr), kSuccess);
    EXPECT_EQ(size, 8U);
    EXPECT_EQ(registry.delete_value(key.get(), nullptr), kSuccess);
    EXPECT_EQ(query(key.get(), ""), kFileNotFound);
    EXPECT_EQ(key.get("first").first, kRegSz);
    EXPECT_EQ(registry.delete_value(key.get(), "FIRST"), kSuccess);
    EXPECT_EQ(registry.delete_value(key.get(), "first"), kFileNotFound);
    EXPECT_EQ(key.get("first").first, ~0U);
}

TEST_F(RegistryContract, ValuesAreEnumeratedOnceEachAndTellWhatDidNotFit) {
    key.set_text("", "default");
    key.set("bytes", kRegBinary, Bytes(20, 7));
    for (int i = 0; i < 30; ++i) {
        const std::string value = "Value " + std::to_string(i);
        key.set(value.c_str(), kRegDword, {static_cast<std::uint8_t>(i), 0, 0, 0});
    }
    std::set<std::string> found;
    for (std::uint32_t index = 0; index < 32; ++index) {
        data.assign(20, kPoison);
        ASSERT_EQ(nth_value(key.get(), index), kSuccess);
        EXPECT_TRUE(found.insert(std::string(name, length)).second);
        data.resize(size);
        EXPECT_EQ(key.get(name), std::pair(type, data));
        if (type != kRegBinary) continue;
        EXPECT_EQ(nth_value(key.get(), index, 6), kSuccess);
        EXPECT_EQ(nth_value(key.get(), index, 5), kMoreData) << "no room for the name's null";
        data.pop_back();
        EXPECT_EQ(nth_value(key.get(), index), kMoreData);
        EXPECT_EQ(size, 20U);
        EXPECT_EQ(type, kRegBinary);
    }
    EXPECT_EQ(nth_value(key.get(), 32), kNoMoreItems);
}

// ---- Other computers, and the environment

TEST_F(RegistryContract, NoComputerIsThisOneAndOneThatIsNotThereIsUnreachable) {
    key.set_text("v", "1");
    ASSERT_EQ(registry.connect_registry(nullptr, root, opened), kSuccess);
    EXPECT_EQ(Key::opened(opened, kTestPath).get("v").first, kRegSz);
    registry.close_key(opened);
    EXPECT_EQ(registry.connect_registry("\\\\vex-no-such-computer", registry_key(kHkeyLocalMachine), opened),
              kBadNetPath);
    EXPECT_EQ(opened, 0);
}

TEST_F(RegistryContract, VariablesOfTheEnvironmentAreExpanded) {
    set_environment("VEX_SHORT", "s");
    set_environment("VEX_LONG", "a longer value than its name");
    const std::pair<const char*, const char*> cases[] = {
        {"100%", "100%"},
        {"<%vex_short%%VEX_LONG%>", "<sa longer value than its name>"},
        {"%VEX_NO_SUCH_VARIABLE%", "%VEX_NO_SUCH_VARIABLE%"},
        // The sign that ends an unknown name begins the next. Wine takes it for used up.
        {"%VEX_NO%VEX_SHORT%", runs_on_wine() ? "%VEX_NO%VEX_SHORT%" : "%VEX_NOs"},
    };
    for (const auto& [source, expanded] : cases) {
        char target[100] = {};
        EXPECT_EQ(registry.expand_environment(source, target, sizeof target), std::strlen(expanded) + 1) << source;
        EXPECT_STREQ(target, expanded);
    }
    char small[4];
    EXPECT_GT(registry.expand_environment("%VEX_LONG%", small, sizeof small), 4U)
        << "what does not fit tells what it needs";
}

}  // namespace
}  // namespace vex::test
