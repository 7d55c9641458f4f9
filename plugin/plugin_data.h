// The catalogue class: what the host learns of the features that the library contributes.
#pragma once

#include "plugin/dispatch.h"

namespace vex::plugin {

class PluginData final : public AutomationObject<PluginData, IPluginData, kPluginDataInterface> {
public:
    PluginData();

    HRESULT STDMETHODCALLTYPE get_TotalPlugins(SHORT* result) noexcept override;
    // The three texts: an index other than 0 raises 9.
    HRESULT STDMETHODCALLTYPE get_PluginNames(SHORT iIndex, BSTR* result) noexcept override;
    HRESULT STDMETHODCALLTYPE get_PluginDescription(SHORT iIndex, BSTR* result) noexcept override;
    HRESULT STDMETHODCALLTYPE get_PluginDescriptiveName(SHORT iIndex, BSTR* result) noexcept override;
    /// An index without a picture answers an empty picture and no error, unlike the texts; hosts depend on both.
    HRESULT STDMETHODCALLTYPE get_PluginPic(SHORT iIndex, IPictureDisp** result) noexcept override;
};

}  // namespace vex::plugin
