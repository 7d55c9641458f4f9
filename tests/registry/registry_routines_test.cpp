// The registry access class on the side's registry: what it passes on, and what it makes of the answers.
#include "support/registry_routines.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <functional>
#include <set>

#include "core/runtime_error.h"
#include "tests/registry/forwarding_registry.h"
#include "tests/registry/test_key.h"

namespace vex::test {
namespace {

using namespace platform;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

using namespace std::string_literals;
using namespace std::string_view_literals;

constexpr char16_t kComputer[] = u"\\\\elsewhere";

/// Notes what is asked of the registry, and reaches one more computer: this one, under another name.
class ObservedRegistry final : public ForwardingRegistry {
public:
    using ForwardingRegistry::ForwardingRegistry;

    std::int32_t open_key(RegistryKey parent, const char* path, std::uint32_t access,
                          RegistryKey& key) noexcept override {
        last_path = path;
        last_access = access;
        return opened(ForwardingRegistry::open_key(parent, path, access, key), key);
    }
    std::int32_t create_key(RegistryKey parent, const char* path, const char* class_name, std::uint32_t access,
                            const SecurityAttributes& attributes, RegistryKey& key) noexcept override {
        last_path = path;
        last_access = access;
        last_class = class_name;
        last_attributes = attributes;
        return opened(ForwardingRegistry::create_key(parent, path, class_name, access, attributes, key), key);
    }
    std::int32_t close_key(RegistryKey key) noexcept override {
        if (key == 0) ++null_closes;
        open_keys.erase(key);
        return ForwardingRegistry::close_key(key);
    }
    std::int32_t set_value(RegistryKey key, const char* name, std::uint32_t type, const std::uint8_t* data,
                           std::uint32_t data_size) noexcept override {
        ++writes;
        return ForwardingRegistry::set_value(key, name, type, data, data_size);
    }
    std::int32_t connect_registry(const char* computer, RegistryKey root, RegistryKey& key) noexcept override {
        if (side_code_page().from_ansi(computer) != kComputer) return kBadNetPath;
        return opened(ForwardingRegistry::open_key(root, "", kKeyAllAccess, key), key);
    }

    std::uint32_t expand_environment(const char* source, char* target, std::uint32_t capacity) noexcept override {
        const std::uint32_t length = ForwardingRegistry::expand_environment(source, target, capacity);
        // Systems leave there what they like.
        if (length > capacity) std::fill_n(target, capacity, '#');
        return length;
    }

    std::string last_path;
    std::uint32_t last_access = 0;
    std::string last_class = "none";
    SecurityAttributes last_attributes;
    std::set<RegistryKey> open_keys;
    int null_closes = 0;
    int writes = 0;

private:
    std::int32_t opened(std::int32_t result, const RegistryKey& key) {
        if (result == kSuccess) open_keys.insert(key);
        return result;
    }
};

class RegistryRoutinesContract : public TestKeyFixture {
protected:
    RegistryRoutinesContract() {
        routines.set_hKey(kHkeyCurrentUser);
        routines.set_KeyRoot(kWideTestPath);
        set_environment("VEX_SHORT", "s");
        set_environment("VEX_LONGER", "longer than it");
    }
    ~RegistryRoutinesContract() override {
        for (const RegistryKey leaked : observed.open_keys) side_registry().close_key(leaked);
    }

    void expect_error(ErrorNumber number, const std::function<void()>& action) {
        try {
            action();
            ADD_FAILURE() << "no error was raised";
        } catch (const RuntimeError& error) {
            EXPECT_EQ(error.number(), number);
        }
    }

    ObservedRegistry observed{side_registry()};
    RegistryRoutines routines{observed, side_code_page()};
};

// ---- Properties and paths

TEST_F(RegistryRoutinesContract, PropertiesStartEmptyAndKeepWhatTheyGet) {
    RegistryRoutines fresh(observed, side_code_page());
    EXPECT_EQ(fresh.hKey(), 0);
    EXPECT_EQ(fresh.KeyRoot(), u"");
    EXPECT_EQ(fresh.Subkey(), u"");
    fresh.set_hKey(kHkeyUsers);
    fresh.set_KeyRoot(u"root");
    fresh.set_Subkey(u"sub");
    EXPECT_EQ(fresh.hKey(), kHkeyUsers);
    EXPECT_EQ(fresh.KeyRoot(), u"root");
    EXPECT_EQ(fresh.Subkey(), u"sub");
}

TEST_F(RegistryRoutinesContract, TheWorkingPathAlwaysHasItsBackslash) {
    key.set_text("v", "here");
    EXPECT_EQ(routines.GetRegistryValue(u"v"), AutomationValue(u"here"));
    EXPECT_EQ(observed.last_path, std::string(kTestPath) + "\\");
    EXPECT_EQ(observed.last_access, kKeyRead);

    routines.set_KeyRoot(u"Software");
    routines.set_Subkey(u"vexFirmwarePluginTests");
    EXPECT_EQ(routines.GetRegistryValue(u"v"), AutomationValue(u"here"));
    EXPECT_EQ(observed.last_path, kTestPath);

    routines.set_KeyRoot(u"");
    routines.set_Subkey(u"Missing");
    routines.GetRegistryValue(u"v");
    EXPECT_EQ(observed.last_path, "\\Missing");
}

// ---- Keys

TEST_F(RegistryRoutinesContract, KeyExistsLeavesTheKeyOpen) {
    EXPECT_TRUE(routines.KeyExists());
    EXPECT_EQ(observed.last_access, kKeyRead);
    EXPECT_EQ(observed.open_keys.size(), 1U) << "the handle of the test is kept open";
    routines.set_Subkey(u"Missing");
    EXPECT_FALSE(routines.KeyExists());
}

TEST_F(RegistryRoutinesContract, CreateKeyAnswersZeroAsText) {
    EXPECT_EQ(routines.CreateKey(u"New\\Deeper"), u"0");
    EXPECT_EQ(routines.CreateKey(u"New\\Deeper"), u"0") << "an existing key is opened";
    EXPECT_TRUE(Key::opened(key.get(), "New\\Deeper"));
    EXPECT_EQ(observed.last_path, std::string(kTestPath) + "\\New\\Deeper");
    EXPECT_EQ(observed.last_class, "");
    EXPECT_EQ(observed.last_access, kKeyAllAccess);
    EXPECT_EQ(observed.last_attributes.length, 0U);
    EXPECT_EQ(observed.last_attributes.descriptor, nullptr);
    EXPECT_EQ(observed.last_attributes.inherit_handle, 0);
    EXPECT_THAT(observed.open_keys, IsEmpty());
    EXPECT_EQ(routines.CreateKey(std::u16string(256, u'x')), u"");
}

TEST_F(RegistryRoutinesContract, CreateKeyWithoutANameTakesAndTellsTheSubkey) {
    routines.set_Subkey(u"FromSubkey");
    EXPECT_EQ(routines.CreateKey(), u"0");
    EXPECT_TRUE(Key::opened(key.get(), "FromSubkey"));

    std::optional<AutomationValue> name;
    EXPECT_EQ(routines.CreateKey(name), u"0");
    EXPECT_EQ(name, AutomationValue(u"FromSubkey"));
    name = AutomationValue(7);
    EXPECT_EQ(routines.CreateKey(name), u"0");
    EXPECT_TRUE(Key::opened(key.get(), "7"));
}

TEST_F(RegistryRoutinesContract, DeleteKeyAlwaysAnswersZero) {
    Key::created(key.get(), "Upper\\Lower");
    EXPECT_EQ(routines.DeleteKey(u"Upper"), 0) << "which could not be deleted";
    EXPECT_EQ(routines.DeleteKey(u"Missing"), 0);
    EXPECT_EQ(observed.null_closes, 0);
    EXPECT_TRUE(Key::opened(key.get(), "Upper\\Lower"));
    EXPECT_EQ(routines.DeleteKey(u"Upper\\Lower"), 0);
    EXPECT_EQ(observed.null_closes, 1) << "the null handle that is closed after a success";
    EXPECT_FALSE(Key::opened(key.get(), "Upper\\Lower"));
}

TEST_F(RegistryRoutinesContract, DeleteValueAnswersTheResultCode) {
    key.set_text("v", "1");
    EXPECT_EQ(routines.DeleteValue(u"v"), kSuccess);
    EXPECT_EQ(observed.last_access, kKeyAllAccess);
    EXPECT_EQ(routines.DeleteValue(u"v"), kFileNotFound);
    routines.set_Subkey(u"Missing");
    EXPECT_EQ(routines.DeleteValue(u"v"), kFileNotFound);
    EXPECT_THAT(observed.open_keys, IsEmpty());
}

TEST_F(RegistryRoutinesContract, EnumRegistryKeysCollectsNames) {
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
}

TEST_F(RegistryRoutinesContract, EnumRegistryKeysStopsAtNothingButTheEnd) {
    // Every failing step yields the empty name, and a collection takes a key once.
    expect_error(kDuplicateKey, [&] { routines.EnumRegistryKeys(0, u""); });
    EXPECT_THAT(routines.EnumRegistryValues(0, u""), IsEmpty()) << "values do stop at a failure";
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
        {"empty text", kRegSz, {0}, AutomationValue(u"")},
        {"text", kRegSz, bytes_of("abc\0"sv), AutomationValue(u"abc")},
        {"text without its null loses its end", kRegSz, bytes_of("abc"), AutomationValue(u"ab")},
        {"text with a null within", kRegSz, bytes_of("a\0b\0"sv), AutomationValue(u"a\0b"s)},
        {"no expandable text at all", kRegExpandSz, {}, kDefault},
        {"empty expandable text", kRegExpandSz, {0}, AutomationValue(u"\0"s), AutomationValue(u"")},
        {"text that shrinks ends in a null", kRegExpandSz, bytes_of("<%VEX_SHORT%>\0"sv), AutomationValue(u"<s>\0"s)},
        {"number", kRegDword, {0x39, 0x30, 0, 0}, AutomationValue(12345)},
        {"number with all bits", kRegDword, {0xFF, 0xFF, 0xFF, 0xFF}, AutomationValue(-1)},
        {"short number", kRegDword, {0x39, 0x30}, AutomationValue(12345)},
        {"long number", kRegDword, {1, 0, 0, 0, 9, 9}, AutomationValue(1)},
        {"no number at all", kRegDword, {}, AutomationValue(0)},
        {"list", kRegMultiSz, bytes_of("one\0two\0\0"sv), AutomationValue(u"one\0two"s)},
        {"list with one null at its end", kRegMultiSz, bytes_of("one\0two\0"sv), AutomationValue(u"one\0tw"s)},
        {"empty list", kRegMultiSz, {0, 0}, kDefault},
        {"list that begins with an empty string", kRegMultiSz, bytes_of("\0two\0\0"sv), kDefault},
        {"no type", kRegNone, {1, 2}, kDefault},
        {"type 5", 5, {1, 2, 3, 4}, kDefault},
        {"type 6", 6, {1, 2}, kDefault},
        {"type 11", 11, {1, 2, 3, 4, 5, 6, 7, 8}, kDefault},
    };
    for (const std::size_t size : kSizes) {
        cases.push_back({"bytes", kRegBinary, letters(size), AutomationValue(letters(size))});
        cases.push_back({"long text", kRegSz, letters(size), AutomationValue(wide_letters(size - 1))});
        if (size > 2)
            cases.push_back({"long list", kRegMultiSz, letters(size), AutomationValue(wide_letters(size - 2))});
    }
    return cases;
}

TEST_F(RegistryRoutinesContract, ReadingConvertsByTypeAndSize) {
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

TEST_F(RegistryRoutinesContract, AnExpansionThatGrowsDoesNotFit) {
    // Also a text that stays as long as it is: the null has no room.
    for (const char16_t* text : {u"%VEX_LONGER%", u"no variable"}) {
        routines.SetRegistryValue(u"v", text, kRegExpandSz);
        EXPECT_EQ(routines.GetRegistryValue(u"v"), AutomationValue(text));
    }
}

TEST_F(RegistryRoutinesContract, ReadingRaisesWhatCannotBeCut) {
    key.set("bytes", kRegBinary, {});
    expect_error(kSubscriptOutOfRange, [&] { routines.GetRegistryValue(u"bytes"); });
    for (const Bytes& data : {Bytes{}, Bytes{0}}) {
        key.set("list", kRegMultiSz, data);
        expect_error(kInvalidProcedureCall, [&] { routines.GetRegistryValue(u"list"); });
    }
    EXPECT_THAT(observed.open_keys, IsEmpty()) << "also then the key is closed";
}

TEST_F(RegistryRoutinesContract, WhatIsMissingReadsAsTheDefault) {
    EXPECT_EQ(routines.GetRegistryValue(u"missing", kDefault), kDefault);
    EXPECT_EQ(routines.GetRegistryValue(u"missing", AutomationValue(5)), AutomationValue(5));
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

TEST_F(RegistryRoutinesContract, WritingConvertsByType) {
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

TEST_F(RegistryRoutinesContract, UnknownTypesWriteNothingAndSucceed) {
    for (const std::uint32_t type : {0U, 5U, 6U, 11U, 99U}) {
        EXPECT_TRUE(routines.SetRegistryValue(u"v", u"text", type));
        EXPECT_TRUE(routines.WriteRemoteRegistryValue(kComputer, kHkeyCurrentUser, u"v", u"text", type, kWideTestPath));
    }
    EXPECT_EQ(observed.writes, 0);
    EXPECT_EQ(key.get("v").first, ~0U);
}

TEST_F(RegistryRoutinesContract, WritingRaisesWhatCannotBeConverted) {
    expect_error(kTypeMismatch, [&] { routines.SetRegistryValue(u"v", u"text", kRegBinary); });
    expect_error(kTypeMismatch, [&] { routines.SetRegistryValue(u"v", Bytes{1}, kRegSz); });
    expect_error(kTypeMismatch, [&] { routines.SetRegistryValue(u"v", u"no number", kRegDword); });
    expect_error(kOverflow, [&] { routines.SetRegistryValue(u"v", u"2147483648", kRegDword); });
    expect_error(kSubscriptOutOfRange, [&] { routines.SetRegistryValue(u"v", Bytes{}, kRegBinary); });
    EXPECT_EQ(key.get("v").first, ~0U);
    EXPECT_THAT(observed.open_keys, IsEmpty());
}

TEST_F(RegistryRoutinesContract, WritingCreatesNoKey) {
    routines.set_Subkey(u"Missing");
    EXPECT_FALSE(routines.SetRegistryValue(u"v", u"text", kRegSz));
    EXPECT_FALSE(routines.SetRegistryValue(u"v", u"text", 5)) << "not even when there is nothing to write";
    EXPECT_THAT(key.subkeys(), IsEmpty());
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

TEST_F(RegistryRoutinesContract, EnumRegistryValuesCarriesOverFromValueToValue) {
    for (const auto& enumeration : kEnumerations) {
        const Key sub = Key::created(key.get(), "Values");
        for (std::size_t i = 0; i < enumeration.size(); ++i) {
            sub.set(name_of(i).c_str(), enumeration[i].type, enumeration[i].data);
        }
        const auto values = routines.EnumRegistryValues(kHkeyCurrentUser, kWideTestPath + u"\\Values"s);
        ASSERT_EQ(values.size(), enumeration.size());
        for (std::size_t i = 0; i < enumeration.size(); ++i) {
            SCOPED_TRACE("value " + name_of(i));
            EXPECT_EQ(values[i].first, side_code_page().from_ansi(name_of(i)));
            EXPECT_EQ(values[i].second, enumeration[i].expected);
        }
        EXPECT_EQ(values.find(u"A"), &values[0]);
        side_registry().delete_key(key.get(), "Values");
    }
    EXPECT_THAT(observed.open_keys, IsEmpty());
}

TEST_F(RegistryRoutinesContract, EnumRegistryValuesNeedsAKey) {
    EXPECT_THAT(routines.EnumRegistryValues(kHkeyCurrentUser, u"Software\\vexFirmwarePluginMissing"), IsEmpty());
    key.set_text("", "default");
    const auto values = routines.EnumRegistryValues(static_cast<std::int32_t>(key.get()), u"");
    ASSERT_EQ(values.size(), 1U);
    EXPECT_EQ(values[0], RegistryRoutines::NamedValue(u"", u"default"));
}

TEST_F(RegistryRoutinesContract, EnumRegistryValuesRaisesWhatCannotBeCut) {
    key.set("v", kRegBinary, {});
    expect_error(kSubscriptOutOfRange, [&] { routines.EnumRegistryValues(kHkeyCurrentUser, kWideTestPath); });
    key.set("v", kRegMultiSz, {0});
    expect_error(kInvalidProcedureCall, [&] { routines.EnumRegistryValues(kHkeyCurrentUser, kWideTestPath); });
    EXPECT_THAT(observed.open_keys, IsEmpty());
}

// ---- Other computers

TEST_F(RegistryRoutinesContract, AnUnreachableComputerReadsAsErrorAndRaisesOnWriting) {
    EXPECT_EQ(routines.ReadRemoteRegistryValue(u"\\\\nowhere", kHkeyCurrentUser, u"v", kWideTestPath),
              AutomationValue(u"Error!"));
    expect_error(kTypeMismatch, [&] {
        routines.WriteRemoteRegistryValue(u"\\\\nowhere", kHkeyCurrentUser, u"v", u"text", kRegSz, kWideTestPath);
    });
}

TEST_F(RegistryRoutinesContract, WhatIsMissingOnAComputerReadsAsEmptyAndRefusesWriting) {
    EXPECT_TRUE(routines.ReadRemoteRegistryValue(kComputer, kHkeyCurrentUser, u"missing", kWideTestPath).is_empty());
    const std::u16string missing = u"Software\\vexFirmwarePluginMissing";
    EXPECT_TRUE(routines.ReadRemoteRegistryValue(kComputer, kHkeyCurrentUser, u"v", missing).is_empty());
    EXPECT_FALSE(routines.WriteRemoteRegistryValue(kComputer, kHkeyCurrentUser, u"v", u"text", kRegSz, missing));
    EXPECT_TRUE(routines.WriteRemoteRegistryValue(kComputer, kHkeyCurrentUser, u"v", u"text", 5, missing))
        << "nothing to write succeeds also where there is no key";
}

TEST_F(RegistryRoutinesContract, AnOmittedRemotePathIsTheRootAndNotTheWorkingPath) {
    key.set_text("v", "in the working path's key");
    EXPECT_TRUE(routines.ReadRemoteRegistryValue(kComputer, kHkeyCurrentUser, u"v").is_empty());
    EXPECT_EQ(observed.last_path, "");
    EXPECT_EQ(observed.last_access, kKeyAllAccess);
    routines.WriteRemoteRegistryValue(kComputer, kHkeyCurrentUser, u"vexFirmwarePluginTests", u"x", 5);
    EXPECT_EQ(observed.last_path, "");
}

TEST_F(RegistryRoutinesContract, ConnectionsAreLeftOpenAndTheirKeysClosed) {
    routines.ReadRemoteRegistryValue(kComputer, kHkeyCurrentUser, u"v", kWideTestPath);
    EXPECT_EQ(observed.open_keys.size(), 1U);
    routines.WriteRemoteRegistryValue(kComputer, kHkeyCurrentUser, u"v", u"text", kRegSz, kWideTestPath);
    // Wine connects to its own computer by the predefined key, which is one and the same.
    EXPECT_EQ(observed.open_keys.size(), runs_on_wine() ? 1U : 2U);
}

// ---- The rest

TEST_F(RegistryRoutinesContract, TrimNullCutsInPlace) {
    std::u16string text = u"before\0after\0"s;
    EXPECT_EQ(RegistryRoutines::TrimNull(text), u"before");
    EXPECT_EQ(text, u"before");
    EXPECT_EQ(RegistryRoutines::TrimNull(text), u"before");
    text = u"\0"s;
    EXPECT_EQ(RegistryRoutines::TrimNull(text), u"");
}

}  // namespace
}  // namespace vex::test
