// A recording of host calls.
#include "bench/recording.h"

#include <array>

#include "host/dispatch_object.h"
#include "host/event_sink.h"
#include "simulator/class_library.h"

namespace vex::bench {
namespace {

/// What the plug-in creates by programmatic identifier; the rest it creates by class id.
struct NamedClass {
    const CLSID& clsid;
    const char16_t* programmatic_id;
};

constexpr NamedClass kNamedClasses[] = {
    {sim::kHostConnectionClass, u"vexBrivolaClasses4.HostConnection"},
    {sim::kTransmissionControlClass, u"vexDTCon4.vexDispTrans"},
    {sim::kBoxFinderClass, u"vexLantronixControls2.vexLANBoxFinder2"},
};

}  // namespace

std::size_t Recording::add(const IDispatch* object) { return living_[object] = objects_++; }

void Recording::created(const IDispatch* object, REFCLSID clsid) {
    events_.push_back({.kind = Kind::creation, .object = add(object), .clsid = clsid});
}

void Recording::looked_up(const IDispatch* object, const OLECHAR* name) {
    events_.push_back(
        {.kind = Kind::look_up, .object = number_of(object), .name = reinterpret_cast<const char16_t*>(name)});
}

void Recording::listened_to(const IDispatch* object) {
    events_.push_back({.kind = Kind::connection, .object = number_of(object)});
}

void Recording::called(const IDispatch* object, DISPID member, WORD flags, const DISPPARAMS& parameters,
                       const IDispatch* result) {
    Event event{.kind = Kind::call, .object = number_of(object), .member = member, .flags = flags};
    for (UINT i = 0; i < parameters.cArgs; ++i) {
        Argument argument;
        const VARIANT& passed = parameters.rgvarg[i];
        if (passed.vt == (VT_BYREF | VT_DISPATCH)) {
            argument.object = number_of(*passed.ppdispVal);
        } else if (FAILED(VariantCopyInd(argument.value.put(), &passed))) {
            throw std::bad_alloc();
        }
        event.arguments.push_back(std::move(argument));
    }
    if (result != nullptr) event.result = add(result);
    events_.push_back(std::move(event));
}

void Recording::released(const IDispatch* object) {
    const auto known = living_.find(object);
    if (known == living_.end()) return;
    events_.push_back({.kind = Kind::release, .object = known->second});
    living_.erase(known);
}

void Recording::replay() const {
    // Connections go before the objects that they stand to.
    com::ModuleLifetime module;
    std::vector<com::ComPtr<IDispatch>> objects(objects_);
    std::unordered_map<std::size_t, host::EventConnection> connections;
    for (const Event& event : events_) {
        com::ComPtr<IDispatch>& object = objects[event.object];
        switch (event.kind) {
            case Kind::creation: object = create(event); break;
            case Kind::look_up: {
                DISPID id = DISPID_UNKNOWN;
                auto* name = const_cast<OLECHAR*>(reinterpret_cast<const OLECHAR*>(event.name.c_str()));
                object->GetIDsOfNames(IID_NULL, &name, 1, LOCALE_USER_DEFAULT, &id);
                break;
            }
            case Kind::connection:
                connections.try_emplace(event.object, *object.get(), u"StatusMessage", 9, module, [](auto) {});
                break;
            case Kind::call: call(event, objects); break;
            case Kind::release:
                connections.erase(event.object);
                object.reset();
                break;
        }
    }
}

com::ComPtr<IDispatch> Recording::create(const Event& event) {
    for (const NamedClass& entry : kNamedClasses) {
        if (IsEqualGUID(entry.clsid, event.clsid)) return host::create_object(entry.programmatic_id);
    }
    return host::create_object(event.clsid, u"recorded class");
}

void Recording::call(const Event& event, std::vector<com::ComPtr<IDispatch>>& objects) {
    std::array<VARIANT, 4> arguments;
    for (std::size_t i = 0; i < event.arguments.size(); ++i) {
        const Argument& argument = event.arguments[i];
        VARIANT& value = arguments.at(i) = argument.value.get();
        if (argument.object) {
            value.vt = VT_DISPATCH;
            value.pdispVal = objects[*argument.object].get();
        }
    }
    DISPID put = DISPID_PROPERTYPUT;
    const bool puts = event.flags == DISPATCH_PROPERTYPUT;
    DISPPARAMS parameters = {arguments.data(), puts ? &put : nullptr, static_cast<UINT>(event.arguments.size()),
                             puts ? 1U : 0U};
    com::Variant result;
    objects[event.object]->Invoke(event.member, IID_NULL, LOCALE_USER_DEFAULT, event.flags, &parameters, result.put(),
                                  nullptr, nullptr);
    if (event.result) objects[*event.result] = host::to_object(result);
}

}  // namespace vex::bench
