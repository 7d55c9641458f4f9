// The plain types, identities and result codes of the substitute for COM.
#pragma once

#include <cstdint>
#include <cstring>

// ---- Plain types ------------------------------------------------------------------------------------

using BYTE = std::uint8_t;
using WORD = std::uint16_t;
using DWORD = std::uint32_t;
using SHORT = std::int16_t;
using USHORT = std::uint16_t;
using INT = std::int32_t;
using UINT = std::uint32_t;
using LONG = std::int32_t;
using ULONG = std::uint32_t;
using LONGLONG = std::int64_t;
using ULONGLONG = std::uint64_t;
using BOOL = std::int32_t;
using FLOAT = float;
using DOUBLE = double;
using DATE = double;
using LCID = std::uint32_t;
using HRESULT = std::int32_t;
using SCODE = std::int32_t;
using OLECHAR = char16_t;
using LPOLESTR = OLECHAR*;
using LPCOLESTR = const OLECHAR*;
using BSTR = OLECHAR*;
using VARTYPE = std::uint16_t;
using VARIANT_BOOL = std::int16_t;
using DISPID = std::int32_t;
using LPVOID = void*;

/// A 64-bit currency amount, scaled by 10,000.
union CY {
    std::int64_t int64;
};

struct GUID {
    std::uint32_t Data1;
    std::uint16_t Data2;
    std::uint16_t Data3;
    std::uint8_t Data4[8];
};
using IID = GUID;
using CLSID = GUID;
using REFGUID = const GUID&;
using REFIID = const IID&;
using REFCLSID = const CLSID&;

inline bool operator==(REFGUID left, REFGUID right) noexcept {
    return std::memcmp(&left, &right, sizeof(GUID)) == 0;
}
inline bool operator!=(REFGUID left, REFGUID right) noexcept { return !(left == right); }
inline bool IsEqualGUID(REFGUID left, REFGUID right) noexcept { return left == right; }

#define STDMETHODCALLTYPE
#define STDAPICALLTYPE
#define WINAPI

constexpr VARIANT_BOOL VARIANT_TRUE = -1;
constexpr VARIANT_BOOL VARIANT_FALSE = 0;
#ifndef TRUE
#define TRUE 1
#define FALSE 0
#endif

// ---- Results ----------------------------------------------------------------------------------------

constexpr bool SUCCEEDED(HRESULT result) noexcept { return result >= 0; }
constexpr bool FAILED(HRESULT result) noexcept { return result < 0; }

namespace vex_com_detail {
constexpr HRESULT hr(std::uint32_t value) noexcept { return static_cast<HRESULT>(value); }
}  // namespace vex_com_detail

constexpr HRESULT S_OK = 0;
constexpr HRESULT S_FALSE = 1;
constexpr HRESULT E_NOTIMPL = vex_com_detail::hr(0x80004001U);
constexpr HRESULT E_NOINTERFACE = vex_com_detail::hr(0x80004002U);
constexpr HRESULT E_POINTER = vex_com_detail::hr(0x80004003U);
constexpr HRESULT E_FAIL = vex_com_detail::hr(0x80004005U);
constexpr HRESULT E_UNEXPECTED = vex_com_detail::hr(0x8000FFFFU);
constexpr HRESULT E_OUTOFMEMORY = vex_com_detail::hr(0x8007000EU);
constexpr HRESULT E_INVALIDARG = vex_com_detail::hr(0x80070057U);
constexpr HRESULT E_ACCESSDENIED = vex_com_detail::hr(0x80070005U);
constexpr HRESULT CLASS_E_NOAGGREGATION = vex_com_detail::hr(0x80040110U);
constexpr HRESULT CLASS_E_CLASSNOTAVAILABLE = vex_com_detail::hr(0x80040111U);
constexpr HRESULT REGDB_E_CLASSNOTREG = vex_com_detail::hr(0x80040154U);
constexpr HRESULT CO_E_NOTINITIALIZED = vex_com_detail::hr(0x800401F0U);
constexpr HRESULT CO_E_CLASSSTRING = vex_com_detail::hr(0x800401F3U);
constexpr HRESULT CO_E_DLLNOTFOUND = vex_com_detail::hr(0x800401F8U);
constexpr HRESULT CO_E_ERRORINDLL = vex_com_detail::hr(0x800401F9U);
constexpr HRESULT CONNECT_E_NOCONNECTION = vex_com_detail::hr(0x80040200U);
constexpr HRESULT CONNECT_E_ADVISELIMIT = vex_com_detail::hr(0x80040201U);
constexpr HRESULT CONNECT_E_CANNOTCONNECT = vex_com_detail::hr(0x80040202U);
constexpr HRESULT SELFREG_E_TYPELIB = vex_com_detail::hr(0x80040200U);
constexpr HRESULT SELFREG_E_CLASS = vex_com_detail::hr(0x80040201U);
constexpr HRESULT DISP_E_UNKNOWNINTERFACE = vex_com_detail::hr(0x80020001U);
constexpr HRESULT DISP_E_MEMBERNOTFOUND = vex_com_detail::hr(0x80020003U);
constexpr HRESULT DISP_E_PARAMNOTFOUND = vex_com_detail::hr(0x80020004U);
constexpr HRESULT DISP_E_TYPEMISMATCH = vex_com_detail::hr(0x80020005U);
constexpr HRESULT DISP_E_UNKNOWNNAME = vex_com_detail::hr(0x80020006U);
constexpr HRESULT DISP_E_NONAMEDARGS = vex_com_detail::hr(0x80020007U);
constexpr HRESULT DISP_E_BADVARTYPE = vex_com_detail::hr(0x80020008U);
constexpr HRESULT DISP_E_EXCEPTION = vex_com_detail::hr(0x80020009U);
constexpr HRESULT DISP_E_OVERFLOW = vex_com_detail::hr(0x8002000AU);
constexpr HRESULT DISP_E_BADINDEX = vex_com_detail::hr(0x8002000BU);
constexpr HRESULT DISP_E_UNKNOWNLCID = vex_com_detail::hr(0x8002000CU);
constexpr HRESULT DISP_E_ARRAYISLOCKED = vex_com_detail::hr(0x8002000DU);
constexpr HRESULT DISP_E_BADPARAMCOUNT = vex_com_detail::hr(0x8002000EU);
constexpr HRESULT DISP_E_PARAMNOTOPTIONAL = vex_com_detail::hr(0x8002000FU);
constexpr HRESULT TYPE_E_ELEMENTNOTFOUND = vex_com_detail::hr(0x8002802BU);
constexpr HRESULT TYPE_E_CANTLOADLIBRARY = vex_com_detail::hr(0x80029C4AU);
