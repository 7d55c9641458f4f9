// The registration: what it writes, that hosts find the classes by it, and that it goes without a trace.
#include <algorithm>
#include <array>
#include <optional>
#include <set>

#include "core/unicode.h"
#include "platform/class_keys.h"
#include "tests/plugin/plugin_fixture.h"
#include "tests/registry/test_key.h"

namespace vex::plugin_test {
namespace {

using platform::write_class_text;
using Lines = std::set<std::string>;

constexpr char kCatalogueKey[] = "CLSID\\{09D14609-0E72-4D6E-A3B6-D8409C897702}";
constexpr char kEntryKey[] = "CLSID\\{4802794B-38DD-46AD-A290-F27825C71CEA}";
constexpr char kLibraryId[] = "{2D044802-8D89-4ECD-8C1F-F3529143EDDE}";
constexpr char kInterfaceKey[] = "Interface\\{28D15CCC-A58D-44F0-8AAF-3EECB0736FA9}";

/// Every key and every value at and below a key, one a line.
void read_all(platform::RegistryKey parent, const std::string& path, const std::string& shown, Lines& lines) {
    const test::Key key = test::Key::opened(parent, path, platform::kKeyRead);
    if (!key) return;
    lines.insert(shown);
    for (std::uint32_t index = 0;; ++index) {
        std::array<char, 260> name{};
        std::array<std::uint8_t, 4096> data{};
        std::uint32_t length = name.size(), size = data.size() - 1, type = 0;
        const auto result =
            test::side_registry().enum_value(key.get(), index, name.data(), length, type, data.data(), size);
        if (result == platform::kNoMoreItems) break;
        lines.insert(shown + " " + name.data() + "=" + (type == platform::kRegSz ? "" : std::to_string(type) + ":") +
                     reinterpret_cast<const char*>(data.data()));
    }
    for (const std::string& name : key.subkeys()) {
        // The same once more, as programs of the other kind see it.
        if (name == "Wow6432Node") continue;
        // Systems differ in how they spell this one.
        const bool is_libraries = equal_ignoring_case(from_utf8(name), u"TypeLib") && shown.empty();
        read_all(key.get(), name, (shown.empty() ? "" : shown + "\\") + (is_libraries ? "TypeLib" : name), lines);
    }
}

/// What one has and the other has not.
Lines difference(const Lines& left, const Lines& right) {
    Lines lines;
    std::ranges::set_symmetric_difference(left, right, std::inserter(lines, lines.end()));
    return lines;
}

using Export = decltype(DllRegisterServer);
HRESULT register_server() { return plugin_function<Export>("DllRegisterServer")(); }
HRESULT unregister_server() { return plugin_function<Export>("DllUnregisterServer")(); }

class Registration : public PluginTest {
protected:
    void SetUp() override {
        PluginTest::SetUp();
        test::side_registry();  // puts it in place
        unregister_server();
        // As every Windows has them.
        for (const char16_t* key : {u"CLSID", u"Interface", u"TypeLib"}) {
            write_class_text(key, u"-", u"");
            platform::remove_class_text(key, u"-");
        }
        before_ = everything();
    }
    void TearDown() override {
        unregister_server();
        PluginTest::TearDown();
    }

    static Lines everything() {
        Lines lines;
        read_all(platform::registry_key(platform::kHkeyClassesRoot), "", "", lines);
        read_all(platform::registry_key(platform::kHkeyCurrentUser), "Software", "HKCU", lines);
        return lines;
    }
    Lines changed() const { return difference(before_, everything()); }

    Lines before_;
};

HRESULT create(const char16_t* programmatic_id) {
    CLSID clsid{};
    const HRESULT result = CLSIDFromProgID(com::ole_text(programmatic_id), &clsid);
    if (FAILED(result)) return result;
    com::ComPtr<IDispatch> object;
    return CoCreateInstance(clsid, nullptr, CLSCTX_INPROC_SERVER, IID_IDispatch, object.put_void());
}

TEST_F(Registration, WritesThisAndNothingElse) {
    EXPECT_TRUE(FAILED(create(u"vexFirmWarePlugin.vexFirmWareUtil")));
    ASSERT_EQ(register_server(), S_OK);
    for (const char16_t* identifier : {u"vexFirmWarePlugin.vexFirmWareUtil", u"vexFirmwarePlugin.vexFirmwareUtil",
                                       u"vexFirmWarePlugin.PluginData"}) {
        EXPECT_EQ(create(identifier), S_OK);
    }
    const Lines written = changed();
    const std::string server = std::string(kEntryKey) + "\\InprocServer32 =";
    const std::string file = written.lower_bound(server)->substr(server.size());
    const std::string folder = file.substr(0, file.find_last_of('\\'));
    EXPECT_EQ(file.substr(1, 2), ":\\") << "a full path";
    EXPECT_TRUE(equal_ignoring_case(from_utf8(file.substr(folder.size() + 1)), plugin_file().filename().u16string()));

    Lines expected;
    const auto key = [&](const std::string& path, const std::vector<std::string>& values = {}) {
        expected.insert(path);
        for (const std::string& value : values) expected.insert(path + " " + value);
    };
    const std::string library = std::string("TypeLib\\") + kLibraryId;
    key(library);
    key(library + "\\1.0", {"=vexFirmwarePlugin"});
    key(library + "\\1.0\\0");
    key(library + "\\1.0\\0\\" + kPlatform, {"=" + file});
    key(library + "\\1.0\\FLAGS", {"=0"});
    key(library + "\\1.0\\HELPDIR", {"=" + folder});
    const auto type = [&](const std::string& class_key, const std::string& identifier, const std::string& interface_key,
                          const std::string& interface_name) {
        key(class_key, {"=" + identifier});
        key(class_key + "\\InprocServer32", {"=" + file, "ThreadingModel=Apartment"});
        key(class_key + "\\ProgID", {"=" + identifier});
        key(class_key + "\\TypeLib", {std::string("=") + kLibraryId});
        key(class_key + "\\VERSION", {"=1.0"});
        key(identifier, {"=" + identifier});
        key(identifier + "\\CLSID", {"=" + class_key.substr(6)});
        key(interface_key, {"=" + interface_name});
        key(interface_key + "\\ProxyStubClsid32", {"={00020424-0000-0000-C000-000000000046}"});
        key(interface_key + "\\TypeLib", {std::string("=") + kLibraryId, "Version=1.0"});
    };
    type(kCatalogueKey, "vexFirmWarePlugin.PluginData", kInterfaceKey, "_PluginData");
    type(kEntryKey, "vexFirmWarePlugin.vexFirmWareUtil", "Interface\\{4EA9496B-9BA4-4BD0-A367-C0E0A837B2E4}",
         "_vexFirmWareUtil");
    EXPECT_EQ(difference(written, expected), Lines{});

    ASSERT_EQ(register_server(), S_OK) << "twice";
    EXPECT_EQ(difference(changed(), expected), Lines{});
    EXPECT_EQ(unregister_server(), S_OK);
    EXPECT_EQ(changed(), Lines{});
    EXPECT_EQ(unregister_server(), S_OK) << "there is nothing left to remove";
}

TEST_F(Registration, GoesWhateverItHasBecome) {
    const std::u16string entry = from_utf8(kEntryKey);
    const std::string settings = std::string(kInterfaceKey) + "\\Settings";
    ASSERT_EQ(register_server(), S_OK);
    // Another spelling of the library's path, and another class.
    write_class_text(entry + u"\\InprocServer32", u"", u"C:\\PROGRA~1\\VEXFIR~1.DLL");
    write_class_text(u"vexFirmWarePlugin.PluginData\\CLSID", u"", u"{11111111-2222-3333-4444-555555555555}");
    // What is not ours stays, and is no failure.
    write_class_text(entry, u"Owner", u"someone else");
    write_class_text(from_utf8(settings), u"Owner", u"nobody");
    EXPECT_EQ(unregister_server(), S_OK);
    EXPECT_EQ(changed(), (Lines{kEntryKey, std::string(kEntryKey) + " Owner=someone else", kInterfaceKey, settings,
                                settings + " Owner=nobody"}));
    for (const char* key : {kEntryKey, kInterfaceKey})
        test::delete_tree(platform::registry_key(platform::kHkeyClassesRoot), key);
    EXPECT_EQ(changed(), Lines{});
}

TEST_F(Registration, LeadsIntoFoldersThatNoCodePageHolds) {
    const auto folder = plugin_file().parent_path() / u"фирма 日本";
    std::filesystem::create_directories(folder);
    const auto copy = folder / plugin_file().filename();
    std::filesystem::copy_file(plugin_file(), copy, std::filesystem::copy_options::overwrite_existing);
    std::optional<platform::Library> library(copy);
    const HRESULT result = library->function<Export*>("DllRegisterServer")();
    EXPECT_EQ(SUCCEEDED(result), kAnyFolderIsRegistered) << "better refused than a path that leads nowhere";
    EXPECT_EQ(create(u"vexFirmWarePlugin.vexFirmWareUtil") == S_OK, kAnyFolderIsRegistered);
    EXPECT_EQ(library->function<Export*>("DllUnregisterServer")(), S_OK);
    EXPECT_EQ(changed(), Lines{});
    CoFreeUnusedLibraries();
    library.reset();
    std::error_code ignored;
    std::filesystem::remove_all(folder, ignored);
}

}  // namespace
}  // namespace vex::plugin_test
