// The plug-in as its host uses it.
#include "simulator/plugin_host.h"

#include "core/runtime_error.h"
#include "host/dispatch_object.h"

namespace vex::sim {
namespace {

using RegisterServer = HRESULT(STDAPICALLTYPE*)();
using CanUnloadNow = HRESULT(STDAPICALLTYPE*)();

constexpr char16_t kCatalogue[] = u"vexFirmWarePlugin.PluginData";

host::DispatchObject create(const std::u16string& programmatic_id) {
    return host::DispatchObject(host::create_object(programmatic_id.c_str()));
}

}  // namespace

std::u16string_view name_of(StartMember member) noexcept {
    return member == StartMember::StartPlugin ? u"StartPlugin" : u"StartFrameFeature";
}

PluginHost::PluginHost(const std::filesystem::path& library) : library_(library) {
    const HRESULT result = library_.function<RegisterServer>("DllRegisterServer")();
    if (FAILED(result)) throw RuntimeError(result, u"the plug-in does not register itself");
    read_catalogue();
}

PluginHost::~PluginHost() = default;

void PluginHost::read_catalogue() {
    const host::DispatchObject catalogue = create(kCatalogue);
    const std::int16_t total = host::to_int16(catalogue.property(u"TotalPlugins"));
    for (std::int16_t i = 0; i < total; ++i) {
        const auto index = com::Variant::int16(i);
        Feature feature;
        feature.name = host::to_text(catalogue.property(u"PluginNames", {index}));
        feature.description = host::to_text(catalogue.property(u"PluginDescription", {index}));
        feature.caption = host::to_text(catalogue.property(u"PluginDescriptiveName", {index}));
        const com::Variant picture = catalogue.property(u"PluginPic", {index});
        feature.has_picture = picture.type() == VT_DISPATCH && picture.get().pdispVal != nullptr;
        features_.push_back(std::move(feature));
    }
    if (features_.empty()) throw RuntimeError(kSubscriptOutOfRange, u"the plug-in offers no feature");
}

void PluginHost::start(StartMember member, IDispatch* object) {
    const host::DispatchObject entry = create(features_.front().name);
    if (member == StartMember::StartPlugin) {
        entry.call(u"StartPlugin");
        return;
    }
    // By reference, as hosts hand over their frame. It stays ours.
    IDispatch* frame = object;
    entry.call(u"StartFrameFeature", {com::Variant::object_reference(&frame)});
    if (frame != object) throw RuntimeError(kAutomationError, u"the plug-in replaced the host's object");
}

bool PluginHost::can_unload() const {
    CoFreeUnusedLibraries();
    return library_.function<CanUnloadNow>("DllCanUnloadNow")() == S_OK;
}

}  // namespace vex::sim
