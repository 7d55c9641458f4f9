// The plug-in's own dialogs on real windows, started by a host: how they stand among each other, what they answer when
// the session ends, and that no handle of them stays behind, nor of a form with every kind of control. The environment
// variable VEX_WIZARDS says how many wizards are opened for that; a thousand take minutes.
#include <gmock/gmock.h>

#include <cstdlib>
#include <limits>
#include <map>
#include <sstream>

#include "platform/system.h"
#include "platform/win32/window_name.h"
#include "platform/win32/windows_api.h"
#include "simulator/session.h"
#include "simulator/win32/win32_machine.h"
#include "simulator/win32/win32_screen.h"
#include "simulator/words.h"
#include "tests/toolkit/sample_form.h"
#include "tests/toolkit/test_user.h"

namespace vex::test {
namespace {

constexpr char16_t kPlugin[] = u"vexFirmwarePlugin.dll";
constexpr char16_t kWizard[] = u"dlgFirmwareWizard";
constexpr char16_t kRun[] = u"dlgDispUpdater";
constexpr char16_t kSession[] = u"dlgHandleSignOption";

class PluginWindows : public testing::Test {
protected:
    PluginWindows() { OleInitialize(nullptr); }
    ~PluginWindows() override { OleUninitialize(); }

    /// A host with the plug-in loaded, for the time of the work.
    void run(const std::function<void(sim::Host& host, sim::PluginHost& plugin)>& work) {
        const sim::PrivateFolder folder;
        sim::Win32Machine machine(kPlugin, folder.path(), false);
        const auto library = std::filesystem::path(platform::win32::module_path()).parent_path() / kPlugin;
        std::ostringstream trace;
        const auto status = sim::run_host(machine, folder.path(), library, true, trace, trace,
                                          [&work](sim::Host& host, sim::PluginHost& plugin) {
                                              work(host, plugin);
                                              return sim::kPassed;
                                          });
        EXPECT_EQ(status, sim::kPassed) << trace.str();
    }
    /// The same with one display, which the host's picker chooses, and a user.
    void run_for_user(const std::function<void(sim::Host& host, sim::PluginHost& plugin)>& work) {
        run([&](sim::Host& host, sim::PluginHost& plugin) {
            sim::Display display;
            display.name = u"Gate A";
            host.put_display(display);
            host.choose_displays = [&display] { return display.name; };
            screen.emplace(kPlugin);
            user.emplace(*screen);
            work(host, plugin);
            user.reset();
            screen.reset();
            host.on_link = nullptr;
            host.choose_displays = nullptr;
        });
    }
    void choose_and_finish() {
        screen->press(u"picNavTree", forms::MouseButton::left, 700, 1400);
        screen->click(u"cmdChooseDisplay");
        screen->click(u"cmdFinish");
    }

    std::optional<sim::Win32Screen> screen;
    std::optional<TestUser> user;
};

using Forms = std::map<std::u16string, HWND>;

BOOL CALLBACK add_form(HWND window, LPARAM forms) {
    std::u16string name = platform::win32::window_name(window);
    if (!name.empty()) (*reinterpret_cast<Forms*>(forms))[std::move(name)] = window;
    return TRUE;
}

/// The plug-in's open forms by name.
Forms open_forms() {
    Forms forms;
    EnumThreadWindows(GetCurrentThreadId(), add_form, reinterpret_cast<LPARAM>(&forms));
    return forms;
}

HWND owner_of(HWND window) { return GetWindow(window, GW_OWNER); }

/// Whether every open form lets the session end when the system asks its window.
bool may_end_session(std::size_t forms) {
    const Forms open = open_forms();
    EXPECT_EQ(open.size(), forms);
    std::size_t agreed = 0;
    for (const auto& [name, window] : open) agreed += SendMessageW(window, WM_QUERYENDSESSION, 0, 0) != FALSE;
    EXPECT_TRUE(agreed == 0 || agreed == forms) << "all answer for all";
    EXPECT_EQ(open_forms(), open) << "the question closes nothing";
    return agreed != 0;
}

TEST_F(PluginWindows, StandAsTheirOwnersSayAndKeepTheSessionFromEndingInTheMiddleOfARun) {
    run_for_user([this](sim::Host& host, sim::PluginHost& plugin) {
        int calls = 0;
        host.on_link = [&calls](const sim::LinkEvent& event) {
            if (event.kind != sim::LinkEvent::Kind::begins) return true;
            ++calls;
            const Forms forms = open_forms();
            EXPECT_EQ(owner_of(forms.at(kWizard)), nullptr);
            EXPECT_EQ(owner_of(forms.at(kRun)), forms.at(kWizard));
            EXPECT_EQ(owner_of(forms.at(kSession)), nullptr);
            EXPECT_EQ(GetActiveWindow(), forms.at(kSession));
            for (const auto& [name, window] : forms) EXPECT_EQ(IsWindowEnabled(window) != FALSE, name == kSession);
            EXPECT_FALSE(may_end_session(3));
            return true;
        };
        user->then([&] {
                EXPECT_TRUE(may_end_session(1));
                screen->click(u"cmdAbout");
            })
            .then([&] {
                const Forms forms = open_forms();
                EXPECT_EQ(owner_of(forms.at(u"frmAbout")), forms.at(kWizard));
                screen->click(u"cmdOK");
            })
            .then([&] {
                EXPECT_TRUE(may_end_session(1));
                choose_and_finish();
            })
            .then([&] {
                EXPECT_EQ(screen->rows(u"lstvDisplayStatus"),
                          (std::vector<std::vector<std::u16string>>{{u"Gate A", u"Updated - "}}));
                EXPECT_TRUE(may_end_session(2));
                for (const auto& [name, window] : open_forms()) SendMessageW(window, WM_ENDSESSION, TRUE, 0);
            });
        plugin.start();
        EXPECT_EQ(user->actions_left(), 0U);
        EXPECT_GT(calls, 0);
    });
}

// ---- Handles of windows and graphics

template <class Handle>
Handle handle_at(std::uintptr_t index) noexcept {
    return reinterpret_cast<Handle>(index);
}

bool is_icon(HICON icon) noexcept {
    ICONINFO information = {};
    if (!GetIconInfo(icon, &information)) return false;
    DeleteObject(information.hbmMask);
    if (information.hbmColor != nullptr) DeleteObject(information.hbmColor);
    return true;
}

bool is_own_window(HWND window) noexcept {
    DWORD process = 0;
    return IsWindow(window) && GetWindowThreadProcessId(window, &process) != 0 && process == GetCurrentProcessId();
}

struct HandleCounts {
    unsigned long user = 0;
    unsigned long graphics = 0;
};

/// Windows tells the numbers. Wine does not (it answers 0); there every possible handle is looked at.
HandleCounts count_handles() {
    HandleCounts counts{GetGuiResources(GetCurrentProcess(), GR_USEROBJECTS),
                        GetGuiResources(GetCurrentProcess(), GR_GDIOBJECTS)};
    if (counts.user != 0 || counts.graphics != 0) return counts;
    // Only the lower half of a handle says which one it is.
    for (std::uintptr_t index = 1; index <= std::numeric_limits<std::uint16_t>::max(); ++index) {
        if (GetObjectType(handle_at<HGDIOBJ>(index)) != 0) ++counts.graphics;
        if (is_own_window(handle_at<HWND>(index)) || IsMenu(handle_at<HMENU>(index)) ||
            is_icon(handle_at<HICON>(index))) {
            ++counts.user;
        }
    }
    return counts;
}

/// Expects as many handles after so many uses of something as before them.
void expect_no_handle_stays(int times, const std::function<void()>& use) {
    // The first uses make what the system keeps for all.
    for (int used = 0; used < 3; ++used) use();
    const HandleCounts before = count_handles();
    for (int used = 0; used < times; ++used) use();
    const HandleCounts after = count_handles();
    EXPECT_GT(before.graphics, 0U);
    EXPECT_EQ(after.user, before.user);
    EXPECT_EQ(after.graphics, before.graphics);
}

TEST_F(PluginWindows, MayBeDestroyedByTheHostInTheMiddleOfARun) {
    run_for_user([this](sim::Host& host, sim::PluginHost& plugin) {
        for (const char16_t* victim : {kSession, kRun, kWizard}) {
            bool destroyed = false;
            host.on_link = [&](const sim::LinkEvent&) {
                if (!std::exchange(destroyed, true)) DestroyWindow(open_forms().at(victim));
                return true;
            };
            user->then([this] { choose_and_finish(); });
            plugin.start();
            EXPECT_TRUE(destroyed);
            EXPECT_EQ(open_forms(), Forms());
        }
    });
}

/// Presses the close box of whatever form is on top.
void CALLBACK close_top_form(HWND, UINT, UINT_PTR, DWORD) {
    if (auto* const form = static_cast<HWND>(sim::top_form_window())) {
        PostMessageW(form, WM_SYSCOMMAND, SC_CLOSE, 0);
    }
}

TEST_F(PluginWindows, LeaveTheCountsOfHandlesWhereTheyWere) {
    const UINT_PTR timer = SetTimer(nullptr, 0, USER_TIMER_MINIMUM, close_top_form);
    run([](sim::Host&, sim::PluginHost& plugin) {
        const char* number = std::getenv("VEX_WIZARDS");
        expect_no_handle_stays(number == nullptr ? 10 : std::atoi(number), [&] { plugin.start(); });
    });
    KillTimer(nullptr, timer);
}

TEST_F(PluginWindows, LeaveNothingOfEveryKindOfControlBehind) {
    SampleForm form(platform::desktop());
    form.on_activate = [&] { form.hide(); };
    form.on_load = [&] {
        form.pages.set_tab(1);
        form.list.add_row({}, u"row", u"good");
    };
    expect_no_handle_stays(30, [&] { form.show_modal(); });
}

}  // namespace
}  // namespace vex::test
