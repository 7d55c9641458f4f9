// The substitute for COM and OLE automation where the system has none: the types, identities and result codes in
// use, the interfaces in the binary order of the originals, and the functions that the native runtime implements.
#pragma once

#include <cstdint>

// ---- Plain types ------------------------------------------------------------------------------------

using WORD = std::uint16_t;
using DWORD = std::uint32_t;
using SHORT = std::int16_t;
using USHORT = std::uint16_t;
using UINT = std::uint32_t;
using LONG = std::int32_t;
using ULONG = std::uint32_t;
using BOOL = std::int32_t;
using LCID = std::uint32_t;
using HRESULT = std::int32_t;
using OLECHAR = char16_t;
using LPOLESTR = OLECHAR*;
using LPCOLESTR = const OLECHAR*;
using BSTR = OLECHAR*;
using VARTYPE = std::uint16_t;
using VARIANT_BOOL = std::int16_t;
using DISPID = std::int32_t;
using LPVOID = void*;

struct GUID {
    std::uint32_t Data1;
    std::uint16_t Data2;
    std::uint16_t Data3;
    std::uint8_t Data4[8];

    friend bool operator==(const GUID&, const GUID&) = default;
};
using IID = GUID;
using CLSID = GUID;
using REFGUID = const GUID&;
using REFIID = const IID&;
using REFCLSID = const CLSID&;

inline bool IsEqualGUID(REFGUID left, REFGUID right) noexcept { return left == right; }

#define STDMETHODCALLTYPE
#define STDAPICALLTYPE

constexpr VARIANT_BOOL VARIANT_TRUE = -1;
constexpr VARIANT_BOOL VARIANT_FALSE = 0;
#ifndef TRUE
#define TRUE 1
#define FALSE 0
#endif

// ---- Results ----------------------------------------------------------------------------------------

constexpr bool SUCCEEDED(HRESULT result) noexcept { return result >= 0; }
constexpr bool FAILED(HRESULT result) noexcept { return result < 0; }

/// A failure by its unsigned spelling.
constexpr HRESULT vex_failure(std::uint32_t code) noexcept { return static_cast<HRESULT>(code); }

constexpr HRESULT S_OK = 0;
constexpr HRESULT S_FALSE = 1;
constexpr HRESULT E_NOTIMPL = vex_failure(0x80004001U);
constexpr HRESULT E_NOINTERFACE = vex_failure(0x80004002U);
constexpr HRESULT E_POINTER = vex_failure(0x80004003U);
constexpr HRESULT E_FAIL = vex_failure(0x80004005U);
constexpr HRESULT E_UNEXPECTED = vex_failure(0x8000FFFFU);
constexpr HRESULT E_OUTOFMEMORY = vex_failure(0x8007000EU);
constexpr HRESULT E_INVALIDARG = vex_failure(0x80070057U);
constexpr HRESULT E_ACCESSDENIED = vex_failure(0x80070005U);
constexpr HRESULT CLASS_E_NOAGGREGATION = vex_failure(0x80040110U);
constexpr HRESULT CLASS_E_CLASSNOTAVAILABLE = vex_failure(0x80040111U);
constexpr HRESULT RPC_E_WRONG_THREAD = vex_failure(0x8001010EU);
constexpr HRESULT REGDB_E_CLASSNOTREG = vex_failure(0x80040154U);
constexpr HRESULT CO_E_NOTINITIALIZED = vex_failure(0x800401F0U);
constexpr HRESULT CO_E_CLASSSTRING = vex_failure(0x800401F3U);
constexpr HRESULT CO_E_DLLNOTFOUND = vex_failure(0x800401F8U);
constexpr HRESULT CONNECT_E_NOCONNECTION = vex_failure(0x80040200U);
constexpr HRESULT CONNECT_E_CANNOTCONNECT = vex_failure(0x80040202U);
constexpr HRESULT SELFREG_E_TYPELIB = vex_failure(0x80040200U);
constexpr HRESULT SELFREG_E_CLASS = vex_failure(0x80040201U);
constexpr HRESULT DISP_E_UNKNOWNINTERFACE = vex_failure(0x80020001U);
constexpr HRESULT DISP_E_MEMBERNOTFOUND = vex_failure(0x80020003U);
constexpr HRESULT DISP_E_PARAMNOTFOUND = vex_failure(0x80020004U);
constexpr HRESULT DISP_E_TYPEMISMATCH = vex_failure(0x80020005U);
constexpr HRESULT DISP_E_UNKNOWNNAME = vex_failure(0x80020006U);
constexpr HRESULT DISP_E_NONAMEDARGS = vex_failure(0x80020007U);
constexpr HRESULT DISP_E_BADVARTYPE = vex_failure(0x80020008U);
constexpr HRESULT DISP_E_EXCEPTION = vex_failure(0x80020009U);
constexpr HRESULT DISP_E_OVERFLOW = vex_failure(0x8002000AU);
constexpr HRESULT DISP_E_BADINDEX = vex_failure(0x8002000BU);
constexpr HRESULT DISP_E_BADPARAMCOUNT = vex_failure(0x8002000EU);
constexpr HRESULT DISP_E_PARAMNOTOPTIONAL = vex_failure(0x8002000FU);

// ---- Automation values ------------------------------------------------------------------------------

enum VARENUM : VARTYPE {
    VT_EMPTY = 0,
    VT_NULL = 1,
    VT_I2 = 2,
    VT_I4 = 3,
    VT_R8 = 5,
    VT_BSTR = 8,
    VT_DISPATCH = 9,
    VT_ERROR = 10,
    VT_BOOL = 11,
    VT_VARIANT = 12,
    VT_UNKNOWN = 13,
    // In type descriptions only.
    VT_VOID = 24,
    VT_HRESULT = 25,
    VT_PTR = 26,
    VT_USERDEFINED = 29,
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
        LONG lVal;
        SHORT iVal;
        double dblVal;
        VARIANT_BOOL boolVal;
        HRESULT scode;
        BSTR bstrVal;
        IUnknown* punkVal;
        IDispatch* pdispVal;
        void* byref;
        SHORT* piVal;
        LONG* plVal;
        double* pdblVal;
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
    HRESULT scode;
};

constexpr DISPID DISPID_UNKNOWN = -1;
constexpr DISPID DISPID_PROPERTYPUT = -3;
constexpr WORD DISPATCH_METHOD = 1;
constexpr WORD DISPATCH_PROPERTYGET = 2;
constexpr WORD DISPATCH_PROPERTYPUT = 4;

constexpr LCID LOCALE_USER_DEFAULT = 0x0400;

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
    virtual HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID reserved, LPOLESTR* names, UINT count, LCID locale,
                                                    DISPID* ids) = 0;
    virtual HRESULT STDMETHODCALLTYPE Invoke(DISPID member, REFIID reserved, LCID locale, WORD flags,
                                             DISPPARAMS* parameters, VARIANT* result, EXCEPINFO* exception,
                                             UINT* argument_error) = 0;
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

struct IPictureDisp : IDispatch {};

// ---- Functions of the native runtime ------------------------------------------------------------------

constexpr DWORD CLSCTX_INPROC_SERVER = 1;
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
HRESULT CoRegisterClassObject(REFCLSID clsid, IUnknown* factory, DWORD context, DWORD flags, DWORD* cookie) noexcept;
HRESULT CoRevokeClassObject(DWORD cookie) noexcept;
/// Unloads the in-process servers whose DllCanUnloadNow agrees.
void CoFreeUnusedLibraries() noexcept;
HRESULT CLSIDFromProgID(LPCOLESTR programmatic_id, CLSID* clsid) noexcept;
HRESULT CLSIDFromString(LPCOLESTR text, CLSID* clsid) noexcept;
int StringFromGUID2(REFGUID guid, LPOLESTR text, int capacity) noexcept;

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
