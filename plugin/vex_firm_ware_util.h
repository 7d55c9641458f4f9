// The entry class: what the host calls to start the feature.
#pragma once

#include "plugin/dispatch.h"

namespace vex::plugin {

/// The object parameters are accepted and left alone; null is fine for each.
class vexFirmWareUtil final : public AutomationObject<vexFirmWareUtil, IvexFirmWareUtil, kFirmWareUtilInterface> {
public:
    vexFirmWareUtil();

    /// Opens a new wizard and returns when it closes. Raises what was raised in there.
    HRESULT STDMETHODCALLTYPE StartPlugin(IDispatch** bActive) noexcept override;
    HRESULT STDMETHODCALLTYPE DoesFrameEdit(VARIANT_BOOL* result) noexcept override;
    /// The same as StartPlugin.
    HRESULT STDMETHODCALLTYPE StartFrameFeature(IDispatch** fMyFrm) noexcept override;
    HRESULT STDMETHODCALLTYPE DoesPreTransmit(VARIANT_BOOL* result) noexcept override;
    HRESULT STDMETHODCALLTYPE StartPreTransmit(IDispatch** vexObject) noexcept override;
    HRESULT STDMETHODCALLTYPE GetMyName(BSTR* result) noexcept override;
    HRESULT STDMETHODCALLTYPE GetMyDescription(BSTR* result) noexcept override;
    /// Unlike the catalogue's picture, raises an error when there is none.
    HRESULT STDMETHODCALLTYPE GetMyPicture(IPictureDisp** result) noexcept override;
    HRESULT STDMETHODCALLTYPE GetMyDescriptiveName(BSTR* result) noexcept override;

private:
    HRESULT run_wizard() noexcept;
};

}  // namespace vex::plugin
