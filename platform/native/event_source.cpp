// The native side: without type descriptions the object itself names its default source interface.
#include "platform/event_source.h"

#include "core/runtime_error.h"

namespace vex::platform {

EventSource find_event_source(IUnknown& object, std::u16string_view /*name*/, DISPID position) {
    const com::ComPtr<IUnknown> shared(&object);
    EventSource source{nullptr, IID_NULL, position};
    const auto class_info = shared.query<IProvideClassInfo2>();
    const auto container = shared.query<IConnectionPointContainer>();
    if (!class_info || !container || FAILED(class_info->GetGUID(GUIDKIND_DEFAULT_SOURCE_DISP_IID, &source.iid)) ||
        FAILED(container->FindConnectionPoint(source.iid, source.point.put()))) {
        throw RuntimeError(kNoSuchEvents);
    }
    return source;
}

}  // namespace vex::platform
