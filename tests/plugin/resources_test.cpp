// Windows only, for its resources: what the library file says of itself to the system.
#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "tests/plugin/plugin_fixture.h"

namespace vex::plugin_test {
namespace {

const LPCWSTR kIconGroup = MAKEINTRESOURCEW(14);

HMODULE plugin_module() {
    HMODULE module = nullptr;
    GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                       reinterpret_cast<LPCWSTR>(plugin_export("DllCanUnloadNow")), &module);
    return module;
}

std::vector<std::uint8_t> resource(LPCWSTR type, WORD id) {
    const HRSRC found = FindResourceW(plugin_module(), MAKEINTRESOURCEW(id), type);
    if (found == nullptr) return {};
    const auto* bytes = static_cast<const std::uint8_t*>(LockResource(LoadResource(plugin_module(), found)));
    return {bytes, bytes + SizeofResource(plugin_module(), found)};
}

TEST(Ordinals, AreThoseThatHostsMayImportBy) {
    const char* const names[] = {"DllCanUnloadNow", "DllGetClassObject", "DllRegisterServer", "DllUnregisterServer"};
    for (WORD ordinal = 1; ordinal <= 4; ++ordinal) {
        EXPECT_EQ(reinterpret_cast<void*>(GetProcAddress(plugin_module(), MAKEINTRESOURCEA(ordinal))),
                  plugin_export(names[ordinal - 1]));
    }
    EXPECT_EQ(GetProcAddress(plugin_module(), MAKEINTRESOURCEA(5)), nullptr);
}

TEST(Resources, HoldTheTypeLibraryAndTheInterfaceIds) {
    EXPECT_EQ(resource(L"TYPELIB", 1).size(), 3084U);
    const auto holds = [](const std::vector<std::uint8_t>& bytes, REFGUID guid) {
        return bytes.size() == 20 && bytes[0] == 16 && std::memcmp(bytes.data() + 4, &guid, 16) == 0;
    };
    EXPECT_TRUE(holds(resource(L"_IID_PLUGINDATA", 1), kCatalogueInterface));
    EXPECT_TRUE(holds(resource(L"_IID_VEXFIRMWAREUTIL", 1), kEntryInterface));
}

TEST(Resources, HoldOneIconWithANumberAndTheOthersByName) {
    int numbered = 0;
    for (int id = 1; id <= 0xFFFF; ++id) numbered += resource(kIconGroup, static_cast<WORD>(id)).empty() ? 0 : 1;
    EXPECT_EQ(numbered, 1);
    EXPECT_FALSE(resource(kIconGroup, 101).empty());
    for (const wchar_t* name : {L"WIZARD", L"UPDATING", L"NOTUPDATED", L"UPDATED", L"FAILED", L"CANCELLED"}) {
        EXPECT_NE(FindResourceW(plugin_module(), name, kIconGroup), nullptr);
    }
}

TEST(Resources, HoldTheVersion) {
    wchar_t path[MAX_PATH];
    ASSERT_NE(GetModuleFileNameW(plugin_module(), path, MAX_PATH), 0U);
    std::vector<std::uint8_t> block(GetFileVersionInfoSizeW(path, nullptr));
    ASSERT_TRUE(GetFileVersionInfoW(path, 0, static_cast<DWORD>(block.size()), block.data()));
    const auto value = [&block](const std::wstring& name) {
        void* found = nullptr;
        UINT size = 0;
        return VerQueryValueW(block.data(), name.c_str(), &found, &size) ? found : nullptr;
    };
    const auto* fixed = static_cast<const VS_FIXEDFILEINFO*>(value(L"\\"));
    ASSERT_NE(fixed, nullptr);
    EXPECT_EQ(fixed->dwFileVersionMS, 4U << 16);
    EXPECT_EQ(fixed->dwProductVersionMS, 4U << 16);
    EXPECT_EQ(fixed->dwFileType, static_cast<DWORD>(VFT_DLL));
    const std::pair<const wchar_t*, std::u16string> fields[] = {
        {L"FileVersion", u"4.00"},
        {L"ProductVersion", u"4.00"},
        {L"ProductName", u"vexFirmWarePlugin"},
        {L"InternalName", u"vexFirmwarePlugin"},
        {L"OriginalFilename", u"vexFirmwarePlugin.dll"},
        {L"LegalTrademarks", u"28"},
        {L"OLESelfRegister", u""},
    };
    const auto field = [&](const std::wstring& name) {
        return static_cast<const char16_t*>(value(L"\\StringFileInfo\\040904B0\\" + name));
    };
    for (const auto& [name, text] : fields) {
        ASSERT_NE(field(name), nullptr) << text.size();
        EXPECT_EQ(field(name), text);
    }
    ASSERT_NE(field(L"CompanyName"), nullptr);
    EXPECT_NE(field(L"CompanyName")[0], u'\0');
}

}  // namespace
}  // namespace vex::plugin_test
