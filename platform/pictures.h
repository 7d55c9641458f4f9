// The pictures seam: OLE pictures made of a module's icon resources.
#pragma once

#include <cstdint>

#include "com/com_ptr.h"

namespace vex::platform {

/// The pictures of one module.
class Pictures {
public:
    virtual ~Pictures() = default;
    /// A new picture of type icon from the module's icon resource of that numeric id, in the icon's own
    /// size. Raises kResourceNotFound when there is none.
    virtual com::ComPtr<IPictureDisp> load_icon(std::int16_t id) = 0;
};

}  // namespace vex::platform
