// The entry class.
#include "plugin/vex_firm_ware_util.h"

#include "com/bstr.h"
#include "plugin/module.h"
#include "wizard/dlg_firmware_wizard.h"

namespace vex::plugin {
namespace {

HRESULT give_first(const ModuleData::Table ModuleData::*table, BSTR* result) noexcept {
    if (result == nullptr) return E_POINTER;
    *result = nullptr;
    return guarded_method(kFirmWareUtilInterface.id,
                          [&] { *result = com::allocate_bstr((module_data().*table).front()); });
}

HRESULT give_false(VARIANT_BOOL* result) noexcept {
    if (result == nullptr) return E_POINTER;
    *result = VARIANT_FALSE;
    return S_OK;
}

}  // namespace

vexFirmWareUtil::vexFirmWareUtil() : AutomationObject(module_lifetime()) {}

HRESULT vexFirmWareUtil::run_wizard() noexcept {
    // The host may release the object while the wizard is open; the library must stay all the same.
    const com::ComPtr<IvexFirmWareUtil> alive(this);
    return guarded_method(kFirmWareUtilInterface.id, [] {
        dlgFirmwareWizard wizard(services(), show_about);
        wizard.show_modal();
    });
}

HRESULT vexFirmWareUtil::StartPlugin(IDispatch** /*bActive*/) noexcept { return run_wizard(); }

HRESULT vexFirmWareUtil::StartFrameFeature(IDispatch** /*fMyFrm*/) noexcept { return run_wizard(); }

HRESULT vexFirmWareUtil::StartPreTransmit(IDispatch** /*vexObject*/) noexcept { return S_OK; }

HRESULT vexFirmWareUtil::DoesFrameEdit(VARIANT_BOOL* result) noexcept { return give_false(result); }

HRESULT vexFirmWareUtil::DoesPreTransmit(VARIANT_BOOL* result) noexcept { return give_false(result); }

HRESULT vexFirmWareUtil::GetMyName(BSTR* result) noexcept { return give_first(&ModuleData::sPluginNames, result); }

HRESULT vexFirmWareUtil::GetMyDescription(BSTR* result) noexcept {
    return give_first(&ModuleData::sPluginDescriptions, result);
}

HRESULT vexFirmWareUtil::GetMyDescriptiveName(BSTR* result) noexcept {
    return give_first(&ModuleData::sPluginDescriptiveNames, result);
}

HRESULT vexFirmWareUtil::GetMyPicture(IPictureDisp** result) noexcept {
    if (result == nullptr) return E_POINTER;
    *result = nullptr;
    return guarded_method(kFirmWareUtilInterface.id, [result] { *result = load_icon(kFirstIcon).detach(); });
}

}  // namespace vex::plugin
