# What both Windows toolchains share: GCC's mingw-w64 with POSIX threads, everything linked in.
# The including file sets VEX_MINGW to the target's triplet.

set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_CXX_COMPILER ${VEX_MINGW}-g++-posix)
set(CMAKE_RC_COMPILER ${VEX_MINGW}-windres)

set(CMAKE_FIND_ROOT_PATH /usr/${VEX_MINGW})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

# Windows 7 and later. The same sources make the same bytes.
set(CMAKE_CXX_FLAGS_INIT "-D_WIN32_WINNT=0x0601")
set(VEX_MINGW_LINK "-static -Wl,--gc-sections -Wl,--dynamicbase -Wl,--nxcompat -Wl,--no-insert-timestamp")

# ctest runs what is built under Wine.
set(CMAKE_CROSSCOMPILING_EMULATOR "${CMAKE_CURRENT_LIST_DIR}/../scripts/${VEX_EMULATOR}")
