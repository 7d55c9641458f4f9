// The wizard: what it shows, asks of the host and hands on, in order.
#include "wizard/dlg_firmware_wizard.h"

#include <gmock/gmock.h>

#include <numeric>

#include "core/unicode.h"
#include "support/mod_reg_access.h"
#include "support/registry_routines.h"
#include "tests/shared/error_of.h"
#include "tests/shared/notebook.h"

namespace vex::test {
namespace {

class Wizard : public RecordedFixture {
protected:
    Wizard() {
        notebook.omitted = {"HostDisplayList", "vexDispTrans",        "vexLANBoxFinder2",
                            "HostConnection",  "dlgHandleSignOption", "dlgDispUpdater"};
        // The display found last is the current one, with the fields of all where it has none of its own.
        host.during["HostDisplayList.FindDisplay"] = [this](DISPPARAMS& given) {
            found_ = com::view(*given.rgvarg[0].pbstrVal);
            host.answers["HostDisplayList.FindDisplay"] = com::Variant::int32(1);
        };
        host.during["HostDisplayList.SelectDisplay"] = [this](DISPPARAMS&) {
            display({{"SignTypeCode", u"12"},
                     {"ConnectionType", u"1"},
                     {"DisplayTypeName", u"Z180 Sign"},
                     {"ComPort", u"COM1"},
                     {"ComBaud", u"9600"},
                     {"PhoneNumber", u"555"},
                     {"SignIDs", u"7"},
                     {"FirmwareVersion", u"1.50"}});
            display(displays[found_]);
        };
    }

    void pick(std::u16string_view names) {
        host.answers["HostDisplayPicker.ShowDisplayPicker"] = com::Variant::text(names);
    }

    /// What the user does: clicks on controls by their names; "@X,Y" is a press in the tree, "=TEXT" what he types as
    /// the file's name, "?NAMES" what he will pick, "--" forgets what has been written down so far. Answers what has
    /// been written down.
    std::string play(const std::vector<std::string>& steps) {
        screen.acts.clear();
        for (const std::string& step : steps) {
            screen.acts.push_back([this, step](forms::Form& form) {
                if (step == "--") {
                    notebook.take();
                } else if (step[0] == '@') {
                    form.raise_mouse_down(*form.find("picNavTree"), forms::MouseButton::right,
                                          std::stof(step.substr(1)), std::stof(step.substr(step.find(',') + 1)));
                } else if (step[0] == '=') {
                    form.user_text(static_cast<forms::TextBox&>(*form.find("txtFirmwareFilename")),
                                   from_utf8(step.substr(1)));
                } else if (step[0] == '?') {
                    pick(from_utf8(step.substr(1)));
                } else if (forms::Control* control = form.find(step)) {
                    form.raise_click(*control);
                }
            });
        }
        dlgFirmwareWizard wizard(services,
                                 [this](forms::Form& owner) { notebook.line("", "about over " + owner.name()); });
        wizard.show_modal();
        EXPECT_FALSE(wizard.loaded());
        EXPECT_EQ(wizard.find("SSTab1")->tab_index(), 1);
        return notebook.take();
    }

    /// The values that the external tool finds, a line each, in the order of their names.
    std::string tool_settings() const {
        RegistryRoutines routines(services.registry);
        std::set<std::string> lines;
        for (const auto& [name, value] :
             routines.EnumRegistryValues(platform::kHkeyCurrentUser, u"Software\\Tarvex\\nvSerDownload\\Settings"))
            lines.insert(to_utf8(name + u'=' + value.to_text()) + '\n');
        return std::accumulate(lines.begin(), lines.end(), std::string());
    }

    std::map<std::u16string, std::map<std::string, std::u16string>> displays;

private:
    std::u16string found_;
};

TEST_F(Wizard, ResettingSkipsTheFirmwareStep) {
    notebook.omitted.erase("HostDisplayList");
    pick(u"A, B");
    displays[u" B"] = {{"DisplayTypeName", u"Other"}, {"ComPort", u"COM2"}, {"ComBaud", u""}, {"PhoneNumber", u""}};
    EXPECT_EQ(
        play({"cmdNext", "cmdNext", "cmdChooseDisplay", "cmdNext", "cmdBack", "cmdAbout", "cmdFinish", "cmdClose"}),
        log(R"(
HostDisplayList new OpenDisplayFile(&"Displays.dat")
open dlgFirmwareWizard
set shpNavNodeStart=00FF00 shpNavNodeChooseOpt=808080 shpNavNodesChooseDest=808080 shpNavNodePickFiles=808080 shpNavNodesFinish=808080 lblSignMismatchWarning=hidden picFirmwareFileSect=hidden chkUseExternalApp=hidden lblFinishLoadFirmware=hidden cmdBack=off cmdFinish=off
set SSTab1=1 shpNavNodeStart=808080 shpNavNodeChooseOpt=00FF00
HostDisplayList new OpenDisplayFile(&"Displays.dat")
set cmdBack=on
set SSTab1=2 shpNavNodesChooseDest=00FF00 shpNavNodeChooseOpt=808080
HostDisplayList new OpenDisplayFile(&"Displays.dat")
HostDisplayPicker new ShowDisplayPicker()
HostDisplayList new OpenDisplayFile(&"Displays.dat") FindDisplay(&"A") SelectDisplay(I4 1)
lstvDisplays[0] "A" key "A" tag "" "Z180 Sign" "COM1" "9600" "555"
HostDisplayList FindDisplay(&" B") SelectDisplay(I4 1)
lstvDisplays[1] " B" key " B" tag "" "Other" "COM2"
HostDisplayList new OpenDisplayFile(&"Displays.dat")
set cmdFinish=on
set SSTab1=4 shpNavNodesChooseDest=808080 shpNavNodesFinish=00FF00
HostDisplayList new OpenDisplayFile(&"Displays.dat")
set cmdNext=off
set SSTab1=2 shpNavNodesChooseDest=00FF00 shpNavNodesFinish=808080
HostDisplayList new OpenDisplayFile(&"Displays.dat")
set cmdNext=on
about over dlgFirmwareWizard
HostDisplayList new OpenDisplayFile(&"Displays.dat")
HostDisplayList FindDisplay(&"A") SelectDisplay(I4 1)
HostDisplayList FindDisplay(&" B") SelectDisplay(I4 1)
close dlgFirmwareWizard
)"));
}

TEST_F(Wizard, LoadingRabbitFirmwareReadiesTheExternalTool) {
    pick(u"A,B");
    displays[u"A"] = {{"DisplayTypeName", u"tq-1 - Street"}, {"ComPort", u"COM3"}};
    displays[u"B"] = displays[u"A"];
    WriteHostSetting(services, u"Brivola3", u"Settings", u"AppPath", u"C:\\Host");
    screen.file = u"D:\\fw\\new.bin";
    EXPECT_EQ(play({"cmdNext", "--", "opLoadFirmware", "cmdNext", "cmdChooseDisplay", "cmdNext", "cmdFirmwareBrowse",
                    "chkUseExternalApp", "cmdNext", "cmdBack", "cmdFinish", "cmdClose"}),
              log(R"(
set opLoadFirmware=changed optJustResetDisplays=changed
set SSTab1=2 shpNavNodesChooseDest=00FF00 shpNavNodeChooseOpt=808080 cmdNext=off picFirmwareFileSect=shown lblFinishLoadFirmware=shown
HostDisplayPicker new ShowDisplayPicker()
lstvDisplays[0] "A" key "A" tag "" "tq-1 - Street" "COM3" "9600" "555"
lstvDisplays[1] "B" key "B" tag "" "tq-1 - Street" "COM3" "9600" "555"
lblFirmwareFileNotification: This file will be in Rabbit BIN format.
set chkUseExternalApp=shown cmdNext=on
set SSTab1=3 shpNavNodePickFiles=00FF00 shpNavNodesChooseDest=808080 cmdNext=off
choose file in "C:\Host\bin\Firmware" named "" "Rabbit Files(*.BIN)|*.BIN" 081000
txtFirmwareFilename: D:\fw\new.bin
set cmdNext=on cmdFinish=on
set chkUseExternalApp=changed
set SSTab1=4 shpNavNodePickFiles=808080 shpNavNodesFinish=00FF00 cmdNext=off
set SSTab1=3 shpNavNodePickFiles=00FF00 shpNavNodesFinish=808080 cmdNext=on
is there C:\Host\\BIN\FIRMWARE\nvSerDownload.exe
start C:\Host\\BIN\FIRMWARE\nvSerDownload.exe
is there C:\Host\\BIN\FIRMWARE\nvSerDownload.exe
start C:\Host\\BIN\FIRMWARE\nvSerDownload.exe
close dlgFirmwareWizard
)"));
    EXPECT_EQ(tool_settings(), log(R"(
Com Baud=9600
Com Port=COM3:
Phone Number=555
RAM File=C:\Host\BIN\FIRMWARE\SL-RCM2000B.BIN
ROM File=D:\fw\new.bin
)"));
    EXPECT_EQ(ReadHostSetting(services, u"Brivola3", u"Firmware", u"LastFilePath", u""), u"D:\\fw");
    EXPECT_EQ(registry.writes, 7) << "these, and AppPath above";
    // Only resetting, too; what the tool could not use stays as it was.
    displays[u"A"] = {{"DisplayTypeName", u"TQ-1 - X"}, {"ComPort", u"COm1"}, {"ComBaud", u"0 baud"}};
    pick(u"A");
    play({"cmdNext", "cmdNext", "cmdChooseDisplay", "cmdFinish", "cmdClose"});
    EXPECT_EQ(tool_settings(), "Com Baud=9600\nCom Port=COM3:\nPhone Number=555\n"
                               "RAM File=C:\\Host\\BIN\\FIRMWARE\\SL-RCM2000B.BIN\nROM File=\n");
}

TEST_F(Wizard, EveryChoiceReachesTheSession) {
    notebook.omitted.erase("vexDispTrans");
    pick(u"A");
    const auto handed_on = [this](const char16_t* type, const std::vector<std::string>& steps) {
        displays[u"A"] = {{"DisplayTypeName", type}};
        std::vector<std::string> all = {"cmdNext", "opLoadFirmware", "cmdNext", "cmdChooseDisplay", "cmdNext"};
        all.insert(all.end(), steps.begin(), steps.end());
        all.insert(all.end(), {"cmdFinish", "cmdClose"});
        return play(all);
    };
    EXPECT_THAT(handed_on(u"Z180 Sign", {"=D:\\a.SHX", "@800,2000"}),
                testing::HasSubstr("DownloadFirmware(&\"D:\\a.SHX\")"));
    EXPECT_THAT(handed_on(u"TQ-1 - X", {"=D:\\a.BIN", "@800,2000"}),
                testing::HasSubstr("DownloadFirmwareWithLoader(&\"D:\\a.BIN\", "));
    EXPECT_THAT(handed_on(u"TQ-1 - X", {"=D:\\a.BIN", "@800,2000", "chkUseExternalApp"}), testing::HasSubstr("start "));
    EXPECT_THAT(handed_on(u"TQ-1 - X", {"=D:\\a.BIN", "@700,900", "optJustResetDisplays", "cmdNext"}),
                testing::HasSubstr("ResetAndClear()"));
    // The tick is handed on while its box is hidden.
    const std::string hidden = handed_on(
        u"TQ-1 - X", {"=D:\\a.BIN", "chkUseExternalApp", "cmdBack", "--", "?B", "cmdChooseDisplay", "cmdBack",
                      "optJustResetDisplays", "cmdNext", "?A", "cmdChooseDisplay", "cmdBack", "opLoadFirmware"});
    EXPECT_THAT(hidden, testing::HasSubstr("chkUseExternalApp=hidden"));
    EXPECT_THAT(hidden, testing::Not(testing::HasSubstr("chkUseExternalApp=shown")));
    EXPECT_THAT(hidden, testing::HasSubstr("start "));
}

TEST_F(Wizard, DifferentTypesAreWarnedOfAndBlockTheWayUnlessOnlyResetting) {
    pick(u"A,B,C");
    displays[u"C"] = {{"DisplayTypeName", u"z180 sign"}};
    EXPECT_EQ(play({"cmdNext", "opLoadFirmware", "cmdNext", "--", "cmdChooseDisplay", "cmdNext", "@700,900",
                    "optJustResetDisplays", "cmdNext", "cmdNext"}),
              log(R"(
HostDisplayPicker new ShowDisplayPicker()
lstvDisplays[0] "A" key "A" tag "" "Z180 Sign" "COM1" "9600" "555"
lstvDisplays[1] "B" key "B" tag "" "Z180 Sign" "COM1" "9600" "555"
lstvDisplays[2] "C" key "C" tag "" "z180 sign" "COM1" "9600" "555"
set lblSignMismatchWarning=shown
set SSTab1=1 shpNavNodesChooseDest=808080 shpNavNodeChooseOpt=00FF00 cmdNext=on
set optJustResetDisplays=changed opLoadFirmware=changed
set SSTab1=2 shpNavNodesChooseDest=00FF00 shpNavNodeChooseOpt=808080 lblSignMismatchWarning=hidden cmdFinish=on picFirmwareFileSect=hidden lblFinishLoadFirmware=hidden
set SSTab1=4 shpNavNodesChooseDest=808080 shpNavNodesFinish=00FF00 cmdNext=off
close dlgFirmwareWizard
)"));
    EXPECT_EQ(registry.writes, 0) << "nothing is written before the end";
}

TEST_F(Wizard, TheTreeLeadsStraightToAStepOrBeeps) {
    pick(u"A");
    EXPECT_EQ(play({"@390,600", "--", "@800,1000", "cmdBack", "@800,1500", "@800,2000", "@390,600", "@800,2000",
                    "@390,2480", "cmdChooseDisplay", "@800,1500", "cmdChooseDisplay", "@390,600", "@390,2480"}),
              log(R"(
set SSTab1=1 shpNavNodeStart=808080 shpNavNodeChooseOpt=00FF00 cmdBack=on
set SSTab1=0 shpNavNodeStart=00FF00 shpNavNodeChooseOpt=808080 cmdBack=off
set SSTab1=2 shpNavNodeStart=808080 shpNavNodesChooseDest=00FF00 cmdBack=on
set SSTab1=3 shpNavNodePickFiles=00FF00 shpNavNodesChooseDest=808080 cmdNext=off
set SSTab1=0 shpNavNodeStart=00FF00 shpNavNodePickFiles=808080 cmdBack=off cmdNext=on
set SSTab1=3 shpNavNodeStart=808080 shpNavNodePickFiles=00FF00 cmdBack=on cmdNext=off
beep
set SSTab1=2 shpNavNodePickFiles=808080 shpNavNodesChooseDest=00FF00 cmdNext=on
HostDisplayPicker new ShowDisplayPicker()
lstvDisplays[0] "A" key "A" tag "" "Z180 Sign" "COM1" "9600" "555"
set cmdFinish=on
set SSTab1=0 shpNavNodeStart=00FF00 shpNavNodesChooseDest=808080 cmdBack=off
set SSTab1=4 shpNavNodeStart=808080 shpNavNodesFinish=00FF00 cmdBack=on cmdNext=off
close dlgFirmwareWizard
)"));
    // Edges belong to no node, and labels take the press.
    for (const char* edge : {"@225,600", "@555,600", "@390,465", "@390,750", "@390,2625", "@100,100"})
        EXPECT_EQ(play({"--", edge}), "beep\nclose dlgFirmwareWizard\n") << edge;
    for (const char* inside : {"@226,466", "@554,749"})
        EXPECT_EQ(play({"--", inside}), "close dlgFirmwareWizard\n") << inside;
    EXPECT_EQ(play({"--", "@1100,2400"}), "close dlgFirmwareWizard\n");
}

TEST_F(Wizard, ARefusedStepStillChecksTheTypesAndButtonsStandUntilTheNextRefresh) {
    pick(u"A");
    displays[u"A"] = {{"DisplayTypeName", u"TQ-1 - X"}};
    EXPECT_EQ(
        play({"cmdNext", "cmdNext", "cmdChooseDisplay", "cmdBack", "opLoadFirmware", "--", "@390,2480"}),
        "lblFirmwareFileNotification: This file will be in Rabbit BIN format.\nset chkUseExternalApp=shown\nbeep\n"
        "close dlgFirmwareWizard\n");
    displays.clear();
    notebook.omitted.erase("dlgDispUpdater");
    // A bare ending is a name. Next is refused silently, and Finish does not check again.
    screen.file = u"SHX";
    EXPECT_THAT(play({"cmdNext", "opLoadFirmware", "cmdNext", "cmdChooseDisplay", "cmdNext", "cmdFirmwareBrowse",
                      "@800,2000", "=", "--", "cmdNext", "cmdFinish"}),
                testing::StartsWith("open dlgDispUpdater"));
}

TEST_F(Wizard, AnswersOfThePickerAreTakenAsTheyAre) {
    notebook.omitted.erase("HostDisplayList");
    // An empty name is no key. An empty answer changes nothing, but the step is shown again.
    EXPECT_EQ(play({"cmdNext", "cmdNext", "--", "?,,B", "cmdChooseDisplay", "?", "cmdChooseDisplay"}), log(R"(
HostDisplayPicker new ShowDisplayPicker()
HostDisplayList new OpenDisplayFile(&"Displays.dat") FindDisplay(&"") SelectDisplay(I4 1)
lstvDisplays[0] "Z180 Sign" "COM1" "9600" "555"
HostDisplayList FindDisplay(&"") SelectDisplay(I4 1)
lstvDisplays[1] "Z180 Sign" "COM1" "9600" "555"
HostDisplayList FindDisplay(&"B") SelectDisplay(I4 1)
lstvDisplays[2] "B" key "B" tag "" "Z180 Sign" "COM1" "9600" "555"
HostDisplayList new OpenDisplayFile(&"Displays.dat")
set cmdFinish=on
HostDisplayPicker new ShowDisplayPicker()
HostDisplayList new OpenDisplayFile(&"Displays.dat") new OpenDisplayFile(&"Displays.dat")
close dlgFirmwareWizard
)"));
    const auto error = [this](const char* answer) {
        return error_of([&] { play({"cmdNext", "cmdNext", answer, "cmdChooseDisplay"}); });
    };
    EXPECT_EQ(error("?A,A"), kListKeyNotUnique);
    displays[u"A"] = {{"SignTypeCode", u"12x"}};
    EXPECT_EQ(error("?A"), kTypeMismatch);
}

TEST_F(Wizard, TheRecentDisplaysNameIsOneInTheListAndTwoInTheRun) {
    notebook.omitted.erase("dlgDispUpdater");
    WriteHostSetting(services, u"BrivolaLite", u"RecentDisplay", u"LastOpened", u"A,B");
    const std::string all = play({"cmdNext", "--", "cmdNext", "cmdFinish", "cmdClose"});
    EXPECT_THAT(all, testing::HasSubstr("lstvDisplays[0] \"A,B\""));
    EXPECT_THAT(all, testing::HasSubstr("lstvDisplayStatus[1] \"B\""));
    // Of TQ-1 boards that are to be loaded, those on the network are left to be chosen.
    displays[u"A,B"] = {{"SignTypeCode", u"165"}, {"ConnectionType", u"1"}};
    EXPECT_THAT(play({"cmdNext", "opLoadFirmware", "cmdNext"}), testing::HasSubstr("lstvDisplays[0] "));
    displays[u"A,B"] = {{"SignTypeCode", u"165"}, {"ConnectionType", u"2"}};
    std::vector<std::string> steps = {"cmdNext", "opLoadFirmware", "cmdNext"};
    EXPECT_THAT(play(steps), testing::Not(testing::HasSubstr("lstvDisplays[0] ")));
    // Only resetting they are listed, and once.
    steps.insert(steps.end(), {"cmdBack", "optJustResetDisplays", "cmdNext", "cmdBack", "cmdNext"});
    EXPECT_THAT(play(steps), testing::HasSubstr("lstvDisplays[0] "));
}

}  // namespace
}  // namespace vex::test
