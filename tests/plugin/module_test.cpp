// The plug-in's room seen from inside: the data of apartments, and registrations that fail.
#include "plugin/module.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <thread>

#include "platform/class_keys.h"
#include "plugin/registration.h"

namespace {

/// In place of the system's keys: those that there are, and values as "key@name".
struct {
    std::set<std::u16string> names;
    /// How many more values can be written, and which one cannot be removed.
    std::size_t writes = 0;
    std::u16string stuck;
} store;

}  // namespace

namespace vex::platform {

bool write_class_text(const std::u16string& key, const std::u16string& name, const std::u16string& /*text*/) {
    // As a system does, makes the key before it refuses the value.
    for (std::size_t end = 0; end != std::u16string::npos;) {
        end = key.find(u'\\', end + 1);
        store.names.insert(key.substr(0, end));
    }
    if (store.writes == 0) return false;
    --store.writes;
    store.names.insert(key + u"@" + name);
    return true;
}

bool remove_class_text(const std::u16string& key, const std::u16string& name) {
    if (key + u"@" + name == store.stuck) return false;
    store.names.erase(key + u"@" + name);
    return true;
}

void remove_empty_class_key(const std::u16string& key) {
    for (const std::u16string& name : store.names) {
        if (name.starts_with(key + u'@') || name.starts_with(key + u'\\')) return;
    }
    store.names.erase(key);
}

}  // namespace vex::platform

namespace vex::plugin {
namespace {

TEST(Registration, IsWholeOrNotAtAll) {
    const auto entries = registration_entries(u"C:\\Host\\vexFirmwarePlugin.dll", u"win32");
    const std::set<std::u16string> shared = {u"CLSID", u"Interface", u"TypeLib"};
    for (std::size_t written = 0; written < entries.size(); ++written) {
        // What it has not come to was there before.
        store = {shared, 1, {}};
        if (written + 1 < entries.size()) platform::write_class_text(entries.back().key, entries.back().name, u"older");
        const auto before = store.names;
        store.writes = written;
        EXPECT_EQ(write_registration(entries), entries[written].failure);
        EXPECT_EQ(store.names, before) << written;
    }
    store = {shared, entries.size(), {}};
    EXPECT_EQ(write_registration(entries), S_OK);
    const std::vector<HRESULT> failures = {entries.front().failure, entries[4].failure, entries.back().failure};
    EXPECT_EQ(failures, (std::vector<HRESULT>{SELFREG_E_TYPELIB, SELFREG_E_CLASS, SELFREG_E_TYPELIB}));

    store.stuck = entries[5].key + u"@";
    EXPECT_EQ(remove_registration(entries), entries[5].failure) << "it cannot be removed";
    EXPECT_EQ(std::ranges::count_if(store.names, [](const auto& name) { return name.find(u'@') != name.npos; }), 1);
    store.stuck.clear();
    EXPECT_EQ(remove_registration(entries), S_OK);
    EXPECT_EQ(store.names, shared);
}

TEST(ModuleData, EveryApartmentHasItsOwn) {
    ModuleData& mine = module_data();
    EXPECT_EQ(&module_data(), &mine) << "made once";
    const ModuleData::Table names = mine.sPluginNames;
    EXPECT_FALSE(names[0].empty());
    std::thread([&] {
        ModuleData& theirs = module_data();
        EXPECT_NE(&theirs, &mine);
        EXPECT_EQ(theirs.sPluginNames, names) << "filled by each apartment's own start";
        theirs.sPluginNames[0] = u"changed";
        theirs.sPluginDescriptions[0].clear();
    }).join();
    EXPECT_EQ(mine.sPluginNames, names);
    EXPECT_FALSE(mine.sPluginDescriptions[0].empty());
}

}  // namespace
}  // namespace vex::plugin
