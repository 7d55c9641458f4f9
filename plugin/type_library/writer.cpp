// The standard binary type library format, as far as the contract needs it.
//
// A file is a header, the offsets of the type descriptions within their segment, a directory of 15 segments, the
// segments, and then a block for each type description that has members. Everything refers to everything by offsets
// within the segment in question; kNone stands for "none". Numbers are little-endian.
#include "plugin/type_library/writer.h"

#include <algorithm>
#include <array>

namespace vex::type_library {
namespace {

using plugin::Class;
using plugin::Interface;
using plugin::Library;
using plugin::Member;
using plugin::MemberKind;
using plugin::Parameter;
using plugin::Passing;
using plugin::ValueType;

constexpr std::uint32_t kNone = 0xFFFFFFFF;

class Bytes {
public:
    std::uint32_t size() const noexcept { return static_cast<std::uint32_t>(bytes_.size()); }
    const std::vector<std::uint8_t>& all() const noexcept { return bytes_; }

    void put8(std::uint32_t value) { bytes_.push_back(static_cast<std::uint8_t>(value)); }
    void put16(std::uint32_t value) {
        put8(value);
        put8(value >> 8);
    }
    void put32(std::uint32_t value) {
        put16(value);
        put16(value >> 16);
    }
    template <class... Values>
    void put32s(Values... values) {
        (put32(values), ...);
    }
    void put(std::string_view text) {
        for (const char character : text) put8(static_cast<unsigned char>(character));
    }
    void put(REFGUID guid) {
        put32(guid.Data1);
        put16(guid.Data2);
        put16(guid.Data3);
        for (const std::uint8_t byte : guid.Data4) put8(byte);
    }
    void put(const Bytes& other) { bytes_.insert(bytes_.end(), other.bytes_.begin(), other.bytes_.end()); }
    /// Fills up to a whole number of 32-bit words.
    void align() {
        while (size() % 4 != 0) put8('W');
    }

    std::uint32_t get32(std::uint32_t at) const {
        return bytes_.at(at) | std::uint32_t{bytes_.at(at + 1)} << 8 | std::uint32_t{bytes_.at(at + 2)} << 16 |
               std::uint32_t{bytes_.at(at + 3)} << 24;
    }
    void set32(std::uint32_t at, std::uint32_t value) {
        for (std::uint32_t i = 0; i < 4; ++i) bytes_.at(at + i) = static_cast<std::uint8_t>(value >> (8 * i));
    }

private:
    std::vector<std::uint8_t> bytes_;
};

// ---- Header and directory

constexpr std::uint32_t kSignature = 0x5446534D;  // "MSFT"
constexpr std::uint32_t kFormatVersion = 0x00010002;
/// Names are hashed, and compared, by the rules of U.S. English.
constexpr std::uint32_t kNameLocale = 0x0409;
constexpr std::uint32_t kNeutralLocale = 0;
/// 32-bit Windows, with the bit that is always set.
constexpr std::uint32_t kSystemFlags = 0x41;
constexpr std::uint32_t kHeaderSize = 0x54;

/// The directory's order. The rest of its 15 entries is empty here and always.
enum Segment : std::uint32_t {
    kTypeDescriptions,
    kImportedTypes,
    kImportedLibraries,
    kReferences,
    kGuidHash,
    kGuids,
    kNameHash,
    kNames,
    kStrings,
    kTypes,
    kSegmentCount = 15,
};
constexpr std::uint32_t kSegmentEntryReserved = 0x0F;

// ---- Tables: identities, names and types, each entered once

/// A table's hash chains: the slot leads to the entry that came last, and each entry to the one before.
template <std::uint32_t count>
class HashSlots {
public:
    static constexpr std::uint32_t kCount = count;

    HashSlots() { slots_.fill(kNone); }
    std::uint32_t& operator[](std::uint32_t hash) { return slots_[hash % count]; }
    Bytes bytes() const {
        Bytes bytes;
        for (const std::uint32_t slot : slots_) bytes.put32(slot);
        return bytes;
    }

private:
    std::array<std::uint32_t, count> slots_;
};

/// An entry: the identity, what it refers to, the next one of its chain.
struct GuidTable {
    Bytes entries;
    HashSlots<32> slots;

    /// The offset of the identity; entered with what it refers to where it is new.
    std::uint32_t enter(REFGUID guid, std::uint32_t reference) {
        Bytes wanted;
        wanted.put(guid);
        std::uint32_t hash = 0;
        // The 16-bit numbers that the identity consists of, all folded into one.
        for (std::uint32_t i = 0; i < wanted.size(); ++i) hash ^= std::uint32_t{wanted.all()[i]} << (8 * (i % 2));
        std::uint32_t& slot = slots[hash];
        for (std::uint32_t at = slot; at != kNone; at = entries.get32(at + 20)) {
            if (std::equal(wanted.all().begin(), wanted.all().end(), entries.all().begin() + at)) return at;
        }
        const std::uint32_t at = entries.size();
        entries.put(wanted);
        entries.put32s(reference, slot);
        slot = at;
        return at;
    }
};

/// What the identity of the library itself refers to; the marks that tell imported types and libraries from types of
/// this library.
constexpr std::uint32_t kLibraryMark = 0xFFFFFFFE;
constexpr std::uint32_t kImportedTypeMark = 1;
constexpr std::uint32_t kImportedLibraryMark = 2;

char lower(char character) noexcept {
    return static_cast<char>(character >= 'A' && character <= 'Z' ? character - 'A' + 'a' : character);
}

/// An entry: what the name refers to, the next one of its chain, length, mark, hash value, letters.
struct NameTable {
    static constexpr std::uint32_t kTypeNameMark = 0x38;

    Bytes entries;
    HashSlots<128> slots;
    std::uint32_t count = 0;
    /// Of all names together, without what fills them up.
    std::uint32_t characters = 0;

    /// The offset of the name, in which letter case does not count; entered where it is new. `reference`: the type
    /// description that the name or its member belongs to; kNone for names of libraries and parameters.
    std::uint32_t enter(std::string_view name, std::uint32_t reference, std::uint32_t mark = 0) {
        const std::uint16_t hash = name_hash(name);
        const auto length = static_cast<std::uint32_t>(name.size());
        std::uint32_t& slot = slots[hash];
        for (std::uint32_t at = slot; at != kNone; at = entries.get32(at + 4)) {
            const auto text = entries.all().begin() + at + 12;
            const auto same = [](char left, std::uint8_t right) {
                return lower(left) == lower(static_cast<char>(right));
            };
            if (entries.all()[at + 8] == length && std::equal(name.begin(), name.end(), text, same)) return at;
        }
        const std::uint32_t at = entries.size();
        entries.put32s(reference, slot);
        entries.put8(length);
        entries.put8(mark);
        entries.put16(hash);
        entries.put(name);
        entries.align();
        slot = at;
        ++count;
        characters += length;
        return at;
    }
};

/// A type as parameters name it: a simple type in itself, any other by its offset in the table of types.
struct Type {
    std::uint32_t code = 0;
    /// What the type's description takes in the memory of a 32-bit reader.
    std::uint32_t memory = 0;
};

constexpr std::uint32_t kSimpleType = 0x80000000;

Type simple(VARTYPE type) noexcept { return {kSimpleType | std::uint32_t{type} << 16 | type, 0}; }

/// Types that are made of others. The first word of an entry says in its upper half what the type comes down to, for
/// readers in a hurry: the type pointed at with the mark of a pointer, or that one must look further (kNested), down
/// to a described type (kDescribed).
struct TypeTable {
    static constexpr std::uint32_t kNested = 0x7FFE;
    static constexpr std::uint32_t kDescribed = 0x7FFF;

    Bytes entries;

    Type pointer_to(Type target) {
        std::uint32_t digest = kNested;
        if ((target.code & kSimpleType) != 0) {
            digest = (target.code >> 16 & VT_TYPEMASK) | VT_BYREF;
        } else if (entries.get32(target.code) >> 16 == kDescribed) {
            digest = kDescribed;
        }
        return {enter(digest << 16 | VT_PTR, target.code), target.memory + 8};
    }
    /// A type that has a description of its own, here or in another library.
    Type described(std::uint32_t reference) { return {enter(kDescribed << 16 | VT_USERDEFINED, reference), 0}; }

private:
    std::uint32_t enter(std::uint32_t head, std::uint32_t target) {
        for (std::uint32_t at = 0; at < entries.size(); at += 8) {
            if (entries.get32(at) == head && entries.get32(at + 4) == target) return at;
        }
        entries.put32s(head, target);
        return entries.size() - 8;
    }
};

// ---- The standard library, as far as the contract refers to it

constexpr std::string_view kStandardLibraryFile = "stdole2.tlb";
constexpr GUID kStandardLibrary = {0x00020430, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};
constexpr GUID kStandardPictureClass = {0x0BE35204, 0x8F91, 0x11CE, {0x9D, 0xE3, 0x00, 0xAA, 0x00, 0x4B, 0xB8, 0x51}};

enum TypeKind : std::uint32_t { kInterfaceKind = 3, kDispatchKind = 4, kClassKind = 5 };

// ---- Descriptions of types and members

/// The kind of a type description with its alignment; a dual interface counts as a dispatch interface that has a
/// virtual table too.
constexpr std::uint32_t kDualInterface = 0x2234;
constexpr std::uint32_t kCreatableClass = 0x2225;
constexpr std::uint32_t kTypeDescriptionSize = 0x64;
/// Where a type description tells of the block of its members.
constexpr std::uint32_t kBlockAt = 4;
/// Stands in every description of a type; readers pass over it.
constexpr std::uint32_t kDescriptionMark = 3;

enum TypeFlags : std::uint32_t {
    kCanCreate = 0x2,
    kHidden = 0x10,
    kDual = 0x40,
    kNonExtensible = 0x80,
    kOleAutomation = 0x100,
    kDispatchable = 0x1000,
};
enum ImplementedFlags : std::uint32_t { kDefault = 1 };

/// What IDispatch has: functions with those of IUnknown, and the length of the line of its ancestors.
constexpr std::uint32_t kDispatchFunctions = 7;
constexpr std::uint32_t kDispatchAncestors = 2;
constexpr std::uint32_t kPointerSize = 4;

// A function: pure virtual, stdcall, and how it is invoked.
constexpr std::uint32_t kPureVirtual = 1;
constexpr std::uint32_t kInvokeMethod = 1 << 3;
constexpr std::uint32_t kInvokePropertyGet = 2 << 3;
constexpr std::uint32_t kStandardCall = 4 << 8;
constexpr std::uint32_t kHasReturnValue = 0x4000;
constexpr std::uint32_t kFunctionSize = 0x18;

enum ParameterFlags : std::uint32_t { kIn = 1, kOut = 2, kReturnValue = 8, kOptional = 0x10 };

// What descriptions take in the memory of a 32-bit reader; the file tells it so that it can reserve it. A function
// counts for more within the sum that its interface tells: with what the reader keeps beside the description.
constexpr std::uint32_t kFunctionMemory = 52;
constexpr std::uint32_t kFunctionBlockMemory = 56;
constexpr std::uint32_t kParameterMemory = 16;

std::uint32_t version(std::uint16_t major, std::uint16_t minor) { return std::uint32_t{minor} << 16 | major; }

// ---- The file

class Writer {
public:
    explicit Writer(const Library& library) : library_(library) {}

    std::vector<std::uint8_t> write() {
        const std::uint32_t guid = guids_.enter(library_.id, kLibraryMark);
        const std::uint32_t name = names_.enter(library_.name, kNone);
        for (const Class& type : library_.classes) add_class(type, add_interface(type.default_interface));
        Bytes file = header(guid, name);
        put_segments(file);
        return file.all();
    }

private:
    // ---- The header and what follows it

    std::uint32_t type_count() const noexcept { return static_cast<std::uint32_t>(blocks_.size()); }

    Bytes header(std::uint32_t guid, std::uint32_t name) const {
        Bytes out;
        out.put32s(kSignature, kFormatVersion);
        out.put32(guid);
        out.put32s(kNameLocale, kNeutralLocale);
        out.put32(kSystemFlags);
        out.put32(version(library_.major_version, library_.minor_version));
        out.put32(0);  // flags
        out.put32(type_count());
        out.put32s(kNone, 0U, 0U);  // help text and its context, help context
        out.put32s(names_.count, names_.characters);
        out.put32(name);
        out.put32s(kNone, kNone);  // help file, custom data
        out.put32s(decltype(guids_.slots)::kCount, decltype(names_.slots)::kCount);
        out.put32(dispatch_);
        out.put32(imported_count_);
        return out;
    }

    void put_segments(Bytes& file) {
        std::array<Bytes, kSegmentCount> segments;
        segments[kTypeDescriptions] = descriptions_;
        segments[kImportedTypes] = imported_types_;
        segments[kImportedLibraries] = imported_libraries_;
        segments[kReferences] = references_;
        segments[kGuidHash] = guids_.slots.bytes();
        segments[kGuids] = guids_.entries;
        segments[kNameHash] = names_.slots.bytes();
        segments[kNames] = names_.entries;
        segments[kTypes] = types_.entries;

        // The order of the segments in the file differs from the directory's.
        constexpr std::array kFileOrder = {kTypeDescriptions,  kGuidHash, kGuids, kReferences, kImportedTypes,
                                           kImportedLibraries, kNameHash, kNames, kTypes};
        std::uint32_t position = kHeaderSize + 4 * type_count() + 16 * kSegmentCount;
        std::array<std::uint32_t, kSegmentCount> offsets{};
        for (const Segment segment : kFileOrder) {
            offsets[segment] = position;
            position += segments[segment].size();
        }
        place_blocks(segments[kTypeDescriptions], position);

        for (std::uint32_t i = 0; i < type_count(); ++i) file.put32(i * kTypeDescriptionSize);
        for (std::uint32_t i = 0; i < kSegmentCount; ++i) {
            const std::uint32_t size = segments[i].size();
            file.put32s(size == 0 ? kNone : offsets[i], size, kNone, kSegmentEntryReserved);
        }
        for (const Segment segment : kFileOrder) file.put(segments[segment]);
        for (const Bytes& block : blocks_) file.put(block);
    }

    /// Tells each type description where the block of its members lies; one without members points behind the file.
    void place_blocks(Bytes& descriptions, std::uint32_t position) const {
        std::uint32_t end = position;
        for (const Bytes& block : blocks_) end += block.size();
        for (std::uint32_t i = 0; i < type_count(); ++i) {
            descriptions.set32(i * kTypeDescriptionSize + kBlockAt, blocks_[i].size() == 0 ? end : position);
            position += blocks_[i].size();
        }
    }

    // ---- Imports

    /// The reference to a type of the standard library; entered where it is new.
    std::uint32_t import_type(REFGUID guid, TypeKind kind) {
        if (imported_count_ == 0) {
            imported_libraries_.put32(guids_.enter(kStandardLibrary, kImportedLibraryMark));
            imported_libraries_.put32(kNeutralLocale);
            imported_libraries_.put32(version(2, 0));
            imported_libraries_.put16(static_cast<std::uint32_t>(kStandardLibraryFile.size() << 2 | 1));
            imported_libraries_.put(kStandardLibraryFile);
            imported_libraries_.align();
        }
        const std::uint32_t fresh = imported_types_.size();
        const std::uint32_t guid_at = guids_.enter(guid, fresh | kImportedTypeMark);
        for (std::uint32_t at = 0; at < fresh; at += 12) {
            if (imported_types_.get32(at + 8) == guid_at) return at | kImportedTypeMark;
        }
        constexpr std::uint32_t kByIdentity = 0x10000;
        imported_types_.put32(std::uint32_t{kind} << 24 | kByIdentity | imported_count_++);
        imported_types_.put32s(0U, guid_at);  // of the one library
        return fresh | kImportedTypeMark;
    }

    Type type_of(ValueType type) {
        switch (type) {
            case ValueType::int16: return simple(VT_I2);
            case ValueType::text: return simple(VT_BSTR);
            case ValueType::boolean: return simple(VT_BOOL);
            case ValueType::object: return simple(VT_DISPATCH);
            case ValueType::picture:
                import_type(kStandardPictureClass, kClassKind);
                return types_.pointer_to(types_.described(import_type(IID_IPictureDisp, kDispatchKind)));
            case ValueType::nothing: break;
        }
        return simple(VT_VOID);
    }

    // ---- The descriptions of interfaces and classes

    /// What a type description says that differs from kind to kind.
    struct Description {
        std::uint32_t kind = 0;
        std::uint32_t function_memory = kNone;
        std::uint32_t function_count = 0;
        std::uint32_t guid = 0;
        std::uint32_t flags = 0;
        std::uint32_t name = 0;
        std::uint32_t table_size = 0;
        /// The base interface, or the class's references.
        std::uint32_t base = 0;
        std::uint32_t base_facts = 0;
    };

    void add(const Description& type, Bytes block) {
        Bytes& out = descriptions_;
        out.put32(type_count() << 16 | type.kind);
        out.put32(kNone);  // where the members' block lies; set when it is known
        out.put32(type.function_count * 0x40);
        out.put32(type.function_memory);
        out.put32s(kDescriptionMark, 0U);
        out.put32(type.function_count);
        out.put32s(0U, 0U, 0U, 0U);
        out.put32(type.guid);
        out.put32(type.flags);
        out.put32(type.name);
        out.put32(version(library_.major_version, library_.minor_version));
        out.put32s(kNone, 0U, 0U);  // help text and its context, help context
        out.put32(kNone);           // custom data
        out.put16(1);               // interfaces implemented, or bases
        out.put16(type.table_size);
        out.put32(kPointerSize);
        out.put32(type.base);
        out.put32(type.base_facts);
        out.put32s(0U, kNone);
        blocks_.push_back(std::move(block));
    }

    std::uint32_t add_interface(const Interface& source) {
        const std::uint32_t at = descriptions_.size();
        Description type;
        type.kind = kDualInterface;
        type.function_memory = 0;
        type.function_count = static_cast<std::uint32_t>(source.members.size());
        type.flags = kHidden | kDual | kNonExtensible | kOleAutomation | kDispatchable;
        type.guid = guids_.enter(source.id, at);
        type.name = names_.enter(source.name, at, NameTable::kTypeNameMark);
        type.table_size = (kDispatchFunctions + type.function_count) * kPointerSize;
        type.base = dispatch_ = import_type(IID_IDispatch, kInterfaceKind);
        type.base_facts = kDispatchFunctions << 16 | kDispatchAncestors;
        Bytes block = members(source, at, type.function_memory);
        add(type, std::move(block));
        return at;
    }

    void add_class(const Class& source, std::uint32_t interface_at) {
        const std::uint32_t at = descriptions_.size();
        Description type;
        type.kind = kCreatableClass;
        type.flags = kCanCreate;
        type.guid = guids_.enter(source.id, at);
        type.name = names_.enter(source.name, at, NameTable::kTypeNameMark);
        type.base = references_.size();
        references_.put32s(interface_at, std::uint32_t{kDefault}, kNone, kNone);  // no custom data, no next reference
        add(type, {});
    }

    /// The block of an interface's members: their descriptions, then all ids, names and places. `memory`: what the
    /// descriptions take; added to.
    Bytes members(const Interface& source, std::uint32_t interface_at, std::uint32_t& memory) {
        Bytes descriptions, ids, names, places;
        std::uint32_t index = 0;
        for (const Member& member : source.members) {
            ids.put32(static_cast<std::uint32_t>(member.id));
            names.put32(names_.enter(member.name, interface_at));
            places.put32(descriptions.size());
            descriptions.put(function(member, index++, memory));
        }
        Bytes block;
        block.put32(descriptions.size());
        for (const Bytes* part : {&descriptions, &ids, &names, &places}) block.put(*part);
        return block;
    }

    Bytes function(const Member& member, std::uint32_t index, std::uint32_t& all_memory) {
        std::uint32_t count = 0;
        std::uint32_t memory = kFunctionMemory;
        Bytes parameters;
        const auto add_parameter = [&](Type type, std::uint32_t name, std::uint32_t flags) {
            parameters.put32s(type.code, name, flags);
            memory += kParameterMemory + type.memory;
            ++count;
        };
        std::uint32_t optional = 0;
        if (const Parameter* parameter = member.parameter) {
            Type type = type_of(parameter->type);
            std::uint32_t flags = kIn;
            if (parameter->passing != Passing::by_value) {
                type = types_.pointer_to(type);
                flags |= kOut;
            }
            if (parameter->passing == Passing::optional_by_reference) {
                flags |= kOptional;
                ++optional;
            }
            add_parameter(type, names_.enter(parameter->name, kNone), flags);
        }
        const bool has_result = member.result != ValueType::nothing;
        if (has_result) add_parameter(types_.pointer_to(type_of(member.result)), kNone, kOut | kReturnValue);
        all_memory += kFunctionBlockMemory + kParameterMemory * count;

        Bytes out;
        out.put16(kFunctionSize + parameters.size());
        out.put16(index);
        out.put32(simple(VT_HRESULT).code);
        out.put32(0);  // flags
        out.put16((kDispatchFunctions + index) * kPointerSize);
        out.put16(memory);
        const std::uint32_t invoke = member.kind == MemberKind::property_get ? kInvokePropertyGet : kInvokeMethod;
        out.put16(kPureVirtual | invoke | kStandardCall | (has_result ? kHasReturnValue : 0));
        out.put16(index);  // the next member of this id: itself
        out.put16(count);
        out.put16(optional);
        out.put(parameters);
        return out;
    }

    const Library& library_;
    GuidTable guids_;
    NameTable names_;
    TypeTable types_;
    Bytes imported_libraries_;
    Bytes imported_types_;
    std::uint32_t imported_count_ = 0;
    /// The reference to IDispatch.
    std::uint32_t dispatch_ = kNone;
    Bytes references_;
    Bytes descriptions_;
    /// For each type description the block of its members.
    std::vector<Bytes> blocks_;
};

}  // namespace

std::uint16_t name_hash(std::string_view name) noexcept {
    std::uint32_t value = 0x0DEADBEE;
    for (const char character : name) {
        char upper = static_cast<char>(character >= 'a' && character <= 'z' ? character - 'a' + 'A' : character);
        // Two letters count as the locale's tables have it.
        if (upper == 'W') upper = 'V';
        if (upper == 'Y') upper = 'U';
        value = value * 37 + static_cast<unsigned char>(upper);
    }
    return static_cast<std::uint16_t>(value % 65599);
}

std::vector<std::uint8_t> write(const Library& library) { return Writer(library).write(); }

std::vector<std::uint8_t> write_interface_id(const Interface& source) {
    Bytes bytes;
    bytes.put32(16);
    bytes.put(source.id);
    return bytes.all();
}

}  // namespace vex::type_library
