// The two dual interfaces as C++ sees them. The order of the methods is the binary contract.
#pragma once

#include "com/com_ptr.h"
#include "plugin/contract.h"

namespace vex::plugin {

/// `_PluginData`. Every result is nulled on failure; pictures and strings are the caller's.
struct IPluginData : IDispatch {
    virtual HRESULT STDMETHODCALLTYPE get_TotalPlugins(SHORT* result) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_PluginNames(SHORT iIndex, BSTR* result) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_PluginDescription(SHORT iIndex, BSTR* result) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_PluginPic(SHORT iIndex, IPictureDisp** result) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_PluginDescriptiveName(SHORT iIndex, BSTR* result) = 0;
};

/// `_vexFirmWareUtil`.
struct IvexFirmWareUtil : IDispatch {
    virtual HRESULT STDMETHODCALLTYPE StartPlugin(IDispatch** bActive) = 0;
    virtual HRESULT STDMETHODCALLTYPE DoesFrameEdit(VARIANT_BOOL* result) = 0;
    virtual HRESULT STDMETHODCALLTYPE StartFrameFeature(IDispatch** fMyFrm) = 0;
    virtual HRESULT STDMETHODCALLTYPE DoesPreTransmit(VARIANT_BOOL* result) = 0;
    virtual HRESULT STDMETHODCALLTYPE StartPreTransmit(IDispatch** vexObject) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetMyName(BSTR* result) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetMyDescription(BSTR* result) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetMyPicture(IPictureDisp** result) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetMyDescriptiveName(BSTR* result) = 0;
};

}  // namespace vex::plugin

namespace vex::com {

VEX_INTERFACE(plugin::IPluginData, IDispatch, plugin::kPluginDataInterface.id);
VEX_INTERFACE(plugin::IvexFirmWareUtil, IDispatch, plugin::kFirmWareUtilInterface.id);

}  // namespace vex::com
