// Windows only, for its resources: what the library file says of itself to the system.
#include <cstring>

#include "tests/plugin/plugin_fixture.h"

namespace vex::plugin_test {
namespace {

const LPCWSTR kIconGroup = MAKEINTRESOURCEW(14);

HMODULE plugin_module() {
    plugin_function<void()>("DllCanUnloadNow");
    return GetModuleHandleW(plugin_file().c_str());
}

std::vector<std::uint8_t> resource(LPCWSTR type, LPCWSTR name) {
    const HRSRC found = FindResourceW(plugin_module(), name, type);
    if (found == nullptr) return {};
    const auto* bytes = static_cast<const std::uint8_t*>(LockResource(LoadResource(plugin_module(), found)));
    return {bytes, bytes + SizeofResource(plugin_module(), found)};
}

TEST(Resources, HoldTheTypeLibraryTheInterfaceIdsAndTheIcons) {
    const LPCWSTR first = MAKEINTRESOURCEW(1);
    EXPECT_EQ(resource(L"TYPELIB", first).size(), 3084U);
    const auto holds = [](const std::vector<std::uint8_t>& bytes, REFGUID guid) {
        return bytes.size() == 20 && bytes[0] == 16 && std::memcmp(bytes.data() + 4, &guid, 16) == 0;
    };
    EXPECT_TRUE(holds(resource(L"_IID_PLUGINDATA", first), kCatalogueInterface));
    EXPECT_TRUE(holds(resource(L"_IID_VEXFIRMWAREUTIL", first), kEntryInterface));

    for (int id = 1; id <= 0xFFFF; ++id) EXPECT_EQ(resource(kIconGroup, MAKEINTRESOURCEW(id)).empty(), id != 101);
    for (const wchar_t* name : {L"WIZARD", L"UPDATING", L"NOTUPDATED", L"UPDATED", L"FAILED", L"CANCELLED"}) {
        EXPECT_FALSE(resource(kIconGroup, name).empty());
    }
}

TEST(Resources, HoldTheVersion) {
    std::vector<std::uint8_t> block(GetFileVersionInfoSizeW(plugin_file().c_str(), nullptr));
    ASSERT_TRUE(GetFileVersionInfoW(plugin_file().c_str(), 0, static_cast<DWORD>(block.size()), block.data()));
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
    std::u16string text;
    for (const wchar_t* name : {L"CompanyName", L"FileVersion", L"ProductVersion", L"ProductName", L"InternalName",
                                L"OriginalFilename", L"LegalTrademarks", L"OLESelfRegister"}) {
        const auto* field = static_cast<const char16_t*>(value(std::wstring(L"\\StringFileInfo\\040904B0\\") + name));
        text += field == nullptr ? u"none|" : field + std::u16string(u"|");
    }
    EXPECT_EQ(text, u"Norvan|4.00|4.00|vexFirmWarePlugin|vexFirmwarePlugin|vexFirmwarePlugin.dll|28||");
}

}  // namespace
}  // namespace vex::plugin_test
