// Pictures of every page and dialog, compared with approved ones. VEX_RECORD=1 renews those.
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <string_view>

#include <gtest/gtest.h>

#include "about/frm_about.h"
#include "platform/native/machine.h"
#include "platform/native/terminal/terminal_toolkit.h"
#include "tests/terminal/fake_screen.h"
#include "update/dlg_disp_updater.h"
#include "update/dlg_handle_sign_option.h"
#include "wizard/dlg_firmware_wizard.h"

namespace vex::platform::native::terminal {

namespace {

const IconCharacters kIcons = {
    {"NOTUPDATED", U'·'}, {"UPDATING", U'→'}, {"UPDATED", U'✓'}, {"FAILED", U'✗'}, {"CANCELLED", U'○'}};

void compare(const std::string& name, const std::string& picture) {
    const std::filesystem::path file = std::filesystem::path(VEX_PICTURES) / (name + ".txt");
    if (std::getenv("VEX_RECORD") != nullptr) {
        std::ofstream(file, std::ios::binary) << picture;
        return;
    }
    std::ostringstream approved;
    approved << std::ifstream(file, std::ios::binary).rdbuf();
    EXPECT_TRUE(approved.str() == picture) << "The approved picture is\n"
                                           << approved.str() << "\nbut now it is\n"
                                           << picture;
}

class Pictures : public testing::Test {
protected:
    /// The dialogs are drawn as designed and filled by hand: the host that fills them is not here.
    template <class Control>
    static Control& get(forms::Form& form, std::string_view name) {
        return static_cast<Control&>(*form.find(name));
    }
    void show_page(forms::Form& wizard, std::int16_t page) {
        get<forms::TabPages>(wizard, "SSTab1").set_tab(page);
        constexpr std::string_view kNodes[] = {"shpNavNodeStart", "shpNavNodeChooseOpt", "shpNavNodesChooseDest",
                                               "shpNavNodePickFiles", "shpNavNodesFinish"};
        for (std::int16_t node = 0; node < 5; ++node) {
            get<forms::Shape>(wizard, kNodes[node]).set_fill_color(node == page ? forms::kGreen : forms::kGrey);
        }
        get<forms::Button>(wizard, "cmdBack").set_enabled(page > 0);
        get<forms::Button>(wizard, "cmdNext").set_enabled(page < 4);
    }
    std::string picture(forms::Form& form) { return text_picture(picture_of(form, kIcons).canvas); }
    std::string picture_with_styles(forms::Form& form) {
        const FormPicture drawn = picture_of(form, kIcons);
        return text_picture(drawn.canvas) + "\n" + style_picture(drawn.canvas);
    }

    FakeScreen screen;
    NoDrives drives;
    TerminalToolkit toolkit{screen, drives, kIcons};
    com::ModuleLifetime module;
    Services services{.toolkit = toolkit,
                      .registry = native::registry(),
                      .files = native::files(),
                      .processes = native::processes(),
                      .code_page = native::code_page(),
                      .module = module,
                      .module_folder = u"C:\\Brivola"};
};

TEST_F(Pictures, WizardPages) {
    dlgFirmwareWizard wizard(services, {});
    get<forms::Button>(wizard, "cmdFinish").set_enabled(false);
    show_page(wizard, 0);
    compare("wizard-1-start", picture(wizard));
    show_page(wizard, 1);
    compare("wizard-2-options", picture(wizard));

    get<forms::OptionButton>(wizard, "opLoadFirmware").set_value(true);
    auto& displays = get<forms::ListView>(wizard, "lstvDisplays");
    const std::u16string rows[][5] = {{u"Platform 1", u"TQ-1 - Alpha", u"COM1", u"38400", u""},
                                      {u"北口 時刻表", u"Solaris 4x16", u"COM2", u"9600", u""},
                                      {u"Café Müller", u"Solaris 4x16", u"COM3", u"9600", u"+49 30 5550199"}};
    for (const auto& cells : rows) {
        const std::size_t row = displays.add_row(cells[0], cells[0]);
        for (std::size_t i = 1; i < 5; ++i) displays.set_sub_item(row, i - 1, cells[i]);
    }
    displays.select(1);
    get<forms::Label>(wizard, "lblSignMismatchWarning").set_visible(true);
    show_page(wizard, 2);
    get<forms::Button>(wizard, "cmdNext").set_enabled(false);
    compare("wizard-3-displays", picture_with_styles(wizard));

    show_page(wizard, 3);
    get<forms::TextBox>(wizard, "txtFirmwareFilename").set_text(u"C:\\Brivola\\bin\\Firmware\\SIGN 4.3.SHX");
    get<forms::CheckBox>(wizard, "chkUseExternalApp").set_visible(true);
    compare("wizard-4-firmware", picture(wizard));

    show_page(wizard, 4);
    get<forms::Button>(wizard, "cmdFinish").set_enabled(true);
    compare("wizard-5-finish", picture(wizard));
}

TEST_F(Pictures, RunWithEveryStatus) {
    dlgDispUpdater run(services);
    auto& list = get<forms::ListView>(run, "lstvDisplayStatus");
    const struct {
        const char16_t* name;
        const char16_t* icon;
        const char16_t* status;
        forms::Color color;
    } rows[] = {{u"Platform 1", u"Updated", u"Updated - ", forms::rgb(100, 255, 100)},
                {u"Platform 2", u"FAILED", u"FAILED - Unable to open connection to display!", forms::kRed},
                {u"北口 時刻表", u"Updating", u"Updating - ", forms::rgb(100, 255, 100)},
                {u"Café Müller", u"Cancelled", u"Cancelled - ", forms::kRed},
                {u"Exit", u"Not Updated", u"Not Updated", forms::kBlack}};
    for (const auto& one : rows) {
        const std::size_t row = list.add_row({}, one.name, one.icon);
        list.set_sub_item(row, 0, one.status);
        list.set_row_color(row, one.color);
        list.set_cell_color(row, 0, one.color);
    }
    compare("run", picture_with_styles(run));
}

TEST_F(Pictures, Session) {
    dlgHandleSignOption session(services);
    get<forms::Label>(session, "lblStatus").set_caption(u"Preparing to Open Connection to Display!");
    get<forms::Label>(session, "lblDisplayName").set_caption(u"Platform 1");
    get<forms::Label>(session, "lblID").set_caption(u"12");
    compare("session", picture(session));
}

TEST_F(Pictures, About) {
    frmAbout about(services);
    screen.key(Key::escape, [this] { compare("about", screen.picture()); });
    about.show_modal();
}

}  // namespace
}  // namespace vex::platform::native::terminal
