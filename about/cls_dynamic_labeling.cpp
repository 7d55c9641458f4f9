// The name of the company under whose label the host is sold.
#include "about/cls_dynamic_labeling.h"

#include "core/product.h"

namespace vex {

RegistryRoutines& clsDynamicLabeling::routines() {
    if (!routines_) routines_.emplace(registry_, code_page_);
    return *routines_;
}

const std::u16string& clsDynamicLabeling::CompanyName() {
    RegistryRoutines& registry = routines();
    registry.set_hKey(platform::kHkeyLocalMachine);
    registry.set_KeyRoot(u"Software");
    registry.set_Subkey(u"BrivolaLite");
    company_name_ = registry.GetRegistryValue(u"Private Label Company", product::kCompanyName).to_text();
    return company_name_;
}

}  // namespace vex
