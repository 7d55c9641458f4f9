// The plug-in as its host uses it.
#include "simulator/plugin_host.h"

#include "core/runtime_error.h"
#include "simulator/automation.h"

namespace vex::sim {
namespace {

using ServerFunction = HRESULT(STDAPICALLTYPE*)();

/// Reads a member of the catalogue, which answers what the plug-in's contract says.
com::Variant ask(IDispatch& catalogue, const std::u16string& member, VARTYPE type,
                 std::initializer_list<com::Variant> index = {}) {
    com::Variant answer = call_late(catalogue, member, index);
    if (answer.type() != type) throw RuntimeError(kTypeMismatch);
    return answer;
}

}  // namespace

PluginHost::PluginHost(const std::filesystem::path& library) : library_(library) {
    const HRESULT result = library_.function<ServerFunction>("DllRegisterServer")();
    if (FAILED(result)) throw RuntimeError(result, u"the plug-in does not register itself");
    const auto catalogue = create_object(u"vexFirmWarePlugin.PluginData");
    const std::int16_t total = ask(*catalogue, u"TotalPlugins", VT_I2).get().iVal;
    if (total < 1) throw RuntimeError(kSubscriptOutOfRange, u"the plug-in offers no feature");
    for (std::int16_t i = total; i-- > 0;) {
        const auto index = com::Variant::int16(i);
        for (const char16_t* text : {u"PluginDescription", u"PluginDescriptiveName"})
            ask(*catalogue, text, VT_BSTR, {index});
        ask(*catalogue, u"PluginPic", VT_DISPATCH, {index});
        entry_class_ = com::view(ask(*catalogue, u"PluginNames", VT_BSTR, {index}).get().bstrVal);
    }
}

void PluginHost::start(IDispatch* frame) {
    const auto entry = create_object(entry_class_);
    if (frame == nullptr) {
        call_late(*entry, u"StartPlugin");
        return;
    }
    // By reference, as hosts hand over their frame. It stays ours.
    IDispatch* given = frame;
    call_late(*entry, u"StartFrameFeature", {com::Variant::object_reference(&given)});
    if (given != frame) throw RuntimeError(kAutomationError, u"the plug-in replaced the host's object");
}

bool PluginHost::can_unload() const {
    CoFreeUnusedLibraries();
    return library_.function<ServerFunction>("DllCanUnloadNow")() == S_OK;
}

}  // namespace vex::sim
