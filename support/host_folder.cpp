// Where the host is installed.
#include "support/host_folder.h"

#include "support/mod_reg_access.h"

namespace vex {

std::u16string host_installation_folder(const Services& services) {
    std::u16string folder = ReadHostSetting(services, u"Brivola3", u"Settings", u"AppPath", services.module_folder);
    if (!folder.ends_with(u'\\')) folder += u'\\';
    return folder;
}

}  // namespace vex
