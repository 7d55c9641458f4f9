// The substitute for COM and OLE automation where the system has none: types, identities, interfaces in
// the binary order of the originals, and the functions that the native runtime implements.
#pragma once

#include <cstddef>
#include <cstdint>

#include "com_types.h"

// ---- Automation values ------------------------------------------------------------------------------

enum VARENUM : VARTYPE {
    VT_EMPTY = 0,
    VT_NULL = 1,
    VT_I2 = 2,
    VT_I4 = 3,
    VT_R4 = 4,
    VT_R8 = 5,
    VT_CY = 6,
    VT_DATE = 7,
    VT_BSTR = 8,
    VT_DISPATCH = 9,
    VT_ERROR = 10,
    VT_BOOL = 11,
    VT_VARIANT = 12,
    VT_UNKNOWN = 13,
    VT_DECIMAL = 14,
    VT_I1 = 16,
    VT_UI1 = 17,
    VT_UI2 = 18,
    VT_UI4 = 19,
    VT_I8 = 20,
    VT_UI8 = 21,
    VT_INT = 22,
    VT_UINT = 23,
    VT_VOID = 24,
    VT_HRESULT = 25,
    VT_PTR = 26,
    VT_USERDEFINED = 29,
    VT_ARRAY = 0x2000,
    VT_BYREF = 0x4000,
    VT_TYPEMASK = 0x0FFF,
};

struct IUnknown;
struct IDispatch;
struct ITypeInfo;
struct VARIANT;
using VARIANTARG = VARIANT;

struct VARIANT {
    VARTYPE vt;
    WORD wReserved1;
    WORD wReserved2;
    WORD wReserved3;
    union {
        LONGLONG llVal;
        ULONGLONG ullVal;
        LONG lVal;
        ULONG ulVal;
        INT intVal;
        UINT uintVal;
        SHORT iVal;
        USHORT uiVal;
        signed char cVal;
        BYTE bVal;
        FLOAT fltVal;
        DOUBLE dblVal;
        VARIANT_BOOL boolVal;
        SCODE scode;
        CY cyVal;
        DATE date;
        BSTR bstrVal;
        IUnknown* punkVal;
        IDispatch* pdispVal;
        void* byref;
        BYTE* pbVal;
        SHORT* piVal;
        USHORT* puiVal;
        LONG* plVal;
        ULONG* pulVal;
        LONGLONG* pllVal;
        FLOAT* pfltVal;
        DOUBLE* pdblVal;
        VARIANT_BOOL* pboolVal;
        SCODE* pscode;
        CY* pcyVal;
        DATE* pdate;
        BSTR* pbstrVal;
        IUnknown** ppunkVal;
        IDispatch** ppdispVal;
        VARIANT* pvarVal;
        // As on Windows, where a record reference makes the value two pointers long.
        void* record[2];
    };
};

struct DISPPARAMS {
    VARIANTARG* rgvarg;
    DISPID* rgdispidNamedArgs;
    UINT cArgs;
    UINT cNamedArgs;
};

struct EXCEPINFO {
    WORD wCode;
    WORD wReserved;
    BSTR bstrSource;
    BSTR bstrDescription;
    BSTR bstrHelpFile;
    DWORD dwHelpContext;
    void* pvReserved;
    HRESULT (*pfnDeferredFillIn)(EXCEPINFO*);
    SCODE scode;
};

constexpr DISPID DISPID_UNKNOWN = -1;
constexpr DISPID DISPID_VALUE = 0;
constexpr DISPID DISPID_PROPERTYPUT = -3;
constexpr WORD DISPATCH_METHOD = 1;
constexpr WORD DISPATCH_PROPERTYGET = 2;
constexpr WORD DISPATCH_PROPERTYPUT = 4;
constexpr WORD DISPATCH_PROPERTYPUTREF = 8;

constexpr LCID LOCALE_NEUTRAL = 0;
constexpr LCID LOCALE_USER_DEFAULT = 0x0400;
constexpr WORD VARIANT_ALPHABOOL = 2;

// ---- Interfaces: no virtual destructors, and the order of the methods is the binary contract ----------

#define VEX_DEFINE_GUID(name, l, w1, w2, b1, b2, b3, b4, b5, b6, b7, b8) \
    inline constexpr GUID name = {l, w1, w2, {b1, b2, b3, b4, b5, b6, b7, b8}}

inline constexpr GUID GUID_NULL = {0, 0, 0, {0, 0, 0, 0, 0, 0, 0, 0}};
#define IID_NULL GUID_NULL
VEX_DEFINE_GUID(IID_IUnknown, 0x00000000, 0, 0, 0xC0, 0, 0, 0, 0, 0, 0, 0x46);
VEX_DEFINE_GUID(IID_IClassFactory, 0x00000001, 0, 0, 0xC0, 0, 0, 0, 0, 0, 0, 0x46);
VEX_DEFINE_GUID(IID_IDispatch, 0x00020400, 0, 0, 0xC0, 0, 0, 0, 0, 0, 0, 0x46);
VEX_DEFINE_GUID(IID_IErrorInfo, 0x1CF2B120, 0x547D, 0x101B, 0x8E, 0x65, 0x08, 0x00, 0x2B, 0x2B, 0xD1, 0x19);
VEX_DEFINE_GUID(IID_ICreateErrorInfo, 0x22F03340, 0x547D, 0x101B, 0x8E, 0x65, 0x08, 0x00, 0x2B, 0x2B, 0xD1, 0x19);
VEX_DEFINE_GUID(IID_ISupportErrorInfo, 0xDF0B3D60, 0x548F, 0x101B, 0x8E, 0x65, 0x08, 0x00, 0x2B, 0x2B, 0xD1, 0x19);
VEX_DEFINE_GUID(IID_IConnectionPointContainer, 0xB196B284, 0xBAB4, 0x101A, 0xB6, 0x9C, 0x00, 0xAA, 0x00, 0x34, 0x1D,
                0x07);
VEX_DEFINE_GUID(IID_IConnectionPoint, 0xB196B286, 0xBAB4, 0x101A, 0xB6, 0x9C, 0x00, 0xAA, 0x00, 0x34, 0x1D, 0x07);
VEX_DEFINE_GUID(IID_IProvideClassInfo, 0xB196B283, 0xBAB4, 0x101A, 0xB6, 0x9C, 0x00, 0xAA, 0x00, 0x34, 0x1D, 0x07);
VEX_DEFINE_GUID(IID_IProvideClassInfo2, 0xA6BC3AC0, 0xDBAA, 0x11CE, 0x9D, 0xE3, 0x00, 0xAA, 0x00, 0x4B, 0xB8, 0x51);
VEX_DEFINE_GUID(IID_IPicture, 0x7BF80980, 0xBF32, 0x101A, 0x8B, 0xBB, 0x00, 0xAA, 0x00, 0x30, 0x0C, 0xAB);
VEX_DEFINE_GUID(IID_IPictureDisp, 0x7BF80981, 0xBF32, 0x101A, 0x8B, 0xBB, 0x00, 0xAA, 0x00, 0x30, 0x0C, 0xAB);

struct IUnknown {
    virtual HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) = 0;
    virtual ULONG STDMETHODCALLTYPE AddRef() = 0;
    virtual ULONG STDMETHODCALLTYPE Release() = 0;
};

struct IClassFactory : IUnknown {
    virtual HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown* outer, REFIID iid, void** object) = 0;
    virtual HRESULT STDMETHODCALLTYPE LockServer(BOOL lock) = 0;
};

struct IDispatch : IUnknown {
    virtual HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT index, LCID locale, ITypeInfo** info) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID reserved, LPOLESTR* names, UINT count,
                                                    LCID locale, DISPID* ids) = 0;
    virtual HRESULT STDMETHODCALLTYPE Invoke(DISPID member, REFIID reserved, LCID locale, WORD flags,
                                             DISPPARAMS* parameters, VARIANT* result,
                                             EXCEPINFO* exception, UINT* argument_error) = 0;
};

/// Type descriptions exist only on Windows; elsewhere the pointer type is all there is.
struct ITypeInfo : IUnknown {};

struct IErrorInfo : IUnknown {
    virtual HRESULT STDMETHODCALLTYPE GetGUID(GUID* guid) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetSource(BSTR* source) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetDescription(BSTR* description) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetHelpFile(BSTR* file) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetHelpContext(DWORD* context) = 0;
};

struct ICreateErrorInfo : IUnknown {
    virtual HRESULT STDMETHODCALLTYPE SetGUID(REFGUID guid) = 0;
    virtual HRESULT STDMETHODCALLTYPE SetSource(LPOLESTR source) = 0;
    virtual HRESULT STDMETHODCALLTYPE SetDescription(LPOLESTR description) = 0;
    virtual HRESULT STDMETHODCALLTYPE SetHelpFile(LPOLESTR file) = 0;
    virtual HRESULT STDMETHODCALLTYPE SetHelpContext(DWORD context) = 0;
};

struct ISupportErrorInfo : IUnknown {
    virtual HRESULT STDMETHODCALLTYPE InterfaceSupportsErrorInfo(REFIID iid) = 0;
};

struct IConnectionPointContainer;
struct IEnumConnections;
struct IEnumConnectionPoints;

struct IConnectionPoint : IUnknown {
    virtual HRESULT STDMETHODCALLTYPE GetConnectionInterface(IID* iid) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetConnectionPointContainer(IConnectionPointContainer** container) = 0;
    virtual HRESULT STDMETHODCALLTYPE Advise(IUnknown* sink, DWORD* cookie) = 0;
    virtual HRESULT STDMETHODCALLTYPE Unadvise(DWORD cookie) = 0;
    virtual HRESULT STDMETHODCALLTYPE EnumConnections(IEnumConnections** connections) = 0;
};

struct IConnectionPointContainer : IUnknown {
    virtual HRESULT STDMETHODCALLTYPE EnumConnectionPoints(IEnumConnectionPoints** points) = 0;
    virtual HRESULT STDMETHODCALLTYPE FindConnectionPoint(REFIID iid, IConnectionPoint** point) = 0;
};

struct IProvideClassInfo : IUnknown {
    virtual HRESULT STDMETHODCALLTYPE GetClassInfo(ITypeInfo** info) = 0;
};

constexpr DWORD GUIDKIND_DEFAULT_SOURCE_DISP_IID = 1;

struct IProvideClassInfo2 : IProvideClassInfo {
    virtual HRESULT STDMETHODCALLTYPE GetGUID(DWORD kind, GUID* guid) = 0;
};

using OLE_HANDLE = std::uint32_t;
using OLE_XSIZE_HIMETRIC = LONG;
using OLE_YSIZE_HIMETRIC = LONG;
constexpr SHORT PICTYPE_UNINITIALIZED = -1;
constexpr SHORT PICTYPE_NONE = 0;
constexpr SHORT PICTYPE_BITMAP = 1;
constexpr SHORT PICTYPE_ICON = 3;
constexpr DISPID DISPID_PICT_HANDLE = 0;
constexpr DISPID DISPID_PICT_TYPE = 3;
constexpr DISPID DISPID_PICT_WIDTH = 4;
constexpr DISPID DISPID_PICT_HEIGHT = 5;

/// The part of the picture interface that the project reads; sizes in HIMETRIC (1/100 millimetre).
struct IPicture : IUnknown {
    virtual HRESULT STDMETHODCALLTYPE get_Handle(OLE_HANDLE* handle) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_hPal(OLE_HANDLE* palette) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_Type(SHORT* type) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_Width(OLE_XSIZE_HIMETRIC* width) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_Height(OLE_YSIZE_HIMETRIC* height) = 0;
};

struct IPictureDisp : IDispatch {};

// ---- Functions of the native runtime ------------------------------------------------------------------

constexpr DWORD CLSCTX_INPROC_SERVER = 1;
constexpr DWORD CLSCTX_LOCAL_SERVER = 4;
constexpr DWORD CLSCTX_ALL = 0x17;
constexpr DWORD REGCLS_MULTIPLEUSE = 1;
constexpr DWORD COINIT_APARTMENTTHREADED = 2;

// One copy of the runtime serves every module of the process, so its functions are exported.
#pragma GCC visibility push(default)
extern "C" {

BSTR SysAllocString(const OLECHAR* text) noexcept;
BSTR SysAllocStringLen(const OLECHAR* text, UINT length) noexcept;
void SysFreeString(BSTR text) noexcept;
UINT SysStringLen(BSTR text) noexcept;

void VariantInit(VARIANTARG* value) noexcept;
HRESULT VariantClear(VARIANTARG* value) noexcept;
HRESULT VariantCopy(VARIANTARG* to, const VARIANTARG* from) noexcept;
HRESULT VariantCopyInd(VARIANT* to, const VARIANTARG* from) noexcept;
HRESULT VariantChangeType(VARIANTARG* to, const VARIANTARG* from, USHORT flags, VARTYPE type) noexcept;

HRESULT CoInitializeEx(LPVOID reserved, DWORD concurrency) noexcept;
void CoUninitialize() noexcept;
/// Creates an object: registered class objects first, then the in-process server that the registry names.
HRESULT CoCreateInstance(REFCLSID clsid, IUnknown* outer, DWORD context, REFIID iid, LPVOID* object) noexcept;
HRESULT CoGetClassObject(REFCLSID clsid, DWORD context, LPVOID reserved, REFIID iid, LPVOID* object) noexcept;
HRESULT CoRegisterClassObject(REFCLSID clsid, IUnknown* factory, DWORD context, DWORD flags, DWORD* cookie) noexcept;
HRESULT CoRevokeClassObject(DWORD cookie) noexcept;
/// Unloads the in-process servers whose DllCanUnloadNow agrees.
void CoFreeUnusedLibraries() noexcept;
HRESULT CLSIDFromProgID(LPCOLESTR programmatic_id, CLSID* clsid) noexcept;
HRESULT CLSIDFromString(LPCOLESTR text, CLSID* clsid) noexcept;
int StringFromGUID2(REFGUID guid, LPOLESTR text, int capacity) noexcept;
void* CoTaskMemAlloc(std::size_t size) noexcept;
void CoTaskMemFree(void* memory) noexcept;

HRESULT CreateErrorInfo(ICreateErrorInfo** info) noexcept;
HRESULT SetErrorInfo(ULONG reserved, IErrorInfo* info) noexcept;
HRESULT GetErrorInfo(ULONG reserved, IErrorInfo** info) noexcept;

// What an in-process server exports.
HRESULT DllCanUnloadNow();
HRESULT DllGetClassObject(REFCLSID clsid, REFIID iid, LPVOID* object);
HRESULT DllRegisterServer();
HRESULT DllUnregisterServer();

}  // extern "C"
#pragma GCC visibility pop
