// The tables of a type library.
#include "plugin/type_library/tables.h"

#include <algorithm>

#include "plugin/type_library/name_hash.h"

namespace vex::type_library {
namespace {

std::uint32_t guid_slot(REFGUID guid) {
    ByteBuffer bytes;
    bytes.put(guid);
    std::uint32_t folded = 0;
    // The 16-bit numbers that the identity consists of, all folded into one.
    for (std::uint32_t i = 0; i < bytes.size(); ++i) folded ^= std::uint32_t{bytes.bytes()[i]} << (8 * (i % 2));
    return folded % kGuidSlots;
}

char lower(std::uint8_t character) noexcept {
    return static_cast<char>(character >= 'A' && character <= 'Z' ? character - 'A' + 'a' : character);
}

template <std::size_t count>
ByteBuffer written(const std::array<std::uint32_t, count>& slots) {
    ByteBuffer bytes;
    for (const std::uint32_t slot : slots) bytes.put32(slot);
    return bytes;
}

}  // namespace

std::uint32_t GuidTable::enter(REFGUID guid, std::uint32_t reference) {
    ByteBuffer wanted;
    wanted.put(guid);
    std::uint32_t& slot = slots_[guid_slot(guid)];
    for (std::uint32_t at = slot; at != kNone; at = entries_.get32(at + kNextAt)) {
        const auto begin = entries_.bytes().begin() + at;
        if (std::equal(wanted.bytes().begin(), wanted.bytes().end(), begin)) return at;
    }
    const std::uint32_t at = entries_.size();
    entries_.put(wanted);
    entries_.put32(reference);
    entries_.put32(slot);
    slot = at;
    return at;
}

ByteBuffer GuidTable::hash() const { return written(slots_); }

// An entry: what the name refers to, the next one of its chain, its length, its mark, its hash value, its letters.
namespace name_entry {
constexpr std::uint32_t kNextAt = 4;
constexpr std::uint32_t kLengthAt = 8;
constexpr std::uint32_t kTextAt = 12;
}  // namespace name_entry

bool NameTable::holds(std::uint32_t at, std::string_view name) const {
    const auto& bytes = entries_.bytes();
    if (bytes[at + name_entry::kLengthAt] != name.size()) return false;
    for (std::size_t i = 0; i < name.size(); ++i) {
        if (lower(bytes[at + name_entry::kTextAt + i]) != lower(static_cast<std::uint8_t>(name[i]))) return false;
    }
    return true;
}

std::uint32_t NameTable::enter(std::string_view name, std::uint32_t reference, std::uint32_t mark) {
    const std::uint16_t hash = name_hash(name);
    std::uint32_t& slot = slots_[hash % kNameSlots];
    for (std::uint32_t at = slot; at != kNone; at = entries_.get32(at + name_entry::kNextAt)) {
        if (holds(at, name)) return at;
    }
    const std::uint32_t at = entries_.size();
    entries_.put32(reference);
    entries_.put32(slot);
    entries_.put8(static_cast<std::uint32_t>(name.size()));
    entries_.put8(mark);
    entries_.put16(hash);
    entries_.put(name);
    entries_.align();
    slot = at;
    ++count_;
    characters_ += static_cast<std::uint32_t>(name.size());
    return at;
}

ByteBuffer NameTable::hash() const { return written(slots_); }

void ImportTable::enter_library(REFGUID guid, std::uint16_t major_version, std::uint16_t minor_version,
                                std::string_view file) {
    libraries_.put32(guids_.enter(guid, kImportedLibraryMark));
    libraries_.put32(kNeutralLocale);
    libraries_.put16(major_version);
    libraries_.put16(minor_version);
    libraries_.put16(static_cast<std::uint32_t>(file.size() << 2 | 1));
    libraries_.put(file);
    libraries_.align();
}

std::uint32_t ImportTable::enter_type(REFGUID guid, TypeKind kind) {
    const std::uint32_t fresh = types_.size();
    const std::uint32_t guid_at = guids_.enter(guid, fresh | kImportedTypeMark);
    for (std::uint32_t at = 0; at < fresh; at += kEntrySize) {
        if (types_.get32(at + kGuidAt) == guid_at) return at | kImportedTypeMark;
    }
    types_.put32(std::uint32_t{kind} << 24 | kImportedByIdentity | count());
    types_.put32(0);  // the one library
    types_.put32(guid_at);
    return fresh | kImportedTypeMark;
}

// An entry's first word tells readers in a hurry what a type comes down to: the type pointed at with the mark
// of a pointer, or that one must look further (kNested), down to a described type (kDescribed).
namespace type_entry {
constexpr std::uint32_t kNested = 0x7FFE;
constexpr std::uint32_t kDescribed = 0x7FFF;
}  // namespace type_entry

std::uint32_t TypeTable::enter(std::uint32_t head, std::uint32_t target) {
    constexpr std::uint32_t kEntrySize = 8;
    for (std::uint32_t at = 0; at < entries_.size(); at += kEntrySize) {
        if (entries_.get32(at) == head && entries_.get32(at + 4) == target) return at;
    }
    const std::uint32_t at = entries_.size();
    entries_.put32(head);
    entries_.put32(target);
    return at;
}

Type TypeTable::pointer_to(Type target) {
    const bool is_simple = (target.code & 0x80000000) != 0;
    std::uint32_t digest = 0;
    if (is_simple) {
        digest = (target.code >> 16 & VT_TYPEMASK) | VT_BYREF;
    } else {
        digest =
            entries_.get32(target.code) >> 16 == type_entry::kDescribed ? type_entry::kDescribed : type_entry::kNested;
    }
    return {enter(digest << 16 | VT_PTR, target.code), target.memory + kPointerTypeMemory};
}

Type TypeTable::described(std::uint32_t reference) {
    return {enter(type_entry::kDescribed << 16 | VT_USERDEFINED, reference), 0};
}

}  // namespace vex::type_library
