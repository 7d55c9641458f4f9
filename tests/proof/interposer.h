// Stands between the plug-in and the simulated host: sees every call and every creation, and may break it.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "com/variant.h"
#include "simulator/host.h"

namespace vex::proof {

/// The number of the errors that tests raise.
inline constexpr std::int32_t kRaisedNumber = 1234;

/// What becomes of a call, "Class.Member": nothing: it happens; a value: it does not, and is answered so; an error that
/// is thrown here: it raises that one. Of a creation, "new Class": an error makes it fail.
using Meddle = std::function<std::optional<com::Variant>(const std::u16string& call)>;

/// Changes what a call has answered.
using Amend = std::function<void(const std::u16string& call, VARIANT& answer)>;

struct Meddling {
    Meddle before;
    Amend after;
};

/// While it lives, the host's objects that the plug-in creates or is given are wrapped. Needs an initialised
/// apartment, and must be made before the host's own classes are offered. `host` and `meddling` outlive it.
class Interposer {
public:
    Interposer(sim::Host& host, Meddling& meddling);
    Interposer(const Interposer&) = delete;
    Interposer& operator=(const Interposer&) = delete;
    ~Interposer();

private:
    std::vector<DWORD> cookies_;
};

}  // namespace vex::proof
