// The registration: what it writes, that hosts find the classes by it, and that it goes without a trace.
#include <gtest/gtest.h>

#include <array>
#include <map>
#include <string>

#include "core/unicode.h"
#include "tests/plugin/plugin_fixture.h"

namespace vex::plugin_test {
namespace {

using platform::kSuccess;

constexpr char kCatalogueKey[] = "CLSID\\{09D14609-0E72-4D6E-A3B6-D8409C897702}";
constexpr char kEntryKey[] = "CLSID\\{4802794B-38DD-46AD-A290-F27825C71CEA}";
constexpr char kLibraryKey[] = "TypeLib\\{2D044802-8D89-4ECD-8C1F-F3529143EDDE}";
constexpr char kInterfaceKey[] = "Interface\\{28D15CCC-A58D-44F0-8AAF-3EECB0736FA9}";
constexpr char kLibraryId[] = "{2D044802-8D89-4ECD-8C1F-F3529143EDDE}";

const platform::RegistryKey kClasses = platform::registry_key(platform::kHkeyClassesRoot);

/// Every value at and below a key: its path and name to its text.
void read_all(const std::string& path, std::map<std::string, std::string>& values) {
    platform::RegistryKey key = 0;
    if (registry().open_key(kClasses, path.c_str(), platform::kKeyRead, key) != kSuccess) return;
    values[path] = "key";
    std::array<char, 260> name{};
    for (std::uint32_t index = 0;; ++index) {
        auto length = static_cast<std::uint32_t>(name.size());
        std::array<char, 1024> data{};
        auto size = static_cast<std::uint32_t>(data.size());
        std::uint32_t type = 0;
        if (registry().enum_value(key, index, name.data(), length, type, reinterpret_cast<std::uint8_t*>(data.data()),
                                  size) != kSuccess) {
            break;
        }
        values[path + "\\@" + name.data()] = data.data();
    }
    for (std::uint32_t index = 0;; ++index) {
        auto length = static_cast<std::uint32_t>(name.size());
        if (registry().enum_key(key, index, name.data(), length) != kSuccess) break;
        read_all(path + "\\" + name.data(), values);
    }
    registry().close_key(key);
}

/// All that concerns the plug-in.
std::map<std::string, std::string> snapshot() {
    std::map<std::string, std::string> values;
    for (const char* path :
         {kCatalogueKey, kEntryKey, kLibraryKey, kInterfaceKey, "Interface\\{4EA9496B-9BA4-4BD0-A367-C0E0A837B2E4}",
          "vexFirmWarePlugin.PluginData", "vexFirmWarePlugin.vexFirmWareUtil"}) {
        read_all(path, values);
    }
    return values;
}

void write(const std::string& path, const std::string& name, const std::string& text) {
    platform::RegistryKey key = 0;
    ASSERT_EQ(registry().create_key(kClasses, path.c_str(), "", platform::kKeyAllAccess, {}, key), kSuccess);
    EXPECT_EQ(
        registry().set_value(key, name.c_str(), platform::kRegSz, reinterpret_cast<const std::uint8_t*>(text.c_str()),
                             static_cast<std::uint32_t>(text.size() + 1)),
        kSuccess);
    registry().close_key(key);
}

void remove_value(const std::string& path, const std::string& name) {
    platform::RegistryKey key = 0;
    ASSERT_EQ(registry().open_key(kClasses, path.c_str(), platform::kKeyAllAccess, key), kSuccess);
    EXPECT_EQ(registry().delete_value(key, name.c_str()), kSuccess);
    registry().close_key(key);
}

class Registration : public PluginTest {
protected:
    void SetUp() override {
        PluginTest::SetUp();
        unregister_server();
        ASSERT_TRUE(snapshot().empty());
    }
    void TearDown() override {
        unregister_server();
        PluginTest::TearDown();
    }

    static HRESULT create(const char16_t* programmatic_id) {
        CLSID clsid{};
        HRESULT result = CLSIDFromProgID(com::ole_text(programmatic_id), &clsid);
        if (FAILED(result)) return result;
        com::ComPtr<IDispatch> object;
        return CoCreateInstance(clsid, nullptr, CLSCTX_INPROC_SERVER, IID_IDispatch, object.put_void());
    }
};

TEST_F(Registration, SaysWhatTheLibraryIs) {
    ASSERT_EQ(register_server(), S_OK);
    auto values = snapshot();
    const std::string catalogue = kCatalogueKey;
    const std::string path = values[catalogue + "\\InprocServer32\\@"];
    EXPECT_TRUE(equal_ignoring_case(from_utf8(path.substr(path.find_last_of('\\') + 1)), u"libvexFirmwarePlugin.so") ||
                equal_ignoring_case(from_utf8(path.substr(path.find_last_of('\\') + 1)), u"vexFirmwarePlugin.dll"))
        << path;
    EXPECT_EQ(path.substr(1, 2), ":\\") << "a full path";
    EXPECT_EQ(values[catalogue + "\\InprocServer32\\@ThreadingModel"], "Apartment");
    EXPECT_EQ(values[catalogue + "\\ProgID\\@"], "vexFirmWarePlugin.PluginData");
    EXPECT_EQ(values[catalogue + "\\TypeLib\\@"], kLibraryId);
    EXPECT_EQ(values[catalogue + "\\VERSION\\@"], "1.0");
    EXPECT_EQ(values["vexFirmWarePlugin.vexFirmWareUtil\\CLSID\\@"], std::string(kEntryKey).substr(6));
    const std::string interface_key = kInterfaceKey;
    EXPECT_EQ(values[interface_key + "\\@"], "_PluginData");
    EXPECT_EQ(values[interface_key + "\\ProxyStubClsid32\\@"], "{00020424-0000-0000-C000-000000000046}");
    EXPECT_EQ(values[interface_key + "\\TypeLib\\@"], kLibraryId);
    EXPECT_EQ(values[interface_key + "\\TypeLib\\@Version"], "1.0");
    const std::string library = std::string(kLibraryKey) + "\\1.0";
    EXPECT_EQ(values[library + "\\FLAGS\\@"], "0");
    EXPECT_EQ(values[library + "\\HELPDIR\\@"], path.substr(0, path.find_last_of('\\')));
    const bool is_64_bits = values.contains(library + "\\0\\win64");
    EXPECT_EQ(values[library + (is_64_bits ? "\\0\\win64\\@" : "\\0\\win32\\@")], path);
}

TEST_F(Registration, LeadsHostsToTheClassesInEitherSpelling) {
    EXPECT_TRUE(FAILED(create(u"vexFirmWarePlugin.vexFirmWareUtil")));
    ASSERT_EQ(register_server(), S_OK);
    EXPECT_EQ(create(u"vexFirmWarePlugin.vexFirmWareUtil"), S_OK);
    EXPECT_EQ(create(u"vexFirmwarePlugin.vexFirmwareUtil"), S_OK);
    EXPECT_EQ(create(u"vexFirmWarePlugin.PluginData"), S_OK);
    EXPECT_EQ(unregister_server(), S_OK);
    EXPECT_TRUE(FAILED(create(u"vexFirmWarePlugin.vexFirmWareUtil")));
    EXPECT_TRUE(FAILED(create(u"vexFirmWarePlugin.PluginData")));
}

TEST_F(Registration, TwiceLeavesOneAndGoesWithoutATrace) {
    ASSERT_EQ(register_server(), S_OK);
    const auto once = snapshot();
    ASSERT_EQ(register_server(), S_OK);
    EXPECT_EQ(snapshot(), once);
    EXPECT_EQ(unregister_server(), S_OK);
    EXPECT_TRUE(snapshot().empty());
    EXPECT_EQ(unregister_server(), S_OK) << "there is nothing left to remove";
}

TEST_F(Registration, LeavesWhatOthersWroteAndSaysSo) {
    const std::string settings = std::string(kEntryKey) + "\\Settings";
    ASSERT_EQ(register_server(), S_OK);
    write(settings, "Owner", "someone else");
    EXPECT_EQ(unregister_server(), SELFREG_E_CLASS);
    EXPECT_EQ(snapshot(), (std::map<std::string, std::string>{
                              {kEntryKey, "key"}, {settings, "key"}, {settings + "\\@Owner", "someone else"}}));
    registry().delete_key(kClasses, settings.c_str());
    registry().delete_key(kClasses, kEntryKey);

    ASSERT_EQ(register_server(), S_OK);
    write(kInterfaceKey, "NumMethods", "12");
    EXPECT_EQ(unregister_server(), SELFREG_E_TYPELIB);
    EXPECT_EQ(snapshot().size(), 2U) << "the key and the foreign value";
    remove_value(kInterfaceKey, "NumMethods");
    EXPECT_EQ(unregister_server(), S_OK);
    EXPECT_TRUE(snapshot().empty());
}

TEST_F(Registration, LeavesAProgrammaticIdentifierThatNamesAnotherClass) {
    const std::string identifier = "vexFirmWarePlugin.PluginData";
    for (const std::string& other : {std::string("{11111111-2222-3333-4444-555555555555}"), std::string(2000, 'x')}) {
        ASSERT_EQ(register_server(), S_OK);
        write(identifier + "\\CLSID", "", other);
        EXPECT_EQ(unregister_server(), SELFREG_E_CLASS);
        auto values = snapshot();
        EXPECT_TRUE(values.contains(identifier + "\\CLSID"));
        EXPECT_EQ(values[identifier + "\\@"], identifier);
        EXPECT_FALSE(values.contains(kCatalogueKey));
        registry().delete_key(kClasses, (identifier + "\\CLSID").c_str());
        registry().delete_key(kClasses, identifier.c_str());
    }
    ASSERT_EQ(register_server(), S_OK);
    write(identifier + "\\CLSID", "", "{09d14609-0e72-4d6e-a3b6-d8409c897702}");
    EXPECT_EQ(unregister_server(), S_OK) << "the same class, its digits in lower case";
    EXPECT_TRUE(snapshot().empty());
    ASSERT_EQ(register_server(), S_OK);
    remove_value(identifier + "\\CLSID", "");
    EXPECT_EQ(unregister_server(), S_OK) << "nobody's";
    EXPECT_TRUE(snapshot().empty());
}

TEST_F(Registration, LeavesTheOneOfAnotherCopyThatExists) {
    ASSERT_EQ(register_server(), S_OK);
    const std::string server = std::string(kEntryKey) + "\\InprocServer32";
    const std::string ours = snapshot()[server + "\\@"];
    // Any other file will do for another copy.
    const std::string folder = ours.substr(0, ours.find_last_of('\\') + 1);
    const auto exists = [&folder](const char* file) { return files().ordinary_file_exists(from_utf8(folder + file)); };
    const std::string other = folder + (exists("plugin_test.exe") ? "plugin_test.exe" : "plugin_test");
    ASSERT_TRUE(exists(other.c_str() + folder.size())) << other;
    write(server, "", other);
    const auto registered = snapshot();
    EXPECT_EQ(unregister_server(), SELFREG_E_CLASS);
    EXPECT_EQ(snapshot(), registered);

    std::string upper = ours;
    for (char& letter : upper) letter = static_cast<char>(letter >= 'a' && letter <= 'z' ? letter - 'a' + 'A' : letter);
    for (const std::string& gone : {folder + "moved.dll", upper}) {
        ASSERT_EQ(register_server(), S_OK);
        write(server, "", gone);
        EXPECT_EQ(unregister_server(), S_OK) << gone;
        EXPECT_TRUE(snapshot().empty());
    }
}

}  // namespace
}  // namespace vex::plugin_test
