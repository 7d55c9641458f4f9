// Writes the contract as a type library in the standard binary format.
#include "plugin/type_library/writer.h"

#include <array>
#include <string_view>

#include "plugin/type_library/byte_buffer.h"
#include "plugin/type_library/format.h"
#include "plugin/type_library/tables.h"

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

// What the library imports of the OLE automation standard library.
constexpr std::string_view kStandardLibraryFile = "stdole2.tlb";
constexpr GUID kStandardLibrary = {0x00020430, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};
constexpr GUID kStandardPictureClass = {0x0BE35204, 0x8F91, 0x11CE, {0x9D, 0xE3, 0x00, 0xAA, 0x00, 0x4B, 0xB8, 0x51}};
constexpr GUID kStandardPicture = {0x7BF80981, 0xBF32, 0x101A, {0x8B, 0xBB, 0x00, 0xAA, 0x00, 0x30, 0x0C, 0xAB}};

std::uint32_t version(std::uint16_t major, std::uint16_t minor) { return std::uint32_t{minor} << 16 | major; }

/// A member's block entries: the description and what the arrays behind the descriptions say of it.
struct Function {
    std::uint32_t id = 0;
    std::uint32_t name = 0;
    std::uint32_t at = 0;
};

class Writer {
public:
    explicit Writer(const Library& library) : library_(library), imports_(guids_) {}

    std::vector<std::uint8_t> write() {
        library_guid_ = guids_.enter(library_.id, kLibraryMark);
        library_name_ = names_.enter(library_.name, kNone, 0);
        for (const Class& type : library_.classes) {
            const std::uint32_t interface_at = add_interface(type.default_interface);
            add_class(type, interface_at);
        }
        return assemble();
    }

private:
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

    void add(const Description& type) {
        const std::uint32_t index = descriptions_.size() / kTypeDescriptionSize;
        ByteBuffer& out = descriptions_;
        out.put32(index << 16 | type.kind);
        out.put32(kNone);  // where the members' block lies; set when it is known
        out.put32(type.function_count * 0x40);
        out.put32(type.function_memory);
        out.put32(kDescriptionMark);
        out.put32(0);
        out.put32(type.function_count);
        for (int i = 0; i < 4; ++i) out.put32(0);
        out.put32(type.guid);
        out.put32(type.flags);
        out.put32(type.name);
        out.put32(version(library_.major_version, library_.minor_version));
        out.put32(kNone);  // help text
        out.put32(0);      // its context
        out.put32(0);      // help context
        out.put32(kNone);  // custom data
        out.put16(1);      // interfaces implemented, or bases
        out.put16(type.table_size);
        out.put32(kPointerSize);
        out.put32(type.base);
        out.put32(type.base_facts);
        out.put32(0);
        out.put32(kNone);
    }

    std::uint32_t add_interface(const Interface& source) {
        const std::uint32_t at = descriptions_.size();
        Description type;
        type.kind = kDualInterface;
        type.function_count = static_cast<std::uint32_t>(source.members.size());
        type.flags = kHidden | kDual | kNonExtensible | kOleAutomation | kDispatchable;
        type.guid = guids_.enter(source.id, at);
        type.name = names_.enter(source.name, at, kTypeNameMark);
        type.table_size = (kDispatchFunctions + type.function_count) * kPointerSize;
        type.base = dispatch();
        type.base_facts = kDispatchFunctions << 16 | kDispatchAncestors;
        blocks_.push_back(members_block(source, at, type.function_memory));
        add(type);
        return at;
    }

    void add_class(const Class& class_description, std::uint32_t interface_at) {
        const std::uint32_t at = descriptions_.size();
        Description type;
        type.kind = kClass;
        type.flags = kCanCreate;
        type.guid = guids_.enter(class_description.id, at);
        type.name = names_.enter(class_description.name, at, kTypeNameMark);
        type.base = references_.size();
        references_.put32(interface_at);
        references_.put32(kDefault);
        references_.put32(kNone);  // custom data
        references_.put32(kNone);  // the next reference
        blocks_.emplace_back();
        add(type);
    }

    std::uint32_t dispatch() {
        if (imports_.libraries().size() == 0) imports_.enter_library(kStandardLibrary, 2, 0, kStandardLibraryFile);
        return dispatch_ = imports_.enter_type(IID_IDispatch, kInterfaceKind);
    }

    Type type_of(ValueType type) {
        switch (type) {
            case ValueType::int16: return TypeTable::simple(VT_I2);
            case ValueType::text: return TypeTable::simple(VT_BSTR);
            case ValueType::boolean: return TypeTable::simple(VT_BOOL);
            case ValueType::object: return TypeTable::simple(VT_DISPATCH);
            case ValueType::picture:
                imports_.enter_type(kStandardPictureClass, kClassKind);
                return types_.pointer_to(types_.described(imports_.enter_type(kStandardPicture, kDispatchKind)));
            case ValueType::nothing: break;
        }
        return TypeTable::simple(VT_VOID);
    }

    static void put_parameter(ByteBuffer& out, Type type, std::uint32_t name, std::uint32_t flags) {
        out.put32(type.code);
        out.put32(name);
        out.put32(flags);
    }

    /// The descriptions of an interface's members with what goes with them. `memory`: what all of them take.
    ByteBuffer members_block(const Interface& source, std::uint32_t interface_at, std::uint32_t& memory) {
        ByteBuffer descriptions;
        std::vector<Function> functions;
        memory = 0;
        for (const Member& member : source.members) {
            const auto index = static_cast<std::uint32_t>(functions.size());
            functions.push_back({static_cast<std::uint32_t>(member.id), names_.enter(member.name, interface_at, 0),
                                 descriptions.size()});
            descriptions.put(function(member, index, memory));
        }
        ByteBuffer block;
        block.put32(descriptions.size());
        block.put(descriptions);
        for (const Function& entry : functions) block.put32(entry.id);
        for (const Function& entry : functions) block.put32(entry.name);
        for (const Function& entry : functions) block.put32(entry.at);
        return block;
    }

    ByteBuffer function(const Member& member, std::uint32_t index, std::uint32_t& all_memory) {
        const bool has_result = member.result != ValueType::nothing;
        std::uint32_t optional = 0;
        std::uint32_t memory = kFunctionMemory;
        ByteBuffer parameters;
        for (const Parameter& parameter : member.parameters) {
            Type type = type_of(parameter.type);
            std::uint32_t flags = kIn;
            if (parameter.passing != Passing::by_value) {
                type = types_.pointer_to(type);
                flags |= kOut;
            }
            if (parameter.passing == Passing::optional_by_reference) {
                flags |= kOptional;
                ++optional;
            }
            put_parameter(parameters, type, names_.enter(parameter.name, kNone, 0), flags);
            memory += kParameterMemory + type.memory;
        }
        if (has_result) {
            const Type type = types_.pointer_to(type_of(member.result));
            put_parameter(parameters, type, kNone, kOut | kReturnValue);
            memory += kParameterMemory + type.memory;
        }
        const std::uint32_t count = parameters.size() / kParameterSize;
        all_memory += kFunctionBlockMemory + kParameterMemory * count;

        ByteBuffer out;
        out.put16(kFunctionSize + parameters.size());
        out.put16(index);
        out.put32(TypeTable::simple(VT_HRESULT).code);
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

    std::vector<std::uint8_t> assemble() {
        std::array<ByteBuffer, kSegmentCount> segments;
        segments[kTypeDescriptions] = descriptions_;
        segments[kImportedTypes] = imports_.types();
        segments[kImportedLibraries] = imports_.libraries();
        segments[kReferences] = references_;
        segments[kGuidHash] = guids_.hash();
        segments[kGuids] = guids_.entries();
        segments[kNameHash] = names_.hash();
        segments[kNames] = names_.entries();
        segments[kTypes] = types_.entries();

        // The order of the segments in the file differs from the directory's.
        constexpr std::array kFileOrder = {kTypeDescriptions,  kGuidHash, kGuids, kReferences, kImportedTypes,
                                           kImportedLibraries, kNameHash, kNames, kTypes};
        const auto type_count = static_cast<std::uint32_t>(blocks_.size());
        std::uint32_t position = kHeaderSize + 4 * type_count + 16 * kSegmentCount;
        std::array<std::uint32_t, kSegmentCount> offsets{};
        for (const Segment segment : kFileOrder) {
            offsets[segment] = position;
            position += segments[segment].size();
        }
        place_blocks(segments[kTypeDescriptions], position);

        ByteBuffer file = header(type_count);
        for (std::uint32_t i = 0; i < type_count; ++i) file.put32(i * kTypeDescriptionSize);
        for (std::uint32_t i = 0; i < kSegmentCount; ++i) {
            file.put32(segments[i].size() == 0 ? kNone : offsets[i]);
            file.put32(segments[i].size());
            file.put32(kNone);
            file.put32(kSegmentEntryReserved);
        }
        for (const Segment segment : kFileOrder) file.put(segments[segment]);
        for (const ByteBuffer& block : blocks_) file.put(block);
        return file.bytes();
    }

    /// Tells each type description where the block of its members lies; one without members points behind the file.
    void place_blocks(ByteBuffer& descriptions, std::uint32_t position) const {
        constexpr std::uint32_t kBlockAt = 4;
        std::uint32_t end = position;
        for (const ByteBuffer& block : blocks_) end += block.size();
        for (std::uint32_t i = 0; i < blocks_.size(); ++i) {
            descriptions.set32(i * kTypeDescriptionSize + kBlockAt, blocks_[i].size() == 0 ? end : position);
            position += blocks_[i].size();
        }
    }

    ByteBuffer header(std::uint32_t type_count) const {
        ByteBuffer out;
        out.put32(kSignature);
        out.put32(kFormatVersion);
        out.put32(library_guid_);
        out.put32(kNameLocale);
        out.put32(kNeutralLocale);
        out.put32(kSystemFlags);
        out.put32(version(library_.major_version, library_.minor_version));
        out.put32(0);  // flags
        out.put32(type_count);
        out.put32(kNone);  // help text
        out.put32(0);      // its context
        out.put32(0);      // help context
        out.put32(names_.count());
        out.put32(names_.characters());
        out.put32(library_name_);
        out.put32(kNone);  // help file
        out.put32(kNone);  // custom data
        out.put32(kGuidSlots);
        out.put32(kNameSlots);
        out.put32(dispatch_);
        out.put32(imports_.count());
        return out;
    }

    const Library& library_;
    GuidTable guids_;
    NameTable names_;
    ImportTable imports_;
    TypeTable types_;
    ByteBuffer descriptions_;
    ByteBuffer references_;
    /// For each type description the block of its members.
    std::vector<ByteBuffer> blocks_;
    std::uint32_t library_guid_ = 0;
    std::uint32_t library_name_ = 0;
    std::uint32_t dispatch_ = kNone;
};

}  // namespace

std::vector<std::uint8_t> write(const Library& library) { return Writer(library).write(); }

std::vector<std::uint8_t> write_interface_id(const Interface& source) {
    ByteBuffer bytes;
    bytes.put32(16);
    bytes.put(source.id);
    return bytes.bytes();
}

}  // namespace vex::type_library
