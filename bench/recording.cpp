// A recording of host calls.
#include "bench/recording.h"

#include "host/dispatch_object.h"

namespace vex::bench {

std::size_t Recording::add(const IDispatch* object) { return living_[object] = objects_++; }

void Recording::created(const IDispatch* object, REFCLSID clsid) {
    events_.push_back({.kind = Kind::creation, .object = add(object), .clsid = clsid});
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
    std::vector<com::ComPtr<IDispatch>> objects(objects_);
    std::vector<VARIANT> arguments;
    for (const Event& event : events_) {
        com::ComPtr<IDispatch>& object = objects[event.object];
        if (event.kind == Kind::creation) {
            object = host::create_object(event.clsid, u"recorded class");
            continue;
        }
        if (event.kind == Kind::release) {
            object.reset();
            continue;
        }
        arguments.clear();
        for (const Argument& argument : event.arguments) {
            VARIANT& value = arguments.emplace_back(argument.value.get());
            if (argument.object) {
                value.vt = VT_DISPATCH;
                value.pdispVal = objects[*argument.object].get();
            }
        }
        DISPID put = DISPID_PROPERTYPUT;
        const bool puts = event.flags == DISPATCH_PROPERTYPUT;
        DISPPARAMS parameters = {arguments.data(), puts ? &put : nullptr, static_cast<UINT>(arguments.size()), puts ? 1U : 0U};
        com::Variant result;
        object->Invoke(event.member, IID_NULL, LOCALE_USER_DEFAULT, event.flags, &parameters, result.put(), nullptr, nullptr);
        if (event.result) objects[*event.result] = host::to_object(result);
    }
}

}  // namespace vex::bench
