// The type library file. What it says is read by the system's own loader, on Windows (type_library_loader_test.cpp);
// here every byte is held to what that loader has read.
#include <gtest/gtest.h>

#include <vector>

#include "plugin/contract.h"
#include "plugin/type_library/writer.h"

namespace vex::plugin_test {
namespace {

/// FNV-1a, so that the 3084 bytes need not stand here.
std::uint64_t fingerprint(const std::vector<std::uint8_t>& bytes) {
    std::uint64_t hash = 0xCBF29CE484222325;
    for (const std::uint8_t byte : bytes) hash = (hash ^ byte) * 0x100000001B3;
    return hash;
}

TEST(TypeLibraryFile, IsTheOneThatTheSystemsLoaderHasRead) {
    const std::vector<std::uint8_t> bytes = type_library::write(plugin::kLibrary);
    EXPECT_EQ(bytes.size(), 3084U);
    EXPECT_EQ(fingerprint(bytes), 17773699433444739241U)
        << "after an intended change: let the loader's tests read it on Windows";
}

TEST(InterfaceIdResource, IsALengthAndTheIdentity) {
    const std::vector<std::uint8_t> bytes = type_library::write_interface_id(plugin::kPluginDataInterface);
    const std::vector<std::uint8_t> expected = {16,   0,    0,    0,    0xCC, 0x5C, 0xD1, 0x28, 0x8D, 0xA5,
                                                0xF0, 0x44, 0x8A, 0xAF, 0x3E, 0xEC, 0xB0, 0x73, 0x6F, 0xA9};
    EXPECT_EQ(bytes, expected);
}

}  // namespace
}  // namespace vex::plugin_test
