// The registry access class on the side's registry, with an eye on what it asks for.
#include <gmock/gmock.h>

#include <set>

#include "platform/system.h"
#include "support/registry_routines.h"
#include "tests/registry/observed_registry.h"
#include "tests/registry/test_key.h"
#include "tests/shared/error_of.h"

namespace vex::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

using namespace std::string_literals;
using namespace std::string_view_literals;
using namespace platform;

class RegistryRoutinesTest : public TestKeyFixture {
protected:
    RegistryRoutinesTest() {
        routines.set_hKey(kHkeyCurrentUser);
        routines.set_KeyRoot(kWideTestPath);
        set_environment("VEX_SHORT", "s");
        set_environment("VEX_JUST", "123456789");
        set_environment("VEX_LONGER", "longer than it");
    }
    ~RegistryRoutinesTest() override { observed.close_all(); }

    ObservedRegistry observed;
    RegistryRoutines routines{observed};
};

// ---- Keys

TEST_F(RegistryRoutinesTest, TheWorkingPathAlwaysHasItsBackslash) {
    key.set_text("v", "here");
    const std::tuple<const char16_t*, const char16_t*, std::string, AutomationValue> cases[] = {
        {kWideTestPath, u"", std::string(kTestPath) + "\\", u"here"},
        {u"Software", u"vexFirmwarePluginTests", kTestPath, u"here"},
        {u"", u"Missing", "\\Missing", {}},
    };
    for (const auto& [root_path, subkey, path, value] : cases) {
        routines.set_KeyRoot(root_path);
        routines.set_Subkey(subkey);
        EXPECT_EQ(routines.GetRegistryValue(u"v"), value);
        EXPECT_EQ(observed.last_path, path);
        EXPECT_EQ(observed.last_access, kKeyRead);
        EXPECT_THAT(observed.open_keys, IsEmpty());
        EXPECT_EQ(routines.KeyExists(), !value.is_empty());
        EXPECT_EQ(observed.last_access, kKeyRead);
        EXPECT_EQ(observed.open_keys.size(), value.is_empty() ? 0U : 1U) << "the handle of the test is kept open";
        observed.close_all();
    }
}

TEST_F(RegistryRoutinesTest, CreateKeyAnswersZeroAsTextAndWithoutANameTakesAndTellsTheSubkey) {
    EXPECT_EQ(routines.CreateKey(u"New\\Deeper"), u"0");
    EXPECT_EQ(routines.CreateKey(u"New\\Deeper"), u"0") << "an existing key is opened";
    EXPECT_TRUE(Key::opened(key.get(), "New\\Deeper"));
    EXPECT_EQ(observed.last_path, std::string(kTestPath) + "\\New\\Deeper");
    EXPECT_EQ(observed.last_class, "");
    EXPECT_EQ(observed.last_access, kKeyAllAccess);
    const SecurityAttributes& attributes = observed.last_attributes;
    EXPECT_TRUE(attributes.length == 0 && attributes.descriptor == nullptr && attributes.inherit_handle == 0);
    EXPECT_THAT(observed.open_keys, IsEmpty());
    EXPECT_EQ(routines.CreateKey(std::u16string(256, u'x')), u"");

    routines.set_Subkey(u"FromSubkey");
    EXPECT_EQ(routines.CreateKey(), u"0");
    EXPECT_TRUE(Key::opened(key.get(), "FromSubkey"));
    std::optional<AutomationValue> name;
    EXPECT_EQ(routines.CreateKey(name), u"0");
    EXPECT_EQ(name, AutomationValue(u"FromSubkey"));
    name.emplace(7);
    EXPECT_EQ(routines.CreateKey(name), u"0");
    EXPECT_TRUE(Key::opened(key.get(), "7"));
}

TEST_F(RegistryRoutinesTest, DeleteKeyAlwaysAnswersZero) {
    Key::created(key.get(), "Upper\\Lower");
    EXPECT_EQ(routines.DeleteKey(u"Upper"), 0) << "which could not be deleted";
    EXPECT_EQ(routines.DeleteKey(u"Missing"), 0);
    EXPECT_EQ(observed.null_closes, 0);
    EXPECT_TRUE(Key::opened(key.get(), "Upper\\Lower"));
    EXPECT_EQ(routines.DeleteKey(u"Upper\\Lower"), 0);
    EXPECT_EQ(observed.null_closes, 1) << "the null handle that is closed after a success";
    EXPECT_FALSE(Key::opened(key.get(), "Upper\\Lower"));
}

TEST_F(RegistryRoutinesTest, DeleteValueAnswersTheResultCode) {
    key.set_text("v", "1");
    EXPECT_EQ(routines.DeleteValue(u"v"), kSuccess);
    EXPECT_EQ(observed.last_access, kKeyAllAccess);
    EXPECT_EQ(routines.DeleteValue(u"v"), kFileNotFound);
    routines.set_Subkey(u"Missing");
    EXPECT_EQ(routines.DeleteValue(u"v"), kFileNotFound);
    EXPECT_THAT(observed.open_keys, IsEmpty());
}

TEST_F(RegistryRoutinesTest, EnumRegistryKeysCollectsNames) {
    for (const char* name : {"Alpha", "beta"}) Key::created(key.get(), name);
    // The path and the root of the object do not matter.
    routines.set_KeyRoot(u"Missing");
    routines.set_hKey(0);
    const auto names = routines.EnumRegistryKeys(kHkeyCurrentUser, kWideTestPath);
    EXPECT_THAT(std::set<std::u16string>(names.begin(), names.end()), ElementsAre(u"Alpha", u"beta"));
    ASSERT_NE(names.find(u"ALPHA"), nullptr);
    EXPECT_EQ(*names.find(u"ALPHA"), u"Alpha");

    EXPECT_THAT(routines.EnumRegistryKeys(kHkeyCurrentUser, u"Software\\vexFirmwarePluginMissing"), IsEmpty());
    EXPECT_EQ(routines.EnumRegistryKeys(static_cast<std::int32_t>(key.get()), u"").size(), 2U) << "the root itself";
    EXPECT_THAT(observed.open_keys, IsEmpty());
    // Every failing step yields the empty name, and a collection takes a key once.
    EXPECT_EQ(error_of([&] { routines.EnumRegistryKeys(0, u""); }), kDuplicateKey);
    EXPECT_THAT(routines.EnumRegistryValues(0, u""), IsEmpty()) << "values do stop at a failure";
}

// ---- Other computers

TEST_F(RegistryRoutinesTest, WhatIsUnreachableOrMissingOnAComputer) {
    const auto read = [this](const char16_t* computer, const char16_t* path) {
        return routines.ReadRemoteRegistryValue(computer, kHkeyCurrentUser, u"missing", path);
    };
    const auto write = [this](const char16_t* computer, std::uint32_t type, const char16_t* path) {
        return routines.WriteRemoteRegistryValue(computer, kHkeyCurrentUser, u"v", u"text", type, path);
    };
    constexpr char16_t kMissing[] = u"Software\\vexFirmwarePluginMissing";
    EXPECT_EQ(read(u"\\\\nowhere", kWideTestPath), AutomationValue(u"Error!"));
    EXPECT_EQ(error_of([&] { write(u"\\\\nowhere", kRegSz, kWideTestPath); }), kTypeMismatch);
    EXPECT_TRUE(read(kComputer, kWideTestPath).is_empty());
    EXPECT_TRUE(read(kComputer, kMissing).is_empty());
    EXPECT_FALSE(write(kComputer, kRegSz, kMissing));
    EXPECT_TRUE(write(kComputer, 5, kMissing)) << "nothing to write succeeds also where there is no key";
}

TEST_F(RegistryRoutinesTest, AnOmittedRemotePathIsTheRootAndConnectionsAreLeftOpen) {
    key.set_text("v", "in the working path's key");
    EXPECT_TRUE(routines.ReadRemoteRegistryValue(kComputer, kHkeyCurrentUser, u"v").is_empty());
    EXPECT_EQ(observed.last_path, "");
    EXPECT_EQ(observed.last_access, kKeyAllAccess);
    routines.WriteRemoteRegistryValue(kComputer, kHkeyCurrentUser, u"vexFirmwarePluginTests", u"x", 5);
    EXPECT_EQ(observed.last_path, "");
    observed.close_all();
    routines.ReadRemoteRegistryValue(kComputer, kHkeyCurrentUser, u"v", kWideTestPath);
    EXPECT_EQ(observed.open_keys.size(), 1U) << "the connection, but not its key";
    routines.WriteRemoteRegistryValue(kComputer, kHkeyCurrentUser, u"v", u"text", kRegSz, kWideTestPath);
    // Wine connects to its own computer by the predefined key, which is one and the same.
    EXPECT_EQ(observed.open_keys.size(), runs_on_wine() ? 1U : 2U);
}

TEST(RegistryRoutines, TrimNullCutsInPlace) {
    std::u16string text = u"before\0after\0"s;
    EXPECT_EQ(RegistryRoutines::TrimNull(text), u"before");
    EXPECT_EQ(text, u"before");
}

// ---- Reading one value

struct ReadCase {
    const char* what;
    std::uint32_t type;
    Bytes data;
    AutomationValue expected;
    /// Where the read of another computer differs.
    std::optional<AutomationValue> remote = std::nullopt;
};

const AutomationValue kDefault(u"the default");
constexpr std::size_t kSizes[] = {1, 2, 3, 1023, 1024, 1025, 4097};

Bytes letters(std::size_t count) {
    Bytes data(count);
    for (std::size_t i = 0; i < count; ++i) data[i] = static_cast<std::uint8_t>('a' + i % 26);
    return data;
}

std::u16string wide_letters(std::size_t count) {
    const Bytes data = letters(count);
    return {data.begin(), data.end()};
}

std::vector<ReadCase> read_cases() {
    std::vector<ReadCase> cases = {
        {"no text at all", kRegSz, {}, kDefault},
        {"empty text", kRegSz, {0}, u""},
        {"text", kRegSz, bytes_of("abc\0"sv), u"abc"},
        {"text without its null loses its end", kRegSz, bytes_of("abc"), u"ab"},
        {"text with a null within", kRegSz, bytes_of("a\0b\0"sv), u"a\0b"s},
        {"no expandable text at all", kRegExpandSz, {}, kDefault},
        {"empty expandable text", kRegExpandSz, {0}, u"\0"s, u""},
        {"text that shrinks ends in a null", kRegExpandSz, bytes_of("<%VEX_SHORT%>\0"sv), u"<s>\0"s},
        // Also one that stays as long as it is does not fit: its null has no room.
        {"text that grows", kRegExpandSz, bytes_of("%VEX_LONGER%\0"sv), u"%VEX_LONGER%"},
        {"text that stays", kRegExpandSz, bytes_of("no variable\0"sv), u"no variable"},
        {"text whose null just fits", kRegExpandSz, bytes_of("%VEX_JUST%\0"sv), u"123456789\0"s},
        {"number", kRegDword, {0x39, 0x30, 0, 0}, 12345},
        {"number with all bits", kRegDword, {0xFF, 0xFF, 0xFF, 0xFF}, -1},
        {"short number", kRegDword, {0x39, 0x30}, 12345},
        {"long number", kRegDword, {1, 0, 0, 0, 9, 9}, 1},
        {"no number at all", kRegDword, {}, 0},
        {"list", kRegMultiSz, bytes_of("one\0two\0\0"sv), u"one\0two"s},
        {"list with one null at its end", kRegMultiSz, bytes_of("one\0two\0"sv), u"one\0tw"s},
        {"empty list", kRegMultiSz, {0, 0}, kDefault},
        {"list that begins with an empty string", kRegMultiSz, bytes_of("\0two\0\0"sv), kDefault},
        {"no type", kRegNone, {1, 2}, kDefault},
        {"type 5", 5, {1, 2, 3, 4}, kDefault},
    };
    for (const std::size_t size : kSizes) {
        cases.push_back({"bytes", kRegBinary, letters(size), AutomationValue(letters(size))});
        cases.push_back({"long text", kRegSz, letters(size), AutomationValue(wide_letters(size - 1))});
        if (size > 2)
            cases.push_back({"long list", kRegMultiSz, letters(size), AutomationValue(wide_letters(size - 2))});
    }
    return cases;
}

TEST_F(RegistryRoutinesTest, ReadingConvertsByTypeAndSize) {
    for (const ReadCase& each : read_cases()) {
        SCOPED_TRACE(each.what + " of "s + std::to_string(each.data.size()) + " bytes");
        key.set("v", each.type, each.data);
        EXPECT_EQ(routines.GetRegistryValue(u"v", kDefault), each.expected);
        if (each.expected == kDefault) {
            EXPECT_TRUE(routines.GetRegistryValue(u"v").is_empty()) << "an omitted default is empty";
        }

        const AutomationValue remote =
            each.expected == kDefault ? AutomationValue() : each.remote.value_or(each.expected);
        EXPECT_EQ(routines.ReadRemoteRegistryValue(kComputer, kHkeyCurrentUser, u"v", kWideTestPath), remote);
    }
}

TEST_F(RegistryRoutinesTest, ReadingRaisesWhatCannotBeCutAndAnswersTheDefaultForWhatIsMissing) {
    key.set("bytes", kRegBinary, {});
    EXPECT_EQ(error_of([&] { routines.GetRegistryValue(u"bytes"); }), kSubscriptOutOfRange);
    for (const Bytes& data : {Bytes{}, Bytes{0}}) {
        key.set("list", kRegMultiSz, data);
        EXPECT_EQ(error_of([&] { routines.GetRegistryValue(u"list"); }), kInvalidProcedureCall);
    }
    EXPECT_THAT(observed.open_keys, IsEmpty()) << "also then the key is closed";
    EXPECT_EQ(routines.GetRegistryValue(u"missing", kDefault), kDefault);
    EXPECT_TRUE(routines.GetRegistryValue(u"missing").is_empty());
    routines.set_Subkey(u"Missing");
    EXPECT_EQ(routines.GetRegistryValue(u"missing", kDefault), kDefault);
    routines.set_hKey(0);
    EXPECT_EQ(routines.GetRegistryValue(u"missing", kDefault), kDefault);
}

// ---- Writing one value

struct WriteCase {
    const char* what;
    std::uint32_t type;
    AutomationValue value;
    Bytes expected;
};

const WriteCase kWriteCases[] = {
    {"text", kRegSz, u"abc", bytes_of("abc\0"sv)},
    {"empty text", kRegSz, u"", {0}},
    {"nothing as text", kRegSz, {}, {0}},
    {"number as text", kRegSz, -12, bytes_of("-12\0"sv)},
    {"text beyond the code page", kRegSz, u"\x4E2D", bytes_of("?\0"sv)},
    {"expandable text", kRegExpandSz, u"%VEX_SHORT%", bytes_of("%VEX_SHORT%\0"sv)},
    {"list with one terminating null", kRegMultiSz, u"one\0two"s, bytes_of("one\0two\0"sv)},
    {"bytes", kRegBinary, Bytes{0, 1, 255}, {0, 1, 255}},
    {"number", kRegDword, 0x01020304, {4, 3, 2, 1}},
    {"negative number", kRegDword, -2, {0xFE, 0xFF, 0xFF, 0xFF}},
    {"text as number", kRegDword, u" 258.0 ", {2, 1, 0, 0}},
    {"nothing as number", kRegDword, {}, {0, 0, 0, 0}},
};

TEST_F(RegistryRoutinesTest, WritingConvertsByType) {
    for (const WriteCase& each : kWriteCases) {
        SCOPED_TRACE(each.what);
        EXPECT_TRUE(routines.SetRegistryValue(u"v", each.value, each.type));
        EXPECT_EQ(observed.last_access, kKeyWrite);
        EXPECT_EQ(key.get("v"), std::pair(each.type, each.expected));

        EXPECT_TRUE(routines.WriteRemoteRegistryValue(kComputer, kHkeyCurrentUser, u"far", each.value, each.type,
                                                      kWideTestPath));
        EXPECT_EQ(key.get("far"), std::pair(each.type, each.expected));
    }
}

TEST_F(RegistryRoutinesTest, UnknownTypesWriteNothingAndSucceedWhereThereIsAKey) {
    for (const std::uint32_t type : {0U, 5U, 99U}) {
        EXPECT_TRUE(routines.SetRegistryValue(u"v", u"text", type));
        EXPECT_TRUE(routines.WriteRemoteRegistryValue(kComputer, kHkeyCurrentUser, u"v", u"text", type, kWideTestPath));
    }
    EXPECT_EQ(observed.writes, 0);
    EXPECT_EQ(key.get("v").first, ~0U);
    routines.set_Subkey(u"Missing");
    EXPECT_FALSE(routines.SetRegistryValue(u"v", u"text", 5));
    EXPECT_FALSE(routines.SetRegistryValue(u"v", u"text", kRegSz));
    EXPECT_THAT(key.subkeys(), IsEmpty()) << "no key is created";
}

TEST_F(RegistryRoutinesTest, WritingRaisesWhatCannotBeConverted) {
    const std::tuple<std::uint32_t, AutomationValue, int> cases[] = {
        {kRegBinary, u"text", kTypeMismatch},        {kRegSz, Bytes{1}, kTypeMismatch},
        {kRegDword, u"no number", kTypeMismatch},    {kRegDword, u"2147483648", kOverflow},
        {kRegBinary, Bytes{}, kSubscriptOutOfRange},
    };
    for (const auto& [type, value, error] : cases) {
        EXPECT_EQ(error_of([&] { routines.SetRegistryValue(u"v", value, type); }), error);
    }
    EXPECT_EQ(key.get("v").first, ~0U);
    EXPECT_THAT(observed.open_keys, IsEmpty());
}

// ---- Enumerating values

struct EnumeratedValue {
    std::uint32_t type;
    Bytes data;
    AutomationValue expected;
};

/// Names that come in this order on systems that keep the order and on those that sort.
std::string name_of(std::size_t index) { return {static_cast<char>('a' + index)}; }

const std::vector<EnumeratedValue> kEnumerations[] = {
    {
        // Each binary value begins with what the text or binary value before left, leading blanks aside.
        {kRegSz, bytes_of("abc\0"sv), u"abc"},
        {kRegBinary, {0x01, 0x0A, 0x1F}, u"abc 01 A 1F"},
        {kRegDword, {7, 0, 0, 0}, 7},
        {kRegBinary, {0x00, 0x09, 0x0F, 0x10, 0x99, 0xFF}, u"abc 01 A 1F 00 09 F 10 99 FF"},
        {kRegSz, {0}, u""},
        {kRegBinary, {0x42}, u"42"},
        {kRegBinary, {0x43}, u"42 43"},
        {kRegSz, {}, u""},
        {kRegBinary, {0x0B}, u"B"},
        {kRegMultiSz, bytes_of("one\0two\0\0"sv), u"one,two"},
        {kRegBinary, {0xAB}, u"one,two AB"},
        {kRegSz, bytes_of("  blanks\0"sv), u"  blanks"},
        {kRegBinary, {0xCD}, u"blanks CD"},
        {kRegExpandSz, bytes_of("%VEX_SHORT%\0"sv), u"s"},
        {kRegBinary, {0x77}, u"s 77"},
    },
    {
        // A type without a conversion shows the data of the value before.
        {5, {1, 2, 3, 4}, {}},
        {kRegDword, {9, 0, 0, 0}, 9},
        {kRegNone, {}, 9},
        {kRegSz, bytes_of("text\0"sv), u"text"},
        {11, {1, 2, 3, 4, 5, 6, 7, 8}, u"text"},
    },
    {
        {kRegExpandSz, {}, u""},
        {kRegExpandSz, {0}, u""},
        {kRegMultiSz, {0, 0}, u""},
        {kRegMultiSz, bytes_of("\0b\0\0"sv), u",b"},
        {kRegSz, bytes_of("a\0b\0"sv), u"a\0b"s},
        {kRegDword, {1}, 1},
        {kRegSz, letters(4096), wide_letters(4095)},
        {kRegSz, letters(4097), wide_letters(4096)},
    },
};

TEST_F(RegistryRoutinesTest, EnumRegistryValuesCarriesOverFromValueToValue) {
    for (const auto& enumeration : kEnumerations) {
        const Key sub = Key::created(key.get(), "Values");
        for (std::size_t i = 0; i < enumeration.size(); ++i) {
            sub.set(name_of(i).c_str(), enumeration[i].type, enumeration[i].data);
        }
        const auto values = routines.EnumRegistryValues(kHkeyCurrentUser, kWideTestPath + u"\\Values"s);
        ASSERT_EQ(values.size(), enumeration.size());
        for (std::size_t i = 0; i < enumeration.size(); ++i) {
            SCOPED_TRACE("value " + name_of(i));
            EXPECT_EQ(values[i].first, platform::from_ansi(name_of(i)));
            EXPECT_EQ(values[i].second, enumeration[i].expected);
        }
        EXPECT_EQ(values.find(u"A"), &values[0]);
        side_registry().delete_key(key.get(), "Values");
    }
    EXPECT_THAT(observed.open_keys, IsEmpty());
}

TEST_F(RegistryRoutinesTest, EnumRegistryValuesNeedsAKeyAndRaisesWhatCannotBeCut) {
    const auto enumerate = [this] { return routines.EnumRegistryValues(kHkeyCurrentUser, kWideTestPath); };
    EXPECT_THAT(routines.EnumRegistryValues(kHkeyCurrentUser, u"Software\\vexFirmwarePluginMissing"), IsEmpty());
    key.set_text("", "default");
    const auto values = routines.EnumRegistryValues(static_cast<std::int32_t>(key.get()), u"");
    ASSERT_EQ(values.size(), 1U);
    EXPECT_EQ(values[0], RegistryRoutines::NamedValue(u"", u"default"));
    key.set("v", kRegBinary, {});
    EXPECT_EQ(error_of(enumerate), kSubscriptOutOfRange);
    key.set("v", kRegMultiSz, {0});
    EXPECT_EQ(error_of(enumerate), kInvalidProcedureCall);
    EXPECT_THAT(observed.open_keys, IsEmpty());
}

}  // namespace
}  // namespace vex::test
