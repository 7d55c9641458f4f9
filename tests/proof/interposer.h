// Stands between the plug-in and the simulated host: sees every call and every creation, and may break it.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "com/variant.h"
#include "simulator/host.h"

namespace vex::proof {

/// What becomes of a call: it happens, it happens not and answers False, or it raises an error.
enum class Verdict { pass, answer_false, raise };

/// The number of the errors that the interposer raises.
inline constexpr std::int32_t kRaisedNumber = 1234;

/// "Class.Member", or "new Class" for a creation, where answer_false and raise both mean that it fails.
using Judge = std::function<Verdict(const std::u16string& call)>;

/// What the host answers to a call in place of its own answer; nothing: its own.
using Substitute = std::function<std::optional<com::Variant>(const std::u16string& call)>;

/// Changes what a call has answered.
using Amend = std::function<void(const std::u16string& call, VARIANT& answer)>;

/// How the interposer meddles; what is empty does nothing.
struct Meddling {
    Judge judge;
    Substitute substitute;
    Amend amend;
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
