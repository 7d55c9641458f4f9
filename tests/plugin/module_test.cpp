// The module's data seen from inside: every apartment has its own, filled before its first object.
#include "plugin/module.h"

#include <gtest/gtest.h>

#include <thread>

namespace vex::plugin {
namespace {

TEST(ModuleData, EveryApartmentHasItsOwn) {
    ModuleData& mine = module_data();
    EXPECT_EQ(&module_data(), &mine) << "made once";
    const ModuleData::Table names = mine.sPluginNames;
    EXPECT_FALSE(names[0].empty());
    const ModuleData* theirs = nullptr;
    ModuleData::Table their_names;
    std::thread([&] {
        ModuleData& data = module_data();
        theirs = &data;
        their_names = data.sPluginNames;
        data.sPluginNames[0] = u"changed";
        data.sPluginDescriptions[0].clear();
    }).join();
    EXPECT_NE(theirs, &mine);
    EXPECT_EQ(their_names, names) << "filled by each apartment's own start";
    EXPECT_EQ(mine.sPluginNames, names);
    EXPECT_FALSE(mine.sPluginDescriptions[0].empty());
}

}  // namespace
}  // namespace vex::plugin
