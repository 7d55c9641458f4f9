// Writes the type library and the interface-id resources for the resource compiler.
// Usage: make_type_library FOLDER
// Writes into FOLDER vexFirmWarePlugin.tlb and, for each interface, its name and .bin.
#include <cstdint>
#include <fstream>
#include <iostream>
#include <stdexcept>
#include <string>
#include <vector>

#include "plugin/contract.h"
#include "plugin/type_library/writer.h"

namespace {

void save(const std::string& path, const std::vector<std::uint8_t>& bytes) {
    std::ofstream file(path, std::ios::binary);
    file.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    if (!file.flush()) throw std::runtime_error(path + ": cannot be written");
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::cerr << "usage: make_type_library FOLDER\n";
        return 2;
    }
    try {
        using namespace vex;
        const std::string folder = std::string(argv[1]) + "/";
        const plugin::Library& library = plugin::kLibrary;
        save(folder + std::string(library.name) + ".tlb", type_library::write(library));
        for (const plugin::Class& type : library.classes) {
            const plugin::Interface& source = type.default_interface;
            save(folder + std::string(source.name) + ".bin", type_library::write_interface_id(source));
        }
        return 0;
    } catch (const std::exception& error) {
        std::cerr << error.what() << '\n';
        return 1;
    }
}
