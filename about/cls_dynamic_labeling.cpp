// The name of the company under whose label the host is sold.
#include "about/cls_dynamic_labeling.h"

#include "core/product.h"

namespace vex {

RegistryRoutines& clsDynamicLabeling::routines() {
    if (!routines_) routines_.emplace(registry_);
    return *routines_;
}

const std::u16string& clsDynamicLabeling::CompanyName() {
    RegistryRoutines& registry = routines();
    registry.set_hKey(platform::kHkeyLocalMachine);
    registry.set_KeyRoot(u"Software");
    registry.set_Subkey(u"BrivolaLite");
    const std::u16string maker = product::kCompanyName;
    company_name_ = registry.GetRegistryValue(u"Private Label Company", maker).text_or(maker);
    return company_name_;
}

}  // namespace vex
