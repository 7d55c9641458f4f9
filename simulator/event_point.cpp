// The connection point of a control's source interface.
#include "simulator/event_point.h"

#include <algorithm>

namespace vex::sim {

void EventPoint::raise_event(DISPID event, std::span<VARIANT> arguments) {
    // A sink may connect or disconnect anybody while it is called.
    const std::vector<Connection> connections = connections_;
    for (const Connection& connection : connections) {
        DISPPARAMS parameters = {arguments.data(), nullptr, static_cast<UINT>(arguments.size()), 0};
        connection.sink->Invoke(event, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_METHOD, &parameters, nullptr, nullptr,
                                nullptr);
    }
}

HRESULT EventPoint::GetConnectionInterface(IID* iid) noexcept {
    if (iid == nullptr) return E_POINTER;
    *iid = source_;
    return S_OK;
}

HRESULT EventPoint::GetConnectionPointContainer(IConnectionPointContainer** container) noexcept {
    if (container == nullptr) return E_POINTER;
    *container = com::ComPtr<IConnectionPointContainer>(control_).detach();
    return control_ == nullptr ? E_UNEXPECTED : S_OK;
}

HRESULT EventPoint::Advise(IUnknown* sink, DWORD* cookie) noexcept {
    if (sink == nullptr || cookie == nullptr) return E_POINTER;
    *cookie = 0;
    return guarded_method(IID_IConnectionPoint, [&] {
        com::ComPtr<IDispatch> target;
        if (FAILED(sink->QueryInterface(source_, target.put_void()))) return CONNECT_E_CANNOTCONNECT;
        connections_.push_back({last_cookie_ + 1, std::move(target)});
        *cookie = ++last_cookie_;
        return S_OK;
    });
}

HRESULT EventPoint::Unadvise(DWORD cookie) noexcept {
    const auto entry = std::find_if(connections_.begin(), connections_.end(),
                                    [cookie](const Connection& connection) { return connection.cookie == cookie; });
    if (entry == connections_.end()) return CONNECT_E_NOCONNECTION;
    const Connection released = std::move(*entry);
    connections_.erase(entry);
    return S_OK;
}

HRESULT EventPoint::EnumConnections(IEnumConnections** connections) noexcept {
    if (connections != nullptr) *connections = nullptr;
    return E_NOTIMPL;
}

}  // namespace vex::sim
