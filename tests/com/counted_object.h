// An automation object whose references and calls a test can count.
#pragma once

#include "com/object.h"

namespace vex::com {

/// Lets the test see how many are alive.
inline ModuleLifetime& test_module() {
    static ModuleLifetime instance;
    return instance;
}

/// Its default property has the value that it was given.
class CountedObject final : public Object<CountedObject, Untyped<IDispatch>> {
public:
    explicit CountedObject(SHORT value = 0) noexcept : Object(test_module()), value_(value) {}

    HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) noexcept override {
        return DISP_E_UNKNOWNNAME;
    }
    HRESULT STDMETHODCALLTYPE Invoke(DISPID member, REFIID, LCID, WORD flags, DISPPARAMS*, VARIANT* result, EXCEPINFO*,
                                     UINT*) noexcept override {
        if (member != DISPID_VALUE || (flags & DISPATCH_PROPERTYGET) == 0) return DISP_E_MEMBERNOTFOUND;
        result->vt = VT_I2;
        result->iVal = value_;
        return S_OK;
    }

private:
    SHORT value_;
};

}  // namespace vex::com
