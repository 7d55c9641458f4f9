// The plug-in's wizard, opened and closed again and again by a host: no window or graphics handle stays behind.
// The environment variable VEX_WIZARDS says how often; a thousand times takes minutes.
#include <gtest/gtest.h>

#include <cstdlib>
#include <sstream>

#include "platform/win32/system.h"
#include "platform/win32/window_reader.h"
#include "simulator/private_folder.h"
#include "simulator/session.h"
#include "simulator/win32/win32_machine.h"
#include "tests/win32/handle_counts.h"

namespace vex::test {
namespace {

constexpr char16_t kPlugin[] = u"vexFirmwarePlugin.dll";

int wizards_to_open() {
    constexpr int kFew = 10;
    const char* number = std::getenv("VEX_WIZARDS");
    return number == nullptr ? kFew : std::atoi(number);
}

/// Presses the close box of whatever form is on top.
void CALLBACK close_top_form(HWND, UINT, UINT_PTR, DWORD) {
    if (auto* const form = static_cast<HWND>(platform::win32::top_form_window())) {
        PostMessageW(form, WM_SYSCOMMAND, SC_CLOSE, 0);
    }
}

TEST(ManyWizards, LeaveTheCountsOfHandlesWhereTheyWere) {
    OleInitialize(nullptr);
    const sim::PrivateFolder folder;
    sim::Win32Machine computer(kPlugin, folder.path(), false);
    const auto plugin = std::filesystem::path(platform::win32::module_path()).parent_path() / kPlugin;
    std::ostringstream ignored;
    const UINT_PTR timer = SetTimer(nullptr, 0, USER_TIMER_MINIMUM, close_top_form);

    const auto work = [](sim::Host&, sim::PluginHost& started) {
        const auto open_some = [&started](int count) {
            for (int opened = 0; opened < count; ++opened) started.start(sim::StartMember::StartPlugin, nullptr);
        };
        // The first ones make what the system keeps for all.
        open_some(3);
        const HandleCounts before = count_handles();
        open_some(wizards_to_open());
        const HandleCounts after = count_handles();
        EXPECT_GT(before.graphics, 0U);
        EXPECT_EQ(after.user, before.user);
        EXPECT_EQ(after.graphics, before.graphics);
        return sim::kPassed;
    };
    EXPECT_EQ(sim::run_host(computer, {.data = folder.path(), .plugin_library = plugin, .scenario = {}}, true, ignored,
                            ignored, work),
              sim::kPassed)
        << ignored.str();

    KillTimer(nullptr, timer);
    OleUninitialize();
}

}  // namespace
}  // namespace vex::test
