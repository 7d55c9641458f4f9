// The Windows side: an object's type description tells its default source interface and the events' names.
#include "platform/event_source.h"

#include "com/com_ptr.h"
#include "core/runtime_error.h"
#include "platform/win32/windows_api.h"

namespace vex::com {

VEX_INTERFACE(ITypeInfo, IUnknown, IID_ITypeInfo);
VEX_INTERFACE(ITypeLib, IUnknown, IID_ITypeLib);

}  // namespace vex::com

namespace vex::platform {
namespace {

/// The attributes of a type description.
class TypeAttributes {
public:
    explicit TypeAttributes(ITypeInfo& type) noexcept : type_(type) {
        if (FAILED(type_.GetTypeAttr(&attributes_))) attributes_ = nullptr;
    }
    TypeAttributes(const TypeAttributes&) = delete;
    TypeAttributes& operator=(const TypeAttributes&) = delete;
    ~TypeAttributes() {
        if (attributes_ != nullptr) type_.ReleaseTypeAttr(attributes_);
    }
    const TYPEATTR* get() const noexcept { return attributes_; }

private:
    ITypeInfo& type_;
    TYPEATTR* attributes_ = nullptr;
};

/// The description of the default source interface in that of a class, or nothing.
com::ComPtr<ITypeInfo> default_source(ITypeInfo& class_description) {
    constexpr int kDefaultSource = IMPLTYPEFLAG_FDEFAULT | IMPLTYPEFLAG_FSOURCE;
    const TypeAttributes attributes(class_description);
    com::ComPtr<ITypeInfo> source;
    for (UINT index = 0; attributes.get() != nullptr && index < attributes.get()->cImplTypes; ++index) {
        int flags = 0;
        HREFTYPE reference = 0;
        const bool wanted =
            SUCCEEDED(class_description.GetImplTypeFlags(index, &flags)) && (flags & kDefaultSource) == kDefaultSource;
        if (wanted && SUCCEEDED(class_description.GetRefTypeOfImplType(index, &reference)) &&
            SUCCEEDED(class_description.GetRefTypeInfo(reference, source.put()))) {
            break;
        }
    }
    return source;
}

/// An interface's description in the library that also describes the object's own interface, or nothing.
com::ComPtr<ITypeInfo> described_beside(const com::ComPtr<IUnknown>& object, const IID& iid) {
    const auto dispatch = object.query<IDispatch>();
    com::ComPtr<ITypeInfo> own;
    com::ComPtr<ITypeLib> library;
    com::ComPtr<ITypeInfo> found;
    UINT index = 0;
    if (dispatch && SUCCEEDED(dispatch->GetTypeInfo(0, LOCALE_USER_DEFAULT, own.put())) && own &&
        SUCCEEDED(own->GetContainingTypeLib(library.put(), &index))) {
        library->GetTypeInfoOfGuid(iid, found.put());
    }
    return found;
}

}  // namespace

EventSource find_event_source(IUnknown& object, std::u16string_view name, DISPID position) {
    const com::ComPtr<IUnknown> shared(&object);
    EventSource source{nullptr, IID_NULL, position};
    com::ComPtr<ITypeInfo> description;

    com::ComPtr<ITypeInfo> class_description;
    if (const auto class_info = shared.query<IProvideClassInfo>()) class_info->GetClassInfo(class_description.put());
    if (class_description) description = default_source(*class_description);
    if (description) {
        const TypeAttributes attributes(*description);
        if (attributes.get() != nullptr) source.iid = attributes.get()->guid;
    } else if (const auto class_info = shared.query<IProvideClassInfo2>()) {
        class_info->GetGUID(GUIDKIND_DEFAULT_SOURCE_DISP_IID, &source.iid);
        description = described_beside(shared, source.iid);
    }

    const auto container = shared.query<IConnectionPointContainer>();
    if (!container || FAILED(container->FindConnectionPoint(source.iid, source.point.put()))) {
        throw RuntimeError(kNoSuchEvents);
    }
    if (description) {
        const std::u16string text(name);
        auto* wanted = const_cast<LPOLESTR>(win32::wide(text));
        DISPID member = DISPID_UNKNOWN;
        if (SUCCEEDED(description->GetIDsOfNames(&wanted, 1, &member))) source.member = member;
    }
    return source;
}

}  // namespace vex::platform
