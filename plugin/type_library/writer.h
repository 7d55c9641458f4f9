// Writes the contract as a type library in the standard binary format.
//
// The size of this library, which is that of the standard layout, adds up so:
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
// The picture stands among the imports twice: where a member is declared with a class of another library, the
// standard writer enters that class and then the class's default interface, which is what the parameters of
// the member refer to. The pointer types stand once each, however many parameters share them.
#pragma once

#include <cstdint>
#include <vector>

#include "plugin/contract.h"

namespace vex::type_library {

/// The bytes of the type library file. Throws std::bad_alloc.
std::vector<std::uint8_t> write(const plugin::Library& library);

/// The content of an interface-id resource: the length 16 in 32 bits, then the identity.
std::vector<std::uint8_t> write_interface_id(const plugin::Interface& source);

}  // namespace vex::type_library
