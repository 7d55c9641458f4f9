// Calls on automation objects by name.
#include "simulator/late_call.h"

#include "com/late_call.h"

namespace vex::sim {

com::ComPtr<IDispatch> create_object(const std::u16string& programmatic_id) {
    CLSID clsid = GUID_NULL;
    HRESULT result = CLSIDFromProgID(com::ole_text(programmatic_id), &clsid);
    com::ComPtr<IDispatch> object;
    if (SUCCEEDED(result))
        result = CoCreateInstance(clsid, nullptr, CLSCTX_INPROC_SERVER, IID_IDispatch, object.put_void());
    if (FAILED(result)) throw RuntimeError(kCannotCreateObject, programmatic_id + u" cannot be created");
    return object;
}

com::Variant call_late(IDispatch& object, const std::u16string& name, std::initializer_list<com::Variant> arguments) {
    DISPID member = DISPID_UNKNOWN;
    auto* text = const_cast<OLECHAR*>(com::ole_text(name));
    if (FAILED(object.GetIDsOfNames(IID_NULL, &text, 1, LOCALE_USER_DEFAULT, &member))) {
        throw RuntimeError(kMemberNotSupported, name + u" is not offered");
    }
    return com::invoke(object, member, DISPATCH_METHOD | DISPATCH_PROPERTYGET, arguments);
}

}  // namespace vex::sim
