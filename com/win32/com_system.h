// Windows: COM and OLE automation as the system's headers declare them.
#pragma once

#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <windows.h>

#include <ole2.h>
#include <ocidl.h>
#include <oleauto.h>
#include <olectl.h>

// Macros that stand for the narrow or the wide function of that name. Both are called by their full names
// here, and the macros would rename declarations of ours depending on what a source includes first.
#undef MessageBox
#undef GetObject

// These read what they copy from; the headers of mingw-w64 leave the const out.
inline HRESULT VariantCopy(VARIANTARG* to, const VARIANTARG* from) noexcept {
    return VariantCopy(to, const_cast<VARIANTARG*>(from));
}
inline HRESULT VariantCopyInd(VARIANT* to, const VARIANTARG* from) noexcept {
    return VariantCopyInd(to, const_cast<VARIANTARG*>(from));
}
inline HRESULT VariantChangeType(VARIANTARG* to, const VARIANTARG* from, USHORT flags, VARTYPE type) noexcept {
    return VariantChangeType(to, const_cast<VARIANTARG*>(from), flags, type);
}

static_assert(sizeof(OLECHAR) == sizeof(char16_t), "texts are UTF-16 on every side");
