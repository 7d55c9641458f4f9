// A recording of host calls that can be played again without the plug-in.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "tests/proof/interposer.h"

namespace vex::bench {

/// Records what the plug-in did to the host's objects, and does it again on objects of its own.
class Recording final : public proof::Observer {
public:
    void created(const IDispatch* object, REFCLSID clsid) override;
    void looked_up(const IDispatch* object, const OLECHAR* name) override;
    void listened_to(const IDispatch* object) override;
    void called(const IDispatch* object, DISPID member, WORD flags, const DISPPARAMS& parameters,
                const IDispatch* result) override;
    void released(const IDispatch* object) override;

    /// Creations, look-ups of names, connections to events, calls and releases.
    std::size_t size() const noexcept { return events_.size(); }
    /// Plays everything once. Raises RuntimeError when an object cannot be created.
    void replay() const;

private:
    enum class Kind { creation, look_up, connection, call, release };
    struct Argument {
        com::Variant value;
        /// Of an object: which one; passed by reference.
        std::optional<std::size_t> object;
    };
    struct Event {
        Kind kind;
        std::size_t object;
        CLSID clsid = GUID_NULL;
        std::u16string name = {};
        DISPID member = 0;
        WORD flags = 0;
        std::vector<Argument> arguments = {};
        std::optional<std::size_t> result = std::nullopt;
    };

    static com::ComPtr<IDispatch> create(const Event& event);
    static void call(const Event& event, std::vector<com::ComPtr<IDispatch>>& objects);
    std::size_t number_of(const IDispatch* object) const { return living_.at(object); }
    std::size_t add(const IDispatch* object);

    std::vector<Event> events_;
    std::unordered_map<const IDispatch*, std::size_t> living_;
    std::size_t objects_ = 0;
};

}  // namespace vex::bench
