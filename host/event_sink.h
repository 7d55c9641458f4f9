// Receives the one event of a host control that the plug-in handles.
#pragma once

#include <functional>
#include <string_view>

#include "com/object.h"

namespace vex::host {

/// A connection to one event of an object. While it lives, the handler is called with the event's last
/// argument as text, also when memory has ended. An event that is raised on another thread than that of the connection
/// is refused with RPC_E_WRONG_THREAD. Errors of the handler go back to the object as its call's result. Cut off when
/// it is destroyed, even if the object keeps the sink.
class EventConnection {
public:
    using Handler = std::function<void(std::u16string_view text)>;

    /// Connects to the event `name`, the one at `position` where the object describes no names. `module`
    /// counts the sink. Raises 459 when the object offers no events or refuses the connection.
    EventConnection(IUnknown& object, std::u16string_view name, DISPID position, com::ModuleLifetime& module,
                    Handler handler);
    EventConnection(const EventConnection&) = delete;
    EventConnection& operator=(const EventConnection&) = delete;
    ~EventConnection();

private:
    class Sink;

    com::ComPtr<IConnectionPoint> point_;
    com::ComPtr<Sink> sink_;
    DWORD cookie_{};
};

}  // namespace vex::host
