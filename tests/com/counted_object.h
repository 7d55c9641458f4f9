// An automation object whose references a test can count.
#pragma once

#include "tests/shared/late_object.h"

namespace vex::com {

/// Lets the test see how many are alive.
inline ModuleLifetime& test_module() {
    static ModuleLifetime instance;
    return instance;
}

class CountedObject final : public test::LateObject<CountedObject> {
public:
    CountedObject() noexcept : LateObject(test_module()) {}

    HRESULT STDMETHODCALLTYPE Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*,
                                     UINT*) noexcept override {
        return DISP_E_MEMBERNOTFOUND;
    }
};

}  // namespace vex::com
