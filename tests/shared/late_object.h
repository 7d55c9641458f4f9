// Automation objects of tests.
#pragma once

#include "com/object.h"

namespace vex::test {

/// Base of an object that is called late, without type information; Invoke is the derived class's.
template <class Derived>
class LateObject : public com::Object<Derived, com::Untyped<IDispatch>> {
public:
    HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID* ids) noexcept override {
        *ids = 1;
        return S_OK;
    }

protected:
    using com::Object<Derived, com::Untyped<IDispatch>>::Object;
};

}  // namespace vex::test
