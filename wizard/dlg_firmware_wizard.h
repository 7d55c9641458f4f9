// The firmware update wizard: five steps that collect what to do, which displays and which firmware file.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>

#include "forms/common_dialog.h"
#include "forms/form.h"
#include "host/class_library.h"
#include "support/services.h"

namespace vex {

/// Made anew for every start of the feature and shown modally; used on the apartment's thread.
class dlgFirmwareWizard final : public forms::Form {
public:
    /// Shows the apartment's About box over the given form.
    using ShowAbout = std::function<void(forms::Form& owner)>;

    /// `services` must outlive the wizard.
    dlgFirmwareWizard(const Services& services, ShowAbout show_about);

    /// The step shown, 1 to 5.
    std::int32_t CurrentStep = 1;
    /// The names of the displays chosen, joined by ","; what the run is handed.
    std::u16string SelectedDisplays;

private:
    /// The sub-items of `lstvDisplays`.
    enum DisplayColumn : std::size_t { kTypeColumn, kPortColumn, kBaudColumn, kPhoneColumn };

    /// What one step of the wizard needs to know of itself.
    struct Step {
        std::int32_t number;
        forms::Shape& node;
    };

    void Form_Load() override;

    // Steps and navigation.
    void InitStepPages();
    void ShowStep(std::int32_t step);
    void RefreshStep();
    void UpdateOptionSections();
    /// x and y in twips of the navigation tree.
    void HitTestNavTree(float x, float y);
    void cmdNext_Click();
    void cmdBack_Click();
    void picNavTree_MouseDown(float x, float y);

    // Display selection.
    void cmdChooseDisplay_Click();
    void ChooseDisplays();
    void UpdateStepButtons(std::int32_t step);
    bool CanEnterStep(std::int32_t step);
    void PreselectRecentDisplay(const host::HostDisplayList& displays);
    /// Raises 35602 for a name that is listed already. An empty name is listed as often as it comes.
    void AddDisplayRow(const std::u16string& name, const host::HostDisplayList& displays);

    // Firmware file selection.
    void cmdFirmwareBrowse_Click();

    // Sign-type rules.
    /// Whether the first listed display has a TQ-1 board, by its type text.
    bool IsFirstDisplayTQ1() const;
    /// Whether firmware is to be loaded to displays of different types; updates what shows it.
    bool CheckSignTypes();

    // Finish.
    void FinishWizard();
    void WriteDownloaderSettings();

    void LayOut();
    void ConnectEvents();

    const Services& services_;
    ShowAbout show_about_;

    forms::Panel picNavTree;
    forms::Shape shpNavNodeStart, shpNavNodeChooseOpt, shpNavNodesChooseDest, shpNavNodePickFiles, shpNavNodesFinish;
    forms::Label lblStart, lblChooseOptions, lblChooseDest, lblPickFiles, lblFinish;
    forms::Line lnStartFinish, lnStartHorz, lnfileDir, lnFinishHorz;
    forms::TabPages SSTab1;
    forms::Button cmdAbout, cmdCancel, cmdBack, cmdNext, cmdFinish;

    forms::Label lbFirmwareWizardStart, lblStartFraInfoFirmware;

    forms::Label lblOptionCapt;
    forms::OptionButton optJustResetDisplays, opLoadFirmware;

    forms::Label lblChooseDisplayInfo;
    forms::Button cmdChooseDisplay;
    forms::ListView lstvDisplays;
    forms::Label lblSignMismatchWarning;

    forms::Panel picFirmwareFileSect;
    forms::Label lblChooseFirmWareInfo;
    forms::TextBox txtFirmwareFilename;
    forms::Button cmdFirmwareBrowse;
    forms::Label lblFirmwareFileNotification, lblSHXName, lblFrimNoNeedJReset;
    forms::CheckBox chkUseExternalApp;
    forms::CommonDialog dlgCommon;

    forms::Label lblFinishInfo, lblFinsihResetAndClear, lblFinishLoadFirmware;
};

}  // namespace vex
