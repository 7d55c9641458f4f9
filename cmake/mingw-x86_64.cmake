# Windows, 64 bits.
set(VEX_MINGW x86_64-w64-mingw32)
set(VEX_EMULATOR under-wine)
set(CMAKE_SYSTEM_PROCESSOR AMD64)
include("${CMAKE_CURRENT_LIST_DIR}/mingw.cmake")
set(CMAKE_EXE_LINKER_FLAGS_INIT "${VEX_MINGW_LINK} -Wl,--high-entropy-va")
set(CMAKE_SHARED_LINKER_FLAGS_INIT "${VEX_MINGW_LINK} -Wl,--high-entropy-va")
