// The tables of a type library: identities, names, imports and types, each entered once.
#pragma once

#include <array>
#include <cstdint>
#include <string_view>

#include "com/com.h"
#include "plugin/type_library/byte_buffer.h"
#include "plugin/type_library/format.h"

namespace vex::type_library {

/// Identities, with the hash chains by which readers find them.
class GuidTable {
public:
    GuidTable() { slots_.fill(kNone); }
    /// The offset of the identity; entered with what it refers to where it is new.
    std::uint32_t enter(REFGUID guid, std::uint32_t reference);
    const ByteBuffer& entries() const noexcept { return entries_; }
    ByteBuffer hash() const;

private:
    static constexpr std::uint32_t kEntrySize = 24;
    static constexpr std::uint32_t kNextAt = 20;

    ByteBuffer entries_;
    std::array<std::uint32_t, kGuidSlots> slots_;
};

/// Names, compared without regard to case, with their hash chains.
class NameTable {
public:
    NameTable() { slots_.fill(kNone); }
    /// The offset of the name; entered where it is new. `reference`: the type description that the name or
    /// its member belongs to; kNone for names of libraries and parameters. `mark`: kTypeNameMark or 0.
    std::uint32_t enter(std::string_view name, std::uint32_t reference, std::uint32_t mark);
    const ByteBuffer& entries() const noexcept { return entries_; }
    ByteBuffer hash() const;
    std::uint32_t count() const noexcept { return count_; }
    /// Of all names together, without what fills them up.
    std::uint32_t characters() const noexcept { return characters_; }

private:
    bool holds(std::uint32_t at, std::string_view name) const;

    ByteBuffer entries_;
    std::array<std::uint32_t, kNameSlots> slots_;
    std::uint32_t count_ = 0;
    std::uint32_t characters_ = 0;
};

/// Types of one other library.
class ImportTable {
public:
    explicit ImportTable(GuidTable& guids) noexcept : guids_(guids) {}
    /// To be called once, before the types.
    void enter_library(REFGUID guid, std::uint16_t major_version, std::uint16_t minor_version, std::string_view file);
    /// The reference to an imported type; entered where it is new.
    std::uint32_t enter_type(REFGUID guid, TypeKind kind);
    const ByteBuffer& libraries() const noexcept { return libraries_; }
    const ByteBuffer& types() const noexcept { return types_; }
    std::uint32_t count() const noexcept { return types_.size() / kEntrySize; }

private:
    static constexpr std::uint32_t kEntrySize = 12;
    static constexpr std::uint32_t kGuidAt = 8;

    GuidTable& guids_;
    ByteBuffer libraries_;
    ByteBuffer types_;
};

/// A type as parameters name it: a simple type in itself, any other by its offset in the table of types.
struct Type {
    std::uint32_t code = 0;
    /// What the type's description takes in a reader's memory.
    std::uint32_t memory = 0;
};

/// Types that are made of others.
class TypeTable {
public:
    static Type simple(VARTYPE type) noexcept { return {0x80000000 | std::uint32_t{type} << 16 | type, 0}; }
    Type pointer_to(Type target);
    /// A type that has a description of its own, here or in another library.
    Type described(std::uint32_t reference);
    const ByteBuffer& entries() const noexcept { return entries_; }

private:
    std::uint32_t enter(std::uint32_t head, std::uint32_t target);

    ByteBuffer entries_;
};

}  // namespace vex::type_library
