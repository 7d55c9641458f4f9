// The wizard's control table: what stands where, in twips, and what it says.
#include "wizard/dlg_firmware_wizard.h"

namespace vex {
namespace {

constexpr forms::Font kArialText{u"Arial", 9.75};
constexpr forms::Font kArialSmall{u"Arial", 8.25};
constexpr forms::Font kTahomaSmall{u"Tahoma", 8.25};

enum Page { kStartPage, kOptionsPage, kDisplayPage, kFirmwarePage, kFinishPage };

}  // namespace

void dlgFirmwareWizard::LayOut() {
    using forms::kBlue;
    using forms::kDarkGrey;
    using forms::kRed;
    using forms::kWhite;

    SSTab1.captions = {u"Start", u"Options", u"Display", u"Firmware", u"Finish"};
    lstvDisplays.columns = {
        {u"Display Name", 1350}, {u"Display Type", 1200}, {u"Com Port", 870}, {u"Com Baud", 960}, {u"Phone", 1200}};
    cmdNext.is_default = true;
    cmdCancel.is_cancel = true;

    forms::Control* const tree = &picNavTree;
    forms::Control* const pages = &SSTab1;
    forms::Control* const file = &picFirmwareFileSect;

    lay_out({
        // The navigation tree: the trunk joins start and finish, the branch holds the three steps between.
        {.control = picNavTree, .name = "picNavTree", .at = {0, 0, 2670, 3525}, .back = kDarkGrey},
        {.control = lnStartFinish, .name = "lnStartFinish", .parent = tree, .at = {390, 690, 0, 1710}, .fore = kWhite},
        {.control = lnStartHorz, .name = "lnStartHorz", .parent = tree, .at = {435, 615, 360, 0}, .fore = kWhite},
        {.control = lnfileDir, .name = "lnfileDir", .parent = tree, .at = {795, 615, 0, 1860}, .fore = kWhite},
        {.control = lnFinishHorz, .name = "lnFinishHorz", .parent = tree, .at = {480, 2475, 315, 0}, .fore = kWhite},
        {.control = shpNavNodeStart, .name = "shpNavNodeStart", .parent = tree, .at = {225, 465, 330, 285}},
        {.control = shpNavNodeChooseOpt, .name = "shpNavNodeChooseOpt", .parent = tree, .at = {630, 855, 330, 285}},
        {.control = shpNavNodesChooseDest, .name = "shpNavNodesChooseDest", .parent = tree,
         .at = {630, 1387, 330, 285}},
        {.control = shpNavNodePickFiles, .name = "shpNavNodePickFiles", .parent = tree, .at = {630, 1935, 330, 285}},
        {.control = shpNavNodesFinish, .name = "shpNavNodesFinish", .parent = tree, .at = {225, 2340, 330, 285}},
        {.control = lblStart, .name = "lblStart", .parent = tree, .at = {900, 495, 330, 195}, .text = u"Start",
         .fore = kWhite},
        {.control = lblChooseOptions, .name = "lblChooseOptions", .parent = tree, .at = {1050, 885, 1125, 195},
         .text = u"Choose Options", .fore = kWhite},
        {.control = lblChooseDest, .name = "lblChooseDest", .parent = tree, .at = {1050, 1425, 1095, 195},
         .text = u"Choose Display", .fore = kWhite},
        {.control = lblPickFiles, .name = "lblPickFiles", .parent = tree, .at = {1050, 1980, 1500, 195},
         .text = u"Choose Firmware File", .fore = kWhite},
        {.control = lblFinish, .name = "lblFinish", .parent = tree, .at = {1005, 2370, 405, 195}, .text = u"Finish",
         .fore = kWhite},

        // The pages: the strip of tabs lies above the client area, so that nobody can see or click it.
        {.control = SSTab1, .name = "SSTab1", .at = {2670, -330, 5115, 3855}, .tab_index = 5},

        {.control = lbFirmwareWizardStart, .name = "lbFirmwareWizardStart", .parent = pages, .page = kStartPage,
         .at = {240, 480, 4635, 300}, .text = u"Firmware Update Wizard", .font = kArialText},
        {.control = lblStartFraInfoFirmware, .name = "lblStartFraInfoFirmware", .parent = pages, .page = kStartPage,
         .at = {240, 930, 4635, 960},
         .text = u"This wizard steps you through the process of loading a new version of Firmware on your display or "
                 u"just resetting and clearing your display. ",
         .font = kArialText},

        {.control = lblOptionCapt, .name = "lblOptionCapt", .parent = pages, .page = kOptionsPage,
         .at = {240, 480, 4635, 300}, .text = u"Please choose from the following options:", .font = kArialText},
        {.control = optJustResetDisplays, .name = "optJustResetDisplays", .parent = pages, .page = kOptionsPage,
         .at = {240, 960, 4635, 540},
         .text = u"I only want to Reset and Clear my Displays. I don't need to load new firmware!", .tab_index = 6,
         .font = kArialText},
        {.control = opLoadFirmware, .name = "opLoadFirmware", .parent = pages, .page = kOptionsPage,
         .at = {240, 1620, 4635, 540},
         .text = u"I want to Reset and Clear my Displays. I also want to load a new version of Firmware!",
         .tab_index = 7, .font = kArialText},

        {.control = lblChooseDisplayInfo, .name = "lblChooseDisplayInfo", .parent = pages, .page = kDisplayPage,
         .at = {150, 420, 4815, 285}, .text = u"Please choose the display(s) to communicate with:",
         .font = kArialText},
        {.control = cmdChooseDisplay, .name = "cmdChooseDisplay", .parent = pages, .page = kDisplayPage,
         .at = {150, 750, 2880, 345}, .text = u"Click Here to &Choose Display(s)", .tab_index = 8},
        {.control = lstvDisplays, .name = "lstvDisplays", .parent = pages, .page = kDisplayPage,
         .at = {150, 1170, 4815, 1920}, .tab_index = 9, .font = kArialSmall, .accessible_name = u"Chosen displays"},
        {.control = lblSignMismatchWarning, .name = "lblSignMismatchWarning", .parent = pages, .page = kDisplayPage,
         .at = {150, 3180, 4815, 435},
         .text = u"WARNING: Sign types do not match and you are loading firmware! Try selecting one display at a time.",
         .fore = kRed, .visible = false},

        {.control = picFirmwareFileSect, .name = "picFirmwareFileSect", .parent = pages, .page = kFirmwarePage,
         .at = {60, 345, 4680, 2985}},
        {.control = lblChooseFirmWareInfo, .name = "lblChooseFirmWareInfo", .parent = file, .at = {150, 135, 4380, 510},
         .text = u"Please locate the Firmware you wish to upload to the display.", .font = kArialText},
        {.control = lblFirmwareFileNotification, .name = "lblFirmwareFileNotification", .parent = file,
         .at = {330, 840, 4140, 225}, .text = u"This file will be in Motorola SHX format.", .fore = kRed},
        {.control = txtFirmwareFilename, .name = "txtFirmwareFilename", .parent = file, .at = {330, 1155, 2670, 330},
         .tab_index = 10, .accessible_name = u"Firmware file"},
        {.control = cmdFirmwareBrowse, .name = "cmdFirmwareBrowse", .parent = file, .at = {3120, 1155, 1215, 330},
         .text = u"Browse...", .tab_index = 11, .font = kTahomaSmall},
        {.control = lblSHXName, .name = "lblSHXName", .parent = file, .at = {330, 1560, 4140, 225}, .fore = kBlue},
        {.control = lblFrimNoNeedJReset, .name = "lblFrimNoNeedJReset", .parent = file, .at = {330, 1935, 4140, 705},
         .text = u"Firmware is not needed to just reset the display! If you do not want to load firmware, hit Back and "
                 u"make the appropriate choice!",
         .fore = kRed},
        // Outside the section: it stays when the section is hidden.
        {.control = chkUseExternalApp, .name = "chkUseExternalApp", .parent = pages, .page = kFirmwarePage,
         .at = {60, 3390, 4980, 285},
         .text = u"Use External Application to Download (For Advanced Users Only)", .tab_index = 12,
         .font = kArialSmall, .visible = false},

        {.control = lblFinishInfo, .name = "lblFinishInfo", .parent = pages, .page = kFinishPage,
         .at = {240, 480, 4635, 300}, .text = u"When you click Finsh, Firmware Update Wizard will:",
         .font = kArialText},
        {.control = lblFinsihResetAndClear, .name = "lblFinsihResetAndClear", .parent = pages, .page = kFinishPage,
         .at = {480, 960, 4395, 300}, .text = u"- Reset and Clear all the Displays selected", .font = kArialText},
        {.control = lblFinishLoadFirmware, .name = "lblFinishLoadFirmware", .parent = pages, .page = kFinishPage,
         .at = {480, 1380, 4395, 300}, .text = u"- Load Firmware to Displays Selected", .font = kArialText},

        {.control = cmdAbout, .name = "cmdAbout", .at = {60, 3645, 660, 315}, .text = u"About", .tab_index = 4},
        {.control = cmdCancel, .name = "cmdCancel", .at = {3630, 3645, 825, 315}, .text = u"Cancel", .tab_index = 3},
        {.control = cmdBack, .name = "cmdBack", .at = {4605, 3645, 825, 315}, .text = u"< Back", .tab_index = 2},
        {.control = cmdNext, .name = "cmdNext", .at = {5415, 3645, 825, 315}, .text = u"Next >", .tab_index = 1},
        {.control = cmdFinish, .name = "cmdFinish", .at = {6360, 3645, 825, 315}, .text = u"Finish", .tab_index = 0},
    });
    optJustResetDisplays.set_value(true);
}

}  // namespace vex
