// The system's own Open dialog, with a user who types a name or cancels.
#include "platform/win32/windows_api.h"

#include <gtest/gtest.h>

#include <dlgs.h>
#include <filesystem>
#include <fstream>

#include "platform/win32/system.h"
#include "simulator/words.h"
#include "simulator/win32/win32_screen.h"

namespace vex::test {
namespace {

/// What the user does about the dialog, and what he has seen there.
struct DialogUser {
    std::u16string name_to_type;
    UINT button = IDOK;
    std::u16string folder;
    std::u16string name;
    std::u16string filter;
};

DialogUser* current_user = nullptr;

std::u16string text_of(HWND dialog, int id) { return sim::shown_text(GetDlgItem(dialog, id)); }

/// Acts as soon as the dialog has its controls.
void CALLBACK look(HWND, UINT, UINT_PTR timer, DWORD) {
    const HWND dialog = GetActiveWindow();
    if (dialog == nullptr || GetDlgItem(dialog, IDOK) == nullptr) return;
    KillTimer(nullptr, timer);
    const int name_id = GetDlgItem(dialog, cmb13) != nullptr ? cmb13 : edt1;
    std::u16string folder(MAX_PATH, u'\0');
    const LRESULT length = SendMessageW(dialog, CDM_GETFOLDERPATH, MAX_PATH, reinterpret_cast<LPARAM>(folder.data()));
    folder.resize(length > 0 ? static_cast<std::size_t>(length) - 1 : 0);
    current_user->folder = folder;
    current_user->name = text_of(dialog, name_id);
    current_user->filter = text_of(dialog, cmb1);
    if (!current_user->name_to_type.empty()) {
        SetDlgItemTextW(dialog, name_id, platform::win32::wide(current_user->name_to_type));
    }
    PostMessageW(dialog, WM_COMMAND, current_user->button, 0);
}

class OpenFileTest : public testing::Test {
protected:
    OpenFileTest() {
        OleInitialize(nullptr);
        std::ofstream(folder.path() / "new.SHX") << "S9030000FC\n";
    }
    ~OpenFileTest() override { OleUninitialize(); }

    std::optional<std::u16string> choose(const forms::OpenFileRequest& request) {
        current_user = &user;
        SetTimer(nullptr, 0, 50, look);
        return platform::win32::desktop().open_file(request);
    }
    std::u16string path(const char16_t* name) const { return (folder.path() / name).u16string(); }

    sim::PrivateFolder folder;
    DialogUser user;
    const std::u16string filter = u"Motorola SHX Files(*.SHX)|*.SHX";
    static constexpr std::uint32_t kFlags = 0x81000;
};

TEST_F(OpenFileTest, ChosenFileIsToldByItsFullPathAndTheCurrentFolderStays) {
    const std::filesystem::path current = std::filesystem::current_path();
    user.name_to_type = u"new.SHX";
    EXPECT_EQ(choose({folder.path().u16string(), {}, filter, kFlags}), path(u"new.SHX"));
    EXPECT_EQ(std::filesystem::path(user.folder), folder.path());
    EXPECT_EQ(user.filter, u"Motorola SHX Files(*.SHX)");
    EXPECT_EQ(std::filesystem::current_path(), current);
}

TEST_F(OpenFileTest, NameOfTheLastChoiceIsOfferedAgain) {
    EXPECT_EQ(choose({{}, path(u"new.SHX"), filter, kFlags}), path(u"new.SHX"));
    EXPECT_EQ(std::filesystem::path(user.folder), folder.path());
    EXPECT_EQ(std::filesystem::path(user.name).filename(), u"new.SHX");
}

TEST_F(OpenFileTest, CancelTellsNothingAndAFolderThatIsGoneIsNoReasonToShowNoDialog) {
    user.button = IDCANCEL;
    for (const std::u16string& initial : {folder.path().u16string(), std::u16string(u"X:\\no such folder")}) {
        user.filter.clear();
        EXPECT_EQ(choose({initial, {}, filter, kFlags}), std::nullopt);
        EXPECT_EQ(user.filter, u"Motorola SHX Files(*.SHX)");
    }
}

}  // namespace
}  // namespace vex::test
