// The registry access class on the side's registry, with an eye on what it asks for.
#include <gmock/gmock.h>

#include "platform/system.h"
#include "support/registry_routines.h"
#include "tests/registry/observed_registry.h"
#include "tests/registry/test_key.h"
#include "tests/shared/error_of.h"

namespace vex::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Pointee;

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
        set_environment("VEX_FULL", "1234567890");
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
    EXPECT_THAT(observed.stray_closes, IsEmpty());
    EXPECT_EQ(routines.DeleteKey(u"Upper\\Lower"), 0);
    EXPECT_THAT(observed.stray_closes, ElementsAre(0)) << "the null handle that is closed after a success";
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
    EXPECT_EQ(names.size(), 2U);
    EXPECT_THAT(names.find(u"ALPHA"), Pointee(std::u16string(u"Alpha")));

    EXPECT_THAT(routines.EnumRegistryKeys(kHkeyCurrentUser, u"Software\\vexFirmwarePluginMissing"), IsEmpty());
    EXPECT_EQ(routines.EnumRegistryKeys(static_cast<std::int32_t>(key.get()), u"").size(), 2U) << "the root itself";
    EXPECT_THAT(observed.open_keys, IsEmpty());
    EXPECT_THAT(observed.stray_closes, IsEmpty());
    // Every failing step yields the empty name, and a collection takes a key once.
    EXPECT_EQ(error_of([&] { routines.EnumRegistryKeys(0, u""); }), kDuplicateKey);
    EXPECT_THAT(routines.EnumRegistryValues(0, u""), IsEmpty()) << "values do stop at a failure";
}

// ---- Other computers

TEST_F(RegistryRoutinesTest, AnOmittedRemotePathIsTheRootAndConnectionsAreLeftOpen) {
    const auto read = [this](const char16_t* computer, const std::u16string& path) {
        return routines.ReadRemoteRegistryValue(computer, kHkeyCurrentUser, u"v", path);
    };
    const auto write = [this](const char16_t* computer, std::uint32_t type, const std::u16string& path) {
        return routines.WriteRemoteRegistryValue(computer, kHkeyCurrentUser, u"v", u"text", type, path);
    };
    constexpr char16_t kMissing[] = u"Software\\vexFirmwarePluginMissing";
    EXPECT_EQ(read(u"\\\\nowhere", kWideTestPath), AutomationValue(u"Error!"));
    EXPECT_EQ(error_of([&] { write(u"\\\\nowhere", kRegSz, kWideTestPath); }), kTypeMismatch);
    EXPECT_TRUE(read(kComputer, kMissing).is_empty());
    EXPECT_FALSE(write(kComputer, kRegSz, kMissing));
    EXPECT_TRUE(write(kComputer, 5, kMissing)) << "nothing to write succeeds also where there is no key";

    key.set_text("v", "in the working path's key");
    EXPECT_TRUE(routines.ReadRemoteRegistryValue(kComputer, kHkeyCurrentUser, u"v").is_empty());
    EXPECT_EQ(observed.last_path, "");
    EXPECT_EQ(observed.last_access, kKeyAllAccess);
    routines.WriteRemoteRegistryValue(kComputer, kHkeyCurrentUser, u"vexFirmwarePluginTests", u"x", 5);
    EXPECT_EQ(observed.last_path, "");

    observed.close_all();
    EXPECT_TRUE(write(kComputer, kRegSz, kWideTestPath));
    EXPECT_EQ(observed.open_keys.size(), 1U) << "the connection, but not its key";
    EXPECT_EQ(read(kComputer, kWideTestPath), AutomationValue(u"text"));
    // Wine connects to its own computer by the predefined key, which is one and the same.
    EXPECT_EQ(observed.open_keys.size(), runs_on_wine() ? 1U : 2U);
}

TEST(RegistryRoutines, TrimNullCutsInPlace) {
    std::u16string text = u"before\0after\0"s;
    EXPECT_EQ(RegistryRoutines::TrimNull(text), u"before");
    EXPECT_EQ(text, u"before");
}

// ---- Reading one value

/// A value in the registry and what stands for it outside.
struct Case {
    std::uint32_t type;
    Bytes data;
    AutomationValue value;
};

const AutomationValue kDefault(u"the default");

TEST_F(RegistryRoutinesTest, ReadingConvertsByTypeAndSize) {
    std::vector<Case> cases = {
        {kRegSz, {}, kDefault},
        {kRegSz, {0}, u""},
        {kRegSz, bytes_of("a\0b\0"sv), u"a\0b"s},
        {kRegExpandSz, {}, kDefault},
        {kRegExpandSz, {'x'}, u"x"},
        // What shrinks ends in a null. What stays as long as it is does not fit: its null has no room.
        {kRegExpandSz, bytes_of("<%VEX_SHORT%>\0"sv), u"<s>\0"s},
        {kRegExpandSz, bytes_of("%VEX_JUST%\0"sv), u"123456789\0"s},
        {kRegExpandSz, bytes_of("%VEX_FULL%\0"sv), u"%VEX_FULL%"},
        {kRegDword, {0xFE, 0xFF, 0xFF, 0xFF, 9, 9}, -2},
        {kRegDword, {0x39, 0x30}, 12345},
        {kRegMultiSz, bytes_of("one\0two\0\0"sv), u"one\0two"s},
        {kRegMultiSz, {0, 0}, kDefault},
        {kRegMultiSz, bytes_of("\0two\0\0"sv), kDefault},
        {5, {1, 2, 3, 4}, kDefault},
    };
    for (const std::size_t size : {3U, 1024U, 1025U, 4097U}) {
        const Bytes data(size, 'x');
        cases.push_back({kRegBinary, data, data});
        // The last byte of a text counts as its null, and the last two of a list.
        cases.push_back({kRegSz, data, std::u16string(size - 1, u'x')});
        cases.push_back({kRegMultiSz, data, std::u16string(size - 2, u'x')});
    }
    for (const auto& [type, data, value] : cases) {
        key.set("v", type, data);
        EXPECT_EQ(routines.GetRegistryValue(u"v", kDefault), value) << "type " << type << ", bytes " << data.size();
    }
    key.set("v", kRegExpandSz, {0});
    EXPECT_EQ(routines.GetRegistryValue(u"v"), AutomationValue(u"\0"s));
    EXPECT_EQ(routines.ReadRemoteRegistryValue(kComputer, kHkeyCurrentUser, u"v", kWideTestPath), AutomationValue(u""));
}

TEST_F(RegistryRoutinesTest, ReadingRaisesWhatCannotBeCutAndAnswersTheDefaultForWhatIsMissing) {
    key.set("bytes", kRegBinary, {});
    EXPECT_EQ(error_of([&] { routines.GetRegistryValue(u"bytes"); }), kSubscriptOutOfRange);
    key.set("list", kRegMultiSz, {0});
    EXPECT_EQ(error_of([&] { routines.GetRegistryValue(u"list"); }), kInvalidProcedureCall);
    EXPECT_THAT(observed.open_keys, IsEmpty()) << "also then the key is closed";
    EXPECT_EQ(routines.GetRegistryValue(u"missing", kDefault), kDefault);
    EXPECT_TRUE(routines.GetRegistryValue(u"missing").is_empty());
    routines.set_Subkey(u"Missing");
    EXPECT_EQ(routines.GetRegistryValue(u"missing", kDefault), kDefault);
}

// ---- Writing one value

TEST_F(RegistryRoutinesTest, WritingConvertsByType) {
    const Case cases[] = {
        {kRegSz, bytes_of("-12\0"sv), -12},
        {kRegSz, bytes_of("?\0"sv), u"\x4E2D"},
        {kRegExpandSz, bytes_of("%VEX_SHORT%\0"sv), u"%VEX_SHORT%"},
        // With one null at its end.
        {kRegMultiSz, bytes_of("one\0two\0"sv), u"one\0two"s},
        {kRegBinary, {0, 1, 255}, Bytes{0, 1, 255}},
        {kRegDword, {0xFC, 0xFC, 0xFD, 0xFE}, -0x01020304},
        {kRegDword, {2, 1, 0, 0}, u" 258.0 "},
    };
    for (const auto& [type, data, value] : cases) {
        EXPECT_TRUE(routines.SetRegistryValue(u"v", value, type));
        EXPECT_EQ(observed.last_access, kKeyWrite);
        EXPECT_EQ(key.get("v"), std::pair(type, data));
    }
}

TEST_F(RegistryRoutinesTest, WritingRaisesWhatCannotBeConvertedAndIgnoresUnknownTypes) {
    const std::tuple<std::uint32_t, AutomationValue, int> cases[] = {
        {kRegBinary, u"text", kTypeMismatch},
        {kRegBinary, Bytes{}, kSubscriptOutOfRange},
        {kRegSz, Bytes{1}, kTypeMismatch},
        {kRegDword, Bytes{1}, kTypeMismatch},
    };
    for (const auto& [type, value, error] : cases) {
        EXPECT_EQ(error_of([&] { routines.SetRegistryValue(u"v", value, type); }), error);
    }
    EXPECT_THAT(observed.open_keys, IsEmpty());
    EXPECT_TRUE(routines.SetRegistryValue(u"v", u"text", 5));
    routines.set_Subkey(u"Missing");
    EXPECT_FALSE(routines.SetRegistryValue(u"v", u"text", 5)) << "there is no key";
    EXPECT_EQ(observed.writes, 0);
    EXPECT_THAT(key.subkeys(), IsEmpty()) << "no key is created";
}

// ---- Enumerating values

TEST_F(RegistryRoutinesTest, EnumRegistryValuesCarriesOverFromValueToValue) {
    const Case cases[] = {
        // A type without a conversion shows the data of the value before.
        {5, {1, 2, 3, 4}, {}},
        // Each binary value begins with what the text or binary value before left, leading blanks aside.
        {kRegSz, bytes_of("  a\0b\0"sv), u"  a\0b"s},
        {kRegBinary, {0x00, 0x09, 0x0A, 0x0F, 0x10, 0xFF}, u"a\0b 00 09 A F 10 FF"s},
        {kRegDword, {7}, 7},
        {11, {1, 2, 3, 4, 5, 6, 7, 8}, 7},
        {kRegBinary, {0x42}, u"a\0b 00 09 A F 10 FF 42"s},
        {kRegSz, {}, u""},
        {kRegBinary, {0x43}, u"43"},
        {kRegMultiSz, bytes_of("\0two\0\0"sv), u",two"},
        {kRegBinary, {0xAB}, u",two AB"},
        {kRegExpandSz, bytes_of("%VEX_FULL%\0"sv), u"%VEX_FULL%"},
        {kRegExpandSz, bytes_of("%VEX_SHORT%\0"sv), u"s"},
        {kRegBinary, {0x77}, u"s 77"},
        {kRegExpandSz, {}, u""},
        {kRegSz, {'x'}, u""},
        {kRegSz, Bytes(4096, 'x'), std::u16string(4095, u'x')},
        {kRegSz, Bytes(4098, 'x'), std::u16string(4097, u'x')},
    };
    // Names that come in this order on systems that keep the order and on those that sort.
    const auto name_of = [](std::size_t index) { return std::string(1, static_cast<char>('a' + index)); };
    for (std::size_t i = 0; i < std::size(cases); ++i) key.set(name_of(i).c_str(), cases[i].type, cases[i].data);
    const auto values = routines.EnumRegistryValues(kHkeyCurrentUser, kWideTestPath);
    ASSERT_EQ(values.size(), std::size(cases));
    for (std::size_t i = 0; i < std::size(cases); ++i) {
        EXPECT_EQ(values[i], RegistryRoutines::NamedValue(from_ansi(name_of(i)), cases[i].value));
    }
    EXPECT_EQ(values.find(u"A"), &values[0]);
    EXPECT_THAT(observed.open_keys, IsEmpty());
}

TEST_F(RegistryRoutinesTest, EnumRegistryValuesNeedsAKeyAndEndsAtANameOf260Characters) {
    const auto enumerate = [this] { return routines.EnumRegistryValues(kHkeyCurrentUser, kWideTestPath); };
    EXPECT_THAT(routines.EnumRegistryValues(kHkeyCurrentUser, u"Software\\vexFirmwarePluginMissing"), IsEmpty());
    key.set("", kRegBinary, {});
    EXPECT_EQ(error_of(enumerate), kSubscriptOutOfRange);
    EXPECT_THAT(observed.open_keys, IsEmpty());
    key.set_text("", "default");
    const auto values = routines.EnumRegistryValues(static_cast<std::int32_t>(key.get()), u"");
    ASSERT_EQ(values.size(), 1U);
    EXPECT_EQ(values[0], RegistryRoutines::NamedValue(u"", u"default"));
    for (const std::size_t length : {259U, 260U}) key.set(std::string(length, 'n').c_str(), kRegSz, {});
    EXPECT_EQ(enumerate().size(), 2U);
    EXPECT_NE(enumerate().find(std::u16string(259, u'n')), nullptr);
}

}  // namespace
}  // namespace vex::test
