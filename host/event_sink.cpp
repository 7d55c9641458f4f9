// Receives the one event of a host control that the plug-in handles.
#include "host/event_sink.h"

#include <new>
#include <string>
#include <utility>

#include "com/boundary.h"
#include "com/late_call.h"
#include "core/runtime_error.h"
#include "host/dispatch_object.h"
#include "platform/event_source.h"

namespace vex::host {
namespace {

/// Tells threads apart.
const void* calling_thread() noexcept {
    thread_local const char mark{};
    return &mark;
}

}  // namespace

/// What the control calls. Answers to the source interface that it was connected through.
class EventConnection::Sink final : public com::Object<Sink, com::Untyped<IDispatch>> {
public:
    Sink(com::ModuleLifetime& module, const IID& source, DISPID member, Handler handler)
        : Object(module), source_(source), member_(member), handler_(std::move(handler)) {}

    void cut_off() noexcept { handler_ = nullptr; }

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) noexcept override {
        return Object::QueryInterface(IsEqualGUID(iid, source_) ? IID_IDispatch : iid, object);
    }

    HRESULT STDMETHODCALLTYPE Invoke(DISPID member, REFIID /*reserved*/, LCID /*locale*/, WORD /*flags*/,
                                     DISPPARAMS* parameters, VARIANT* /*result*/, EXCEPINFO* exception,
                                     UINT* /*argument_error*/) noexcept override {
        // The system brings events of other threads here; what comes past it would meet dialogs in the midst of their
        // work.
        if (thread_ != calling_thread()) return RPC_E_WRONG_THREAD;
        // Other events of the control are none of ours.
        if (member != member_ || !handler_) return S_OK;
        if (parameters == nullptr || parameters->cArgs == 0) return DISP_E_BADPARAMCOUNT;
        return guarded_invoke(exception, [&] {
            std::u16string copy;
            handler_(text_of(parameters->rgvarg[0], copy));
        });
    }

private:
    /// The event's argument, copied, since the control may go on to another text before the handler is done.
    static std::u16string_view text_of(const VARIANTARG& argument, std::u16string& copy) {
        try {
            com::Variant value;
            if (!com::succeeded(VariantCopyInd(value.put(), &argument))) throw RuntimeError(kTypeMismatch);
            return copy = to_text(value);
        } catch (const std::bad_alloc&) {
            // Most controls refer to their text, which can also be read where it stands.
            if (argument.vt != (VT_BYREF | VT_BSTR) || argument.pbstrVal == nullptr) throw;
            return com::view(*argument.pbstrVal);
        }
    }

    const void* thread_ = calling_thread();
    IID source_;
    DISPID member_;
    Handler handler_;
};

EventConnection::EventConnection(IUnknown& object, std::u16string_view name, DISPID position,
                                 com::ModuleLifetime& module, Handler handler) {
    const platform::EventSource source = platform::find_event_source(object, name, position);
    sink_ = com::make_object<Sink>(module, source.iid, source.member, std::move(handler));
    if (!com::succeeded(source.point->Advise(sink_.get(), &cookie_))) throw RuntimeError(kNoSuchEvents);
    point_ = source.point;
}

EventConnection::~EventConnection() {
    point_->Unadvise(cookie_);
    sink_->cut_off();
}

}  // namespace vex::host
