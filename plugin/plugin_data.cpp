// The catalogue class.
#include "plugin/plugin_data.h"

#include <exception>

#include "com/bstr.h"
#include "core/narrow.h"
#include "core/runtime_error.h"
#include "plugin/module.h"

namespace vex::plugin {
namespace {

/// Element `index` of a table. Negative indexes are large ones.
const std::u16string& element(const ModuleData::Table& table, SHORT index) {
    const auto position = static_cast<std::uint32_t>(std::int32_t{index});
    if (position >= table.size()) throw RuntimeError(kSubscriptOutOfRange);
    return table[position];
}

std::int16_t icon_of(SHORT index) { return narrowed<std::int16_t>(kFirstIcon + index); }

HRESULT give_element(const ModuleData::Table ModuleData::*table, SHORT index, BSTR* result) noexcept {
    if (result == nullptr) return E_POINTER;
    *result = nullptr;
    return guarded_method(kPluginDataInterface.id,
                          [&] { *result = com::allocate_bstr(element(module_data().*table, index)); });
}

}  // namespace

PluginData::PluginData() : AutomationObject(module_lifetime()) {}

HRESULT PluginData::get_TotalPlugins(SHORT* result) noexcept {
    if (result == nullptr) return E_POINTER;
    *result = static_cast<SHORT>(std::tuple_size_v<ModuleData::Table>);
    return S_OK;
}

HRESULT PluginData::get_PluginNames(SHORT iIndex, BSTR* result) noexcept {
    return give_element(&ModuleData::sPluginNames, iIndex, result);
}

HRESULT PluginData::get_PluginDescription(SHORT iIndex, BSTR* result) noexcept {
    return give_element(&ModuleData::sPluginDescriptions, iIndex, result);
}

HRESULT PluginData::get_PluginDescriptiveName(SHORT iIndex, BSTR* result) noexcept {
    return give_element(&ModuleData::sPluginDescriptiveNames, iIndex, result);
}

HRESULT PluginData::get_PluginPic(SHORT iIndex, IPictureDisp** result) noexcept {
    if (result == nullptr) return E_POINTER;
    *result = nullptr;
    return guarded_method(kPluginDataInterface.id, [&] {
        try {
            *result = load_icon(icon_of(iIndex)).detach();
        } catch (const std::exception&) {
            // No picture, and no error: the contract of this property.
        }
    });
}

}  // namespace vex::plugin
