// The plug-in's own dialogs on real windows, started by a host: how they stand among each other, what they answer when
// the session ends, that memory may end in them, and that nothing of a run stays behind, nor of a form with every kind
// of control. The environment variable VEX_RUNS says how many runs are made for either; a thousand take minutes.
#include <gmock/gmock.h>

#include <chrono>
#include <cstdlib>
#include <limits>
#include <map>
#include <sstream>

#include "platform/system.h"
#include "platform/win32/window_name.h"
#include "platform/win32/windows_api.h"
#include "simulator/session.h"
#include "simulator/win32/import_hook.h"
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
            EXPECT_EQ(GetWindowLongPtrW(forms.at(kSession), GWL_EXSTYLE) & WS_EX_TOOLWINDOW, 0) << "a taskbar button";
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

/// A control may handle messages by itself for as long as it likes.
void handle_messages(std::chrono::milliseconds time) {
    const auto end = std::chrono::steady_clock::now() + time;
    while (std::chrono::steady_clock::now() < end) {
        for (MSG message; PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE);) DispatchMessageW(&message);
        MsgWaitForMultipleObjects(0, nullptr, FALSE, 10, QS_ALLINPUT);
    }
}

TEST_F(PluginWindows, ServeTheUserWhileAControlHandlesMessagesByItself) {
    run_for_user([this](sim::Host& host, sim::PluginHost& plugin) {
        host.on_link = [this](const sim::LinkEvent& event) {
            if (event.kind != sim::LinkEvent::Kind::begins || event.call.operation != u"ResetAndClear") return true;
            const Forms forms = open_forms();
            for (const auto& [name, window] : forms) PostMessageW(window, WM_CLOSE, 0, 0);
            PostMessageW(sim::control_window(forms.at(kSession), u"cmdCancel"), BM_CLICK, 0, 0);
            handle_messages(std::chrono::milliseconds(300));
            EXPECT_EQ(user->boxes.size(), 1U);
            EXPECT_EQ(open_forms(), forms);
            return true;
        };
        user->answers = {forms::MessageAnswer::yes};
        user->then([this] { choose_and_finish(); }).then([this] {
            EXPECT_EQ(screen->rows(u"lstvDisplayStatus"),
                      (std::vector<std::vector<std::u16string>>{{u"Gate A", u"Cancelled - "}}));
        });
        plugin.start();
        EXPECT_EQ(user->actions_left(), 0U);
    });
}

/// How often something is done.
std::size_t runs() {
    const char* const number = std::getenv("VEX_RUNS");
    return number == nullptr ? 10 : std::strtoul(number, nullptr, 10);
}

// ---- Memory that ends

/// The plug-in's own allocations, while it lives; those of the system and of the host are not refused.
class Allocations {
public:
    explicit Allocations(HMODULE plugin)
        : general_(plugin, "malloc", &allocate), texts_(plugin, "SysAllocStringLen", &allocate_text) {}

    /// From now on the one of that number, from 1, is refused, or also all after it; 0: none.
    void refuse(std::size_t number, bool for_good) {
        counted_ = 0;
        refused_ = number;
        for_good_ = for_good;
    }
    std::size_t counted() const { return counted_; }

private:
    static bool refuses() noexcept {
        ++counted_;
        return refused_ != 0 && (counted_ == refused_ || (for_good_ && counted_ > refused_));
    }
    static void* __cdecl allocate(std::size_t size) noexcept { return refuses() ? nullptr : std::malloc(size); }
    static BSTR WINAPI allocate_text(const OLECHAR* text, UINT length) noexcept {
        return refuses() ? nullptr : SysAllocStringLen(text, length);
    }

    static inline std::size_t counted_, refused_;
    static inline bool for_good_;
    sim::ImportHook general_, texts_;
};

/// What a screen does not offer any more is not done.
template <class Work>
void try_to(Work work) {
    try {
        work();
    } catch (const std::exception&) {
    }
}

TEST_F(PluginWindows, FailOrSucceedWhereverMemoryEnds) {
    run_for_user([this](sim::Host& host, sim::PluginHost& plugin) {
        Allocations allocations(GetModuleHandleW(platform::win32::wide(kPlugin)));
        const auto play = [&](std::size_t refused, bool for_good) {
            int resets = 0;
            bool updated = false;
            host.on_link = [&](const sim::LinkEvent& event) {
                resets += event.kind == sim::LinkEvent::Kind::begins && event.call.operation == u"ResetAndClear";
                return true;
            };
            user.emplace(*screen);
            user->then([&] { try_to([this] { choose_and_finish(); }); }).then([&] {
                try_to([&] { updated = screen->rows(u"lstvDisplayStatus").at(0).at(1) == u"Updated - "; });
                EXPECT_TRUE(!updated || resets == 1);
            });
            allocations.refuse(refused, for_good);
            try {
                plugin.start();
                EXPECT_TRUE(updated || refused != 0);
            } catch (const RuntimeError& error) {
                EXPECT_THAT(error.number(), testing::AnyOf(kOutOfMemory, kCannotCreateObject));
            } catch (const std::bad_alloc&) {
            }
            const std::size_t counted = allocations.counted();
            allocations.refuse(0, false);
            EXPECT_EQ(open_forms(), Forms());
            EXPECT_TRUE(plugin.can_unload());
            return counted;
        };
        play(0, false);
        const std::size_t all = play(0, false);
        for (const bool for_good : {false, true}) {
            for (std::size_t run = 0; run < runs(); ++run) {
                const std::size_t refused = 1 + run * all / runs();
                SCOPED_TRACE(testing::Message() << "allocation " << refused << " of " << all << ", " << for_good);
                play(refused, for_good);
            }
        }
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
    /// Files, keys and threads.
    unsigned long kernel = 0;
};

/// Windows tells the numbers. Wine does not (it answers 0); there every possible handle is looked at.
HandleCounts count_handles() {
    HandleCounts counts{GetGuiResources(GetCurrentProcess(), GR_USEROBJECTS),
                        GetGuiResources(GetCurrentProcess(), GR_GDIOBJECTS)};
    GetProcessHandleCount(GetCurrentProcess(), &counts.kernel);
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
void expect_no_handle_stays(std::size_t times, const std::function<void()>& use) {
    // The first uses make what the system keeps for all.
    for (int used = 0; used < 3; ++used) use();
    const HandleCounts before = count_handles();
    for (std::size_t used = 0; used < times; ++used) use();
    const HandleCounts after = count_handles();
    EXPECT_GT(before.graphics, 0U);
    EXPECT_EQ(after.user, before.user);
    EXPECT_EQ(after.graphics, before.graphics);
    EXPECT_EQ(after.kernel, before.kernel);
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

TEST_F(PluginWindows, LeaveTheCountsOfHandlesWhereTheyWere) {
    run_for_user([this](sim::Host&, sim::PluginHost& plugin) {
        expect_no_handle_stays(runs(), [&] {
            user->then([this] { choose_and_finish(); });
            plugin.start();
        });
    });
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
