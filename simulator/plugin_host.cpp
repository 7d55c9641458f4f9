// The plug-in as its host uses it.
#include "simulator/plugin_host.h"

#include "core/runtime_error.h"
#include "simulator/automation.h"

namespace vex::sim {
namespace {

using RegisterServer = HRESULT(STDAPICALLTYPE*)();
using CanUnloadNow = HRESULT(STDAPICALLTYPE*)();

constexpr char16_t kCatalogue[] = u"vexFirmWarePlugin.PluginData";

/// What the plug-in's contract says of its results.
template <VARTYPE Type>
const VARIANT& expect_type(const com::Variant& value) {
    if (value.type() != Type) throw RuntimeError(kTypeMismatch);
    return value.get();
}

std::u16string text_of(const com::Variant& value) {
    return std::u16string(com::view(expect_type<VT_BSTR>(value).bstrVal));
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
    const auto catalogue = create_object(kCatalogue);
    const std::int16_t total = expect_type<VT_I2>(call_late(*catalogue, u"TotalPlugins")).iVal;
    for (std::int16_t i = 0; i < total; ++i) {
        const auto index = com::Variant::int16(i);
        features_.push_back({
            .name = text_of(call_late(*catalogue, u"PluginNames", {index})),
            .description = text_of(call_late(*catalogue, u"PluginDescription", {index})),
            .caption = text_of(call_late(*catalogue, u"PluginDescriptiveName", {index})),
            .has_picture = expect_type<VT_DISPATCH>(call_late(*catalogue, u"PluginPic", {index})).pdispVal != nullptr,
        });
    }
    if (features_.empty()) throw RuntimeError(kSubscriptOutOfRange, u"the plug-in offers no feature");
}

void PluginHost::start(StartMember member, IDispatch* object) {
    const auto entry = create_object(features_.front().name);
    if (member == StartMember::StartPlugin) {
        call_late(*entry, u"StartPlugin");
        return;
    }
    // By reference, as hosts hand over their frame. It stays ours.
    IDispatch* frame = object;
    call_late(*entry, u"StartFrameFeature", {com::Variant::object_reference(&frame)});
    if (frame != object) throw RuntimeError(kAutomationError, u"the plug-in replaced the host's object");
}

bool PluginHost::can_unload() const {
    CoFreeUnusedLibraries();
    return library_.function<CanUnloadNow>("DllCanUnloadNow")() == S_OK;
}

}  // namespace vex::sim
