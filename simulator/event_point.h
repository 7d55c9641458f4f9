// Controls that raise events: their connection point, and what tells a container which it is.
#pragma once

#include <span>
#include <vector>

#include "simulator/automation.h"

namespace vex::sim {

/// The connection point of a control's one source interface. May outlive its control.
class EventPoint final : public com::Object<EventPoint, IConnectionPoint> {
public:
    EventPoint(com::ModuleLifetime& module, const IID& source, IConnectionPointContainer& control) noexcept
        : Object(module), source_(source), control_(&control) {}

    /// To be called when the control goes.
    void cut_off() noexcept { control_ = nullptr; }

    /// Calls every sink; `arguments` stand last first. What the sinks answer does not concern the control.
    void raise_event(DISPID event, std::span<VARIANT> arguments);

    HRESULT STDMETHODCALLTYPE GetConnectionInterface(IID* iid) noexcept override;
    HRESULT STDMETHODCALLTYPE GetConnectionPointContainer(IConnectionPointContainer** container) noexcept override;
    HRESULT STDMETHODCALLTYPE Advise(IUnknown* sink, DWORD* cookie) noexcept override;
    HRESULT STDMETHODCALLTYPE Unadvise(DWORD cookie) noexcept override;
    HRESULT STDMETHODCALLTYPE EnumConnections(IEnumConnections** connections) noexcept override;

private:
    struct Connection {
        DWORD cookie;
        com::ComPtr<IDispatch> sink;
    };

    IID source_;
    IConnectionPointContainer* control_;
    std::vector<Connection> connections_;
    DWORD last_cookie_ = 0;
};

/// Base of a control with one source interface, `Derived::kSourceInterface`.
template <class Derived>
class EventfulControl : public AutomationObject<Derived, IDispatch, IConnectionPointContainer, IProvideClassInfo2> {
public:
    HRESULT STDMETHODCALLTYPE EnumConnectionPoints(IEnumConnectionPoints** points) noexcept override {
        if (points != nullptr) *points = nullptr;
        return E_NOTIMPL;
    }

    HRESULT STDMETHODCALLTYPE FindConnectionPoint(REFIID iid, IConnectionPoint** point) noexcept override {
        if (point == nullptr) return E_POINTER;
        *point = nullptr;
        if (!IsEqualGUID(iid, Derived::kSourceInterface)) return CONNECT_E_NOCONNECTION;
        *point = com::ComPtr<IConnectionPoint>(events_.get()).detach();
        return S_OK;
    }

    HRESULT STDMETHODCALLTYPE GetClassInfo(ITypeInfo** info) noexcept override {
        if (info != nullptr) *info = nullptr;
        return E_NOTIMPL;
    }

    HRESULT STDMETHODCALLTYPE GetGUID(DWORD kind, GUID* guid) noexcept override {
        if (guid == nullptr) return E_POINTER;
        *guid = GUID_NULL;
        if (kind != GUIDKIND_DEFAULT_SOURCE_DISP_IID) return E_INVALIDARG;
        *guid = Derived::kSourceInterface;
        return S_OK;
    }

protected:
    explicit EventfulControl(com::ModuleLifetime& module)
        : AutomationObject<Derived, IDispatch, IConnectionPointContainer, IProvideClassInfo2>(module),
          events_(com::make_object<EventPoint>(module, Derived::kSourceInterface, *this)) {}
    ~EventfulControl() { events_->cut_off(); }

    EventPoint& events() const noexcept { return *events_; }

private:
    com::ComPtr<EventPoint> events_;
};

}  // namespace vex::sim
