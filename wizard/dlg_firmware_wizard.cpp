// The wizard's frame: its steps, the navigation tree and the buttons.
#include "wizard/dlg_firmware_wizard.h"

#include <utility>

namespace vex {
namespace {

constexpr std::int32_t kFirmwareStep = 4;

/// Strictly inside: a point on the edge is outside. Sums are single precision, as the coordinates are.
bool contains(const forms::Rect& node, float x, float y) {
    const auto left = static_cast<float>(node.left);
    const auto top = static_cast<float>(node.top);
    const float right = left + static_cast<float>(node.width);
    const float bottom = top + static_cast<float>(node.height);
    return left < x && right > x && top < y && bottom > y;
}

}  // namespace

dlgFirmwareWizard::dlgFirmwareWizard(const Services& services, ShowAbout show_about)
    : Form(services.toolkit, {.name = "dlgFirmwareWizard",
                              .caption = u"Firmware Update Wizard",
                              .width = 7785,
                              .height = 4065,
                              .icon = "WIZARD"}),
      services_(services),
      show_about_(std::move(show_about)),
      dlgCommon(services.toolkit) {
    LayOut();
    ConnectEvents();
}

void dlgFirmwareWizard::ConnectEvents() {
    // The options, the check box, the list and the file name have no handlers on purpose: the buttons and
    // sections follow a changed choice at the next step change or refresh, not before.
    cmdNext.on_click = [this] { cmdNext_Click(); };
    cmdBack.on_click = [this] { cmdBack_Click(); };
    cmdFinish.on_click = [this] { FinishWizard(); };
    cmdCancel.on_click = [this] { unload(); };
    cmdAbout.on_click = [this] { show_about_(*this); };
    cmdChooseDisplay.on_click = [this] { cmdChooseDisplay_Click(); };
    cmdFirmwareBrowse.on_click = [this] { cmdFirmwareBrowse_Click(); };
    // Whatever the button.
    picNavTree.on_mouse_down = [this](forms::MouseButton, float x, float y) { picNavTree_MouseDown(x, y); };
}

void dlgFirmwareWizard::Form_Load() {
    CurrentStep = 1;
    InitStepPages();
    ShowStep(CurrentStep);
}

void dlgFirmwareWizard::InitStepPages() { SSTab1.set_tab_index(1); }

void dlgFirmwareWizard::ShowStep(std::int32_t step) {
    SSTab1.set_tab(static_cast<std::int16_t>(step - 1));
    const Step nodes[] = {{1, shpNavNodeStart},
                          {4, shpNavNodePickFiles},
                          {3, shpNavNodesChooseDest},
                          {5, shpNavNodesFinish},
                          {2, shpNavNodeChooseOpt}};
    for (const Step& node : nodes) node.node.set_fill_color(node.number == step ? forms::kGreen : forms::kGrey);
    UpdateStepButtons(step);
    UpdateOptionSections();
    CurrentStep = step;
}

void dlgFirmwareWizard::RefreshStep() { ShowStep(CurrentStep); }

void dlgFirmwareWizard::UpdateOptionSections() {
    const bool load = opLoadFirmware.value();
    picFirmwareFileSect.set_visible(load);
    lblFinishLoadFirmware.set_visible(load);
    lblFinsihResetAndClear.set_visible(true);
    CheckSignTypes();
}

void dlgFirmwareWizard::cmdNext_Click() {
    if (!CanEnterStep(CurrentStep + 1)) return;
    ++CurrentStep;
    // The step landed on by skipping is not checked again.
    if (CurrentStep == kFirmwareStep && !opLoadFirmware.value()) CurrentStep = kFirmwareStep + 1;
    RefreshStep();
}

void dlgFirmwareWizard::cmdBack_Click() {
    if (!CanEnterStep(CurrentStep - 1)) return;
    --CurrentStep;
    if (CurrentStep == kFirmwareStep && !opLoadFirmware.value()) CurrentStep = kFirmwareStep - 1;
    RefreshStep();
}

void dlgFirmwareWizard::picNavTree_MouseDown(float x, float y) { HitTestNavTree(x, y); }

void dlgFirmwareWizard::HitTestNavTree(float x, float y) {
    std::int32_t hit = 0;
    const Step nodes[] = {{1, shpNavNodeStart},
                          {2, shpNavNodeChooseOpt},
                          {4, shpNavNodePickFiles},
                          {3, shpNavNodesChooseDest},
                          {5, shpNavNodesFinish}};
    for (const Step& node : nodes) {
        if (contains(node.node.place(), x, y)) hit = node.number;
    }
    if (!CanEnterStep(hit)) {
        services_.toolkit.beep();
        return;
    }
    // Kept: unlike Next and Back, the tree does not skip the firmware step when only resetting.
    CurrentStep = hit;
    ShowStep(CurrentStep);
}

}  // namespace vex
