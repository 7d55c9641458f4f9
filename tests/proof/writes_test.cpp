// What a whole update writes: the stated values of the registry, and no file at all.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <set>

#include "platform/native/machine.h"
#include "tests/proof/rig.h"

namespace vex::proof {
namespace {

using testing::UnorderedElementsAre;

constexpr char kFirmware[] = "[HKEY_LOCAL_MACHINE\\Software\\Norvan\\Brivola3\\Firmware]";
constexpr char kDownloader[] = "[HKEY_CURRENT_USER\\Software\\Tarvex\\nvSerDownload\\Settings]";

/// "KEY NAME" of every value outside the classes, which the simulated host registers.
std::set<std::string> written_values() {
    std::set<std::string> values;
    std::string key;
    std::ifstream registry(platform::native::machine_folder() / "registry");
    for (std::string line; std::getline(registry, line);) {
        if (line.starts_with('[')) key = line;
        const bool value = line.starts_with('"') || line.starts_with('@');
        if (value && key.find("\\Classes\\") == std::string::npos)
            values.insert(key + ' ' + line.substr(0, line.find('=')));
    }
    return values;
}

std::set<std::filesystem::path> files() {
    std::set<std::filesystem::path> all;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(platform::native::machine_folder())) {
        if (entry.path().filename() != "registry") all.insert(entry.path());
    }
    return all;
}

TEST(Writes, NothingButTheStatedValues) {
    Plan plan;
    play(plan);
    const std::set<std::filesystem::path> before = files();
    for (const Mode mode : {Mode::firmware, Mode::flash_loader, Mode::external_tool}) {
        plan.mode = mode;
        EXPECT_EQ(play(plan).rows_after_retry.front(), u"Updated - ");
    }
    EXPECT_EQ(files(), before);
    const auto under = [](const char* key, const char* name) { return std::string(key) + " \"" + name + '"'; };
    EXPECT_THAT(written_values(),
                UnorderedElementsAre(under(kFirmware, "LastFilePath"), under(kDownloader, "RAM File"),
                                     under(kDownloader, "ROM File"), under(kDownloader, "Com Port"),
                                     under(kDownloader, "Com Baud"), under(kDownloader, "Phone Number")));
}

}  // namespace
}  // namespace vex::proof
