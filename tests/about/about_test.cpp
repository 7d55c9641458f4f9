// The About box and the private label.
#include "about/frm_about.h"

#include <gtest/gtest.h>

#include <functional>
#include <vector>

#include "core/runtime_error.h"
#include "forms/scripted_toolkit.h"
#include "support/product.h"
#include "tests/registry/forwarding_registry.h"
#include "tests/registry/test_key.h"

namespace vex::test {
namespace {

/// Shows the test's key as HKEY_LOCAL_MACHINE.
class LocalMachine final : public ForwardingRegistry {
public:
    explicit LocalMachine(platform::RegistryKey key) : ForwardingRegistry(side_registry()), key_(key) {}

    std::int32_t open_key(platform::RegistryKey parent, const char* path, std::uint32_t access,
                          platform::RegistryKey& key) noexcept override {
        last_access = access;
        const bool is_machine = parent == platform::registry_key(platform::kHkeyLocalMachine);
        const std::int32_t result = ForwardingRegistry::open_key(is_machine ? key_ : parent, path, access, key);
        if (result == platform::kSuccess) ++open_keys;
        return result;
    }
    std::int32_t close_key(platform::RegistryKey key) noexcept override {
        --open_keys;
        return ForwardingRegistry::close_key(key);
    }

    std::uint32_t last_access = 0;
    int open_keys = 0;

private:
    platform::RegistryKey key_;
};

class StartedPrograms final : public platform::Processes {
public:
    bool start(const std::u16string& path) override {
        paths.push_back(path);
        return can_start;
    }
    std::vector<std::u16string> paths;
    bool can_start = true;
};

class OneFile final : public platform::Files {
public:
    bool ordinary_file_exists(const std::u16string& path) override { return path == existing; }
    std::u16string existing;
};

/// Acts on the open dialog once, then closes it.
class User final : public forms::ScriptedUser {
public:
    std::function<void(forms::Form&)> on_open = [](forms::Form&) {};
    std::vector<forms::MessageBox> messages;

    void form_opened(forms::Form& form) override { on_open(form); }
    forms::MessageAnswer answer(const forms::MessageBox& box) override {
        messages.push_back(box);
        return forms::MessageAnswer::ok;
    }
};

class About : public TestKeyFixture {
protected:
    std::u16string caption(const char* control) { return about_.find(control)->caption(); }

    /// Shows the box and closes it again.
    void show() { about_.show_modal(); }

    void set_label(std::string_view text) {
        Key::created(key.get(), "Software\\BrivolaLite").set_text("Private Label Company", text);
    }

    User user_;
    forms::ScriptedToolkit toolkit_{user_};
    LocalMachine registry_{key.get()};
    OneFile files_;
    StartedPrograms programs_;
    com::ModuleLifetime module_;
    Services services_{toolkit_, registry_, files_, programs_, side_code_page(), module_, u"C:\\Host"};
    frmAbout about_{services_};
};

TEST_F(About, SaysWhatTheProductIs) {
    show();
    EXPECT_EQ(about_.caption(), u"About vexFirmWarePlugin");
    EXPECT_EQ(caption("lblVersion"), u"Version 4.0");
    EXPECT_EQ(caption("lblDescription"), product::kCompanyName);
    EXPECT_TRUE(caption("lblDisclaimer").starts_with(u"Warning: "));
    EXPECT_EQ(caption("cmdSysInfo"), u"&System Info...");
}

TEST_F(About, ShowsThePrivateLabelAfreshEachTime) {
    set_label("Signs & Co");
    show();
    EXPECT_EQ(caption("lblDescription"), u"Signs & Co");
    set_label("Other");
    show();
    EXPECT_EQ(caption("lblDescription"), u"Other") << "not behind the text of the showing before";
    EXPECT_EQ(registry_.open_keys, 0);
}

TEST_F(About, ItsOkButtonUnloadsIt) {
    user_.on_open = [](forms::Form& form) {
        form.raise_click(*form.find("cmdOK"));
        EXPECT_FALSE(form.loaded());
    };
    show();
}

class SystemInformation : public About {
protected:
    void set_program(std::string_view path) {
        Key::created(key.get(), "SOFTWARE\\Microsoft\\Shared Tools\\MSINFO").set_text("PATH", path);
    }
    void set_folder(std::string_view folder) {
        Key::created(key.get(), "SOFTWARE\\Microsoft\\Shared Tools Location").set_text("MSINFO", folder);
    }
    void expect_started(const std::u16string& path) {
        EXPECT_EQ(programs_.paths, std::vector<std::u16string>{path});
        EXPECT_TRUE(user_.messages.empty());
    }
    void expect_unavailable() {
        ASSERT_EQ(user_.messages.size(), 1U);
        EXPECT_EQ(user_.messages[0].text, u"System Information Is Unavailable At This Time");
        EXPECT_EQ(user_.messages[0].buttons, forms::MessageButtons::ok);
    }
};

TEST_F(SystemInformation, StartsTheProgramThatIsNamed) {
    set_program("C:\\Program Files\\Info\\MSINFO32.EXE");
    set_folder("C:\\Elsewhere");
    about_.StartSysInfo();
    expect_started(u"C:\\Program Files\\Info\\MSINFO32.EXE");
}

TEST_F(SystemInformation, ElseTheProgramInTheFolderThatIsNamed) {
    set_folder("C:\\Program Files\\Info");
    files_.existing = u"C:\\Program Files\\Info\\MSINFO32.EXE";
    user_.on_open = [](forms::Form& form) { form.raise_click(*form.find("cmdSysInfo")); };
    show();
    expect_started(u"C:\\Program Files\\Info\\MSINFO32.EXE");
}

TEST_F(SystemInformation, IsUnavailableWithoutEither) {
    about_.StartSysInfo();
    expect_unavailable();
    EXPECT_TRUE(programs_.paths.empty());
}

TEST_F(SystemInformation, IsUnavailableWhenTheFileIsMissing) {
    set_folder("C:\\Program Files\\Info");
    about_.StartSysInfo();
    expect_unavailable();
    EXPECT_TRUE(programs_.paths.empty());
}

TEST_F(SystemInformation, IsUnavailableWhenTheProgramDoesNotStart) {
    set_program("C:\\Gone.exe");
    set_folder("C:\\Program Files\\Info");
    files_.existing = u"C:\\Program Files\\Info\\MSINFO32.EXE";
    programs_.can_start = false;
    about_.StartSysInfo();
    expect_unavailable();
    EXPECT_EQ(programs_.paths.size(), 1U) << "the second place is not tried";
}

class KeyValue : public About {
protected:
    bool get(std::u16string& value, const char16_t* name = u"v") {
        return about_.GetKeyValue(platform::kHkeyLocalMachine, u"Values", name, value);
    }
    std::u16string number(std::vector<std::uint8_t> bytes, std::u16string before = u"") {
        values_.set("v", platform::kRegDword, std::move(bytes));
        EXPECT_TRUE(get(before));
        return before;
    }

    const Key values_ = Key::created(key.get(), "Values");
};

TEST_F(KeyValue, TextsComeAsTheyAre) {
    std::u16string value = u"old";
    values_.set_text("v", "C:\\a b");
    EXPECT_TRUE(get(value));
    EXPECT_EQ(value, u"C:\\a b");
    values_.set("v", platform::kRegSz, bytes_of("unended"));
    EXPECT_TRUE(get(value));
    EXPECT_EQ(value.substr(0, 7), u"unended");
    EXPECT_EQ(registry_.last_access, 0x2003FU);
    EXPECT_EQ(registry_.open_keys, 0);
}

TEST_F(KeyValue, NumbersLoseTheZerosOfTheirBytes) {
    EXPECT_EQ(number({0x10, 0, 0, 0}), u"16");
    EXPECT_EQ(number({0x34, 0x12, 0, 0}), u"4660");
    EXPECT_EQ(number({0x04, 0x03, 0x02, 0x01}), u"4660") << "1, 2, 3, 4 and not 01, 02, 03, 04: kept";
    EXPECT_EQ(number({0xFF, 0xFF, 0xFF, 0xFF}), u"-1") << "32 bits keep their sign";
    EXPECT_EQ(number({1, 0, 0, 0}, u"2"), u"8193") << "behind the digits that the caller had there: kept";
    std::u16string wrong = u"x";
    EXPECT_THROW(get(wrong), RuntimeError);
}

TEST_F(KeyValue, OtherTypesLeaveTheTextAndFailuresEmptyIt) {
    std::u16string value = u"old";
    values_.set("v", platform::kRegBinary, {1, 2});
    EXPECT_TRUE(get(value));
    EXPECT_EQ(value, u"old");
    EXPECT_FALSE(get(value, u"missing"));
    EXPECT_EQ(value, u"");
    value = u"old";
    values_.set_text("v", std::string(1100, 'x'));
    EXPECT_FALSE(get(value)) << "more than the buffer of 1024 bytes holds";
    EXPECT_EQ(value, u"");
    value = u"old";
    EXPECT_FALSE(about_.GetKeyValue(platform::kHkeyLocalMachine, u"NoSuchKey", u"v", value));
    EXPECT_EQ(value, u"");
    EXPECT_EQ(registry_.open_keys, 0);
}

}  // namespace
}  // namespace vex::test
