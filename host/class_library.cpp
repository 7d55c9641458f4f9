// The host's class library.
#include "host/class_library.h"

namespace vex::host {
namespace {

constexpr CLSID kDisplayListClass = {0x2AF1D132, 0xAC50, 0x445B, {0xBE, 0x5B, 0x80, 0x59, 0xD3, 0x20, 0x64, 0x9C}};
constexpr CLSID kDisplayPickerClass = {0x829CA34E, 0xAE00, 0x4DDB, {0x94, 0x0C, 0xDB, 0xF8, 0x94, 0x72, 0xB8, 0xFA}};

}  // namespace

HostDisplayList::HostDisplayList() : object_(create_object(kDisplayListClass, u"HostDisplayList")) {}

void HostDisplayList::OpenDisplayFile(const std::u16string& file_name) const {
    com::Bstr name(file_name);
    object_.call(u"OpenDisplayFile", {com::Variant::text_reference(name.put_reference())});
}

std::int32_t HostDisplayList::FindDisplay(const std::u16string& name) const {
    com::Bstr text(name);
    return to_int32(object_.call(u"FindDisplay", {com::Variant::text_reference(text.put_reference())}));
}

void HostDisplayList::SelectDisplay(std::int32_t handle) const {
    object_.call(u"SelectDisplay", {com::Variant::int32(handle)});
}

HostDisplayPicker::HostDisplayPicker() : object_(create_object(kDisplayPickerClass, u"HostDisplayPicker")) {}

HostConnection::HostConnection() : object_(create_object(u"vexBrivolaClasses4.HostConnection")) {}

}  // namespace vex::host
