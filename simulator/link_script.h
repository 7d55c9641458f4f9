// What a scenario lets happen on the links to the displays: faults, and messages with a user's reactions.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vex::sim {

/// What a scenario can disturb, by its name: a member of the transmission control, of the finder or of the display
/// list, or the creation of an object, by its class.
struct Operation {
    /// Of static life.
    std::u16string_view name;

    friend constexpr bool operator==(Operation left, Operation right) noexcept { return left.name == right.name; }

    static const Operation OpenConnection, SignID, GetSignInfo, ResetAndClear, DownloadFirmware, PrepareForFirmware,
        DownloadFirmwareWithLoader, CloseConnection, CancelTransmission;
};

inline constexpr Operation Operation::OpenConnection{u"OpenConnection"};
inline constexpr Operation Operation::SignID{u"SignID"};
inline constexpr Operation Operation::GetSignInfo{u"GetSignInfo"};
inline constexpr Operation Operation::ResetAndClear{u"ResetAndClear"};
inline constexpr Operation Operation::DownloadFirmware{u"DownloadFirmware"};
inline constexpr Operation Operation::PrepareForFirmware{u"PrepareForFirmware"};
inline constexpr Operation Operation::DownloadFirmwareWithLoader{u"DownloadFirmwareWithLoader"};
inline constexpr Operation Operation::CloseConnection{u"CloseConnection"};
inline constexpr Operation Operation::CancelTransmission{u"CancelTransmission"};

/// Which calls something is about; what is not given matches any.
struct CallPattern {
    std::optional<std::u16string> display;
    std::optional<std::int16_t> id;
    Operation operation;
    /// Only the N-th matching call, from 1; 0: each.
    std::int64_t at = 0;
};

/// One call. The display is empty where no display answers on the line, or none was asked about; the ID is 0 where
/// none is addressed.
struct Call {
    std::u16string display;
    std::int16_t id = 0;
    Operation operation;
};

/// Something on a link, while it happens.
struct LinkEvent {
    enum class Kind {
        /// A call begins.
        begins,
        /// Part of a firmware file goes over the link.
        transfers,
        /// The control has said something in its status event.
        says,
        /// A call has ended.
        ends,
    };
    Kind kind = Kind::begins;
    Call call;
    /// Of Kind::transfers: how much of the file the unit has when it is through, and the part's size.
    int percent = 0;
    std::size_t bytes = 0;
    /// Of Kind::ends.
    bool succeeded = false;
};

/// `replace`: the call succeeds and puts another object in the place of the one that it was given.
enum class FaultKind { none, fail, raise, replace };

/// A status message that the control says during a call, and what the user does while he sees it.
struct ScriptedMessage {
    std::u16string text;
    /// Empty: he only reads it.
    std::function<void()> reaction;
    bool was_read = false;
};

/// What the script has for one call.
struct ScriptedCall {
    FaultKind fault = FaultKind::none;
    std::vector<ScriptedMessage> messages;

    bool fails() const noexcept { return fault == FaultKind::fail; }
};

class LinkScript {
public:
    void add_fault(CallPattern pattern, FaultKind kind);
    void add_message(CallPattern pattern, ScriptedMessage message);
    /// Counts the call; to be asked once for each call.
    ScriptedCall next(const Call& call);

private:
    template <class Content>
    struct Entry {
        CallPattern pattern;
        Content content;
        std::int64_t calls = 0;

        /// Whether the entry is about this call; counts it.
        bool takes(const Call& call);
    };

    std::vector<Entry<FaultKind>> faults_;
    std::vector<Entry<ScriptedMessage>> messages_;
};

}  // namespace vex::sim
