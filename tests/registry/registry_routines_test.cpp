// The registry access class: keys and other computers.
#include <gmock/gmock.h>

#include "tests/registry/routines_fixture.h"
#include "tests/shared/error_of.h"

namespace vex::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

using namespace std::string_literals;

using RegistryRoutinesContract = RegistryRoutinesFixture;

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
    const SecurityAttributes& attributes = observed.last_attributes;
    EXPECT_TRUE(attributes.length == 0 && attributes.descriptor == nullptr && attributes.inherit_handle == 0);
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
    name.emplace(7);
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
    EXPECT_EQ(error_of([&] { routines.EnumRegistryKeys(0, u""); }), kDuplicateKey);
    EXPECT_THAT(routines.EnumRegistryValues(0, u""), IsEmpty()) << "values do stop at a failure";
}

// ---- Other computers

TEST_F(RegistryRoutinesContract, WhatIsUnreachableOrMissingOnAComputer) {
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

TEST(RegistryRoutines, TrimNullCutsInPlace) {
    std::u16string text = u"before\0after\0"s;
    EXPECT_EQ(RegistryRoutines::TrimNull(text), u"before");
    EXPECT_EQ(text, u"before");
}

}  // namespace
}  // namespace vex::test
