// A recording of host calls that can be played again without the plug-in.
#pragma once

#include <array>
#include <functional>
#include <optional>
#include <unordered_map>
#include <vector>

#include "com/class_factory.h"
#include "com/variant.h"
#include "host/dispatch_object.h"
#include "host/event_sink.h"
#include "simulator/class_library.h"
#include "simulator/controls.h"

namespace vex::bench {

/// Creations, look-ups of names, connections to events, calls and releases: what was done to the host's objects, and
/// how it is done again to others.
class Recording {
public:
    /// An object in a replay, and the connection to its events, which goes first.
    struct Place {
        com::ComPtr<IDispatch> object;
        std::optional<host::EventConnection> connection;
    };
    using Places = std::vector<Place>;

    void record(std::function<void(Places&)> event) { events_.push_back(std::move(event)); }
    std::size_t add(const IDispatch* object) { return numbers_[object] = objects_++; }
    std::size_t number_of(const IDispatch* object) const { return numbers_.at(object); }
    std::size_t size() const noexcept { return events_.size(); }

    /// Plays everything once. Raises RuntimeError when an object cannot be created.
    void replay() const {
        Places places(objects_);
        for (const auto& event : events_) event(places);
    }

private:
    std::vector<std::function<void(Places&)>> events_;
    std::unordered_map<const IDispatch*, std::size_t> numbers_;
    std::size_t objects_ = 0;
};

/// Stands before one of the host's objects.
class Recorder final : public com::Object<Recorder, com::Untyped<IDispatch>> {
public:
    Recorder(Recording& recording, com::ComPtr<IDispatch> inner)
        : Object(lifetime()), recording_(recording), inner_(std::move(inner)), number_(recording.add(this)) {}
    ~Recorder() {
        recording_.record([number = number_](auto& places) {
            places[number].connection.reset();
            places[number].object.reset();
        });
    }

    std::size_t number() const noexcept { return number_; }

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) noexcept override {
        if (com::interface_matches<IDispatch>(iid)) return Object::QueryInterface(iid, object);
        if (IsEqualGUID(iid, IID_IConnectionPointContainer)) {
            recording_.record([number = number_](auto& places) {
                places[number].connection.emplace(*places[number].object.get(), u"StatusMessage", sim::kHandledEvent,
                                                  lifetime(), [](auto) {});
            });
        }
        return inner_->QueryInterface(iid, object);
    }
    HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID reserved, LPOLESTR* names, UINT count, LCID locale,
                                            DISPID* ids) noexcept override {
        recording_.record([number = number_, name = std::basic_string<OLECHAR>(*names)](auto& places) {
            auto* text = const_cast<OLECHAR*>(name.c_str());
            DISPID id = DISPID_UNKNOWN;
            places[number].object->GetIDsOfNames(IID_NULL, &text, 1, LOCALE_USER_DEFAULT, &id);
        });
        return inner_->GetIDsOfNames(reserved, names, count, locale, ids);
    }
    HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID reserved, LCID locale, WORD flags, DISPPARAMS* parameters,
                                     VARIANT* result, EXCEPINFO* exception, UINT* argument_error) noexcept override {
        const com::ComPtr<Recorder> alive(this);
        std::vector<Argument> arguments;
        for (UINT i = 0; i < parameters->cArgs; ++i) {
            const VARIANT& passed = parameters->rgvarg[i];
            Argument& argument = arguments.emplace_back();
            argument.type = passed.vt;
            if (passed.vt == (VT_BYREF | VT_DISPATCH)) {
                argument.object = recording_.number_of(*passed.ppdispVal);
            } else {
                VariantCopyInd(argument.value.put(), &passed);
            }
        }
        const HRESULT outcome =
            inner_->Invoke(id, reserved, locale, flags, parameters, result, exception, argument_error);
        std::optional<std::size_t> given;
        if (SUCCEEDED(outcome) && result != nullptr && result->vt == VT_DISPATCH) {
            auto recorder =
                com::make_object<Recorder>(recording_, com::ComPtr<IDispatch>::adopt(result->pdispVal));
            given = recorder->number();
            result->pdispVal = recorder.detach();
        }
        recording_.record([number = number_, id, flags, arguments = std::move(arguments), outcome, given](auto& places) {
            com::Variant answer;
            if (call(places, number, id, flags, arguments, answer) != outcome) throw RuntimeError(kAutomationError);
            if (given) places[*given].object = host::to_object(answer);
        });
        return outcome;
    }

private:
    static com::ModuleLifetime& lifetime() {
        static com::ModuleLifetime instance;
        return instance;
    }
    struct Argument {
        VARTYPE type = VT_EMPTY;
        com::Variant value;
        /// Of an object: which one.
        std::optional<std::size_t> object;
    };

    static HRESULT call(const Recording::Places& places, std::size_t number, DISPID id, WORD flags,
                        const std::vector<Argument>& recorded, com::Variant& answer) {
        // What references refer to.
        std::array<VARIANT, 4> values, arguments;
        for (std::size_t i = 0; i < recorded.size(); ++i) {
            VARIANT& value = values.at(i) = recorded[i].value.get();
            if (recorded[i].object) value.pdispVal = places[*recorded[i].object].object.get();
            arguments[i] = value;
            arguments[i].vt = recorded[i].type;
            if ((recorded[i].type & VT_BYREF) != 0) arguments[i].byref = &value.byref;
        }
        DISPID put = DISPID_PROPERTYPUT;
        const bool puts = flags == DISPATCH_PROPERTYPUT;
        DISPPARAMS parameters = {arguments.data(), puts ? &put : nullptr, static_cast<UINT>(recorded.size()),
                                 puts ? 1U : 0U};
        return places[number].object->Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, flags, &parameters,
                                             puts ? nullptr : answer.put(), nullptr, nullptr);
    }

    Recording& recording_;
    com::ComPtr<IDispatch> inner_;
    std::size_t number_;
};

/// While it lives, the host's classes are offered with a recorder before each object. Needs an initialised apartment,
/// and must be made before the host's own classes are offered.
class RecordedClasses {
public:
    RecordedClasses(Recording& recording, sim::Host& host) : recording_(recording), host_(host) {
        for (const sim::HostClass& wrapped : sim::host_classes()) offer(wrapped);
    }
    RecordedClasses(const RecordedClasses&) = delete;
    RecordedClasses& operator=(const RecordedClasses&) = delete;
    ~RecordedClasses() {
        for (const DWORD cookie : cookies_) CoRevokeClassObject(cookie);
    }

private:
    void offer(const sim::HostClass& wrapped) {
        cookies_.push_back(com::offer_class(host_.lifetime, wrapped.clsid, [this, &wrapped] {
            auto made = com::make_object<Recorder>(recording_, wrapped.make(host_));
            recording_.record([number = made->number(), &wrapped](auto& places) {
                // As the plug-in creates it: the display list by class id, the others by programmatic identifier.
                places[number].object = wrapped.name() == u"HostDisplayList"
                                            ? host::create_object(wrapped.clsid, u"HostDisplayList")
                                            : host::create_object(wrapped.programmatic_id.c_str());
            });
            return made;
        }));
    }

    Recording& recording_;
    sim::Host& host_;
    std::vector<DWORD> cookies_;
};

}  // namespace vex::bench
