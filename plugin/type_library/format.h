// The standard binary type library format, as far as this library needs it: numbers and their meaning.
//
// A file is a header, the offsets of the type descriptions within their segment, a directory of 15 segments,
// the segments, and then a block for each type description that has members. Everything refers to everything
// by offsets within the segment in question; kNone stands for "none".
#pragma once

#include <cstdint>

namespace vex::type_library {

constexpr std::uint32_t kNone = 0xFFFFFFFF;

constexpr std::uint32_t kSignature = 0x5446534D;  // "MSFT"
constexpr std::uint32_t kFormatVersion = 0x00010002;
/// Names are hashed, and compared, by the rules of U.S. English.
constexpr std::uint32_t kNameLocale = 0x0409;
constexpr std::uint32_t kNeutralLocale = 0;
/// 32-bit Windows, with the bit that is always set.
constexpr std::uint32_t kSystemFlags = 0x41;

constexpr std::uint32_t kHeaderSize = 0x54;
constexpr std::uint32_t kTypeDescriptionSize = 0x64;
constexpr std::uint32_t kGuidSlots = 32;
constexpr std::uint32_t kNameSlots = 128;

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

enum TypeKind : std::uint32_t { kInterfaceKind = 3, kDispatchKind = 4, kClassKind = 5 };

/// The kind of a type description with its alignment; a dual interface counts as a dispatch interface that
/// has a virtual table too.
constexpr std::uint32_t kDualInterface = 0x2234;
constexpr std::uint32_t kClass = 0x2225;

enum TypeFlags : std::uint32_t {
    kCanCreate = 0x2,
    kHidden = 0x10,
    kDual = 0x40,
    kNonExtensible = 0x80,
    kOleAutomation = 0x100,
    kDispatchable = 0x1000,
};

/// What IDispatch has: functions with those of IUnknown, and the length of the line of its ancestors.
constexpr std::uint32_t kDispatchFunctions = 7;
constexpr std::uint32_t kDispatchAncestors = 2;
constexpr std::uint32_t kPointerSize = 4;

enum ImplementedFlags : std::uint32_t { kDefault = 1 };
enum ParameterFlags : std::uint32_t { kIn = 1, kOut = 2, kReturnValue = 8, kOptional = 0x10 };

/// Of an imported type: it is named by its identity; the kind stands in the highest byte.
constexpr std::uint32_t kImportedByIdentity = 0x10000;
/// Marks in references that tell imported types and libraries from types of this library.
constexpr std::uint32_t kImportedTypeMark = 1;
constexpr std::uint32_t kImportedLibraryMark = 2;
/// What the identity of the library itself refers to.
constexpr std::uint32_t kLibraryMark = 0xFFFFFFFE;
/// Of the name of a type.
constexpr std::uint32_t kTypeNameMark = 0x38;

// A function: pure virtual, stdcall, and how it is invoked.
constexpr std::uint32_t kPureVirtual = 1;
constexpr std::uint32_t kInvokeMethod = 1 << 3;
constexpr std::uint32_t kInvokePropertyGet = 2 << 3;
constexpr std::uint32_t kStandardCall = 4 << 8;
constexpr std::uint32_t kHasReturnValue = 0x4000;

// Stands in every description of a type; readers pass over it.
constexpr std::uint32_t kDescriptionMark = 3;

constexpr std::uint32_t kFunctionSize = 0x18;
constexpr std::uint32_t kParameterSize = 0x0C;

// What descriptions take in the memory of a 32-bit reader; the file tells it so that it can reserve it.
constexpr std::uint32_t kFunctionMemory = 52;
constexpr std::uint32_t kParameterMemory = 16;
// A function within the sum that its interface tells: with what the reader keeps beside the description.
constexpr std::uint32_t kFunctionBlockMemory = 56;
constexpr std::uint32_t kPointerTypeMemory = 8;

}  // namespace vex::type_library
