// Writes the contract as a type library in the standard binary format.
//
// The file has the 3,084 bytes that the type library of this contract is known to have. They add up so:
//
//     84  the header
//     16  the offsets of 4 type descriptions
//    240  the directory of 15 segments
//    400  4 type descriptions of 100 bytes
//    128  32 slots for hashing identities
//    216  9 identities of 24 bytes: the library, its 2 interfaces and 2 classes; stdole2, and 3 types of it
//     32  2 references of 16 bytes: from each class to its interface
//     36  3 imported types of 12 bytes: IDispatch, the class StdPicture and its default interface, Picture
//     28  1 imported library: 14 bytes and "stdole2.tlb", filled up to whole words
//    512  128 slots for hashing names
//    608  23 names of 12 bytes and their letters, filled up to whole words: the library, 4 types, 14 members,
//         4 parameters; results have no names
//     56  7 types of 8 bytes: pointers to a 16-bit integer, a string, a boolean and an object; the picture, the
//         pointer to it, and the pointer to that one
//    292  _PluginData: its block's length, 5 members of 24 bytes with 9 parameters of 12 in all, and 12 more
//         for each member's id, name and place
//    436  _vexFirmWareUtil: likewise, 9 members with 9 parameters
//   -----
//   3084
//
// Only the total is known; how it is made up is our inference. What the contract refers to comes to 3,048 bytes; an
// import with its identity takes the 36 that are missing. That it is StdPicture's, entered because a member declared
// with this class refers to its default interface, is a guess: no reader looks at an import that nothing refers to.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "plugin/contract.h"

namespace vex::type_library {

/// The bytes of the type library file. Throws std::bad_alloc.
std::vector<std::uint8_t> write(const plugin::Library& library);

/// The content of an interface-id resource: the length 16 in 32 bits, then the identity.
std::vector<std::uint8_t> write_interface_id(const plugin::Interface& source);

/// The low word of the system's hash value of an ASCII name for U.S. English on 32-bit Windows: what type
/// libraries of that locale store. Letter case does not count.
std::uint16_t name_hash(std::string_view name) noexcept;

}  // namespace vex::type_library
