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

static_assert(sizeof(OLECHAR) == sizeof(char16_t), "texts are UTF-16 on every side");
