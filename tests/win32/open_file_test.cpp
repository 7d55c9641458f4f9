// The system's own Open dialog, with a user who types a name or cancels.
#include "platform/system.h"
#include "platform/win32/windows_api.h"

#include <gtest/gtest.h>

#include <dlgs.h>
#include <filesystem>
#include <fstream>

#include "simulator/win32/win32_screen.h"
#include "simulator/words.h"

namespace vex::test {
namespace {

/// What the user does about the dialog, and what he has seen there.
struct DialogUser {
    std::u16string name_to_type;
    UINT button = IDOK;
    std::filesystem::path folder, name;
    std::u16string filter;
};

DialogUser* current_user = nullptr;

/// Acts as soon as the dialog has its controls.
void CALLBACK look(HWND, UINT, UINT_PTR timer, DWORD) {
    const HWND dialog = GetActiveWindow();
    if (dialog == nullptr || GetDlgItem(dialog, IDOK) == nullptr) return;
    KillTimer(nullptr, timer);
    const int name_id = GetDlgItem(dialog, cmb13) != nullptr ? cmb13 : edt1;
    wchar_t folder[MAX_PATH] = {};
    SendMessageW(dialog, CDM_GETFOLDERPATH, MAX_PATH, reinterpret_cast<LPARAM>(folder));
    current_user->folder = folder;
    current_user->name = sim::shown_text(GetDlgItem(dialog, name_id));
    current_user->filter = sim::shown_text(GetDlgItem(dialog, cmb1));
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

    std::optional<std::u16string> choose(const std::u16string& initial_folder, const std::u16string& last_name = {}) {
        current_user = &user;
        SetTimer(nullptr, 0, 50, look);
        return platform::desktop().open_file({initial_folder, last_name, u"Motorola SHX Files(*.SHX)|*.SHX", 0x81000});
    }

    sim::PrivateFolder folder;
    const std::u16string file = (folder.path() / "new.SHX").u16string();
    DialogUser user;
};

TEST_F(OpenFileTest, ChosenFileIsToldByItsFullPathAndOfferedAgainAndTheCurrentFolderStays) {
    const std::filesystem::path current = std::filesystem::current_path();
    user.name_to_type = u"new.SHX";
    EXPECT_EQ(choose(folder.path().u16string()), file);
    EXPECT_EQ(user.folder, folder.path());
    EXPECT_EQ(std::filesystem::current_path(), current);
    user = {};
    EXPECT_EQ(choose({}, file), file);
    EXPECT_EQ(user.folder, folder.path());
    EXPECT_EQ(user.name.filename(), u"new.SHX");
}

TEST_F(OpenFileTest, CancelTellsNothingAndAFolderThatIsGoneIsNoReasonToShowNoDialog) {
    for (const std::u16string& initial : {folder.path().u16string(), std::u16string(u"X:\\no such folder")}) {
        user = {};
        user.button = IDCANCEL;
        EXPECT_EQ(choose(initial), std::nullopt);
        EXPECT_EQ(user.filter, u"Motorola SHX Files(*.SHX)");
    }
}

}  // namespace
}  // namespace vex::test
