# Language, warnings and options of every target.

option(VEX_TESTS "Build the tests" ON)
option(VEX_BENCHMARKS "Build the benchmarks" OFF)
option(VEX_PRECOMPILE "Read the library's headers once for all rooms" ON)
option(VEX_JOIN "Compile the sources of the simulated host and of each test program in one go, for a build made once" OFF)
option(VEX_FUZZ "Build the fuzz targets (clang only)" OFF)
set(VEX_SANITIZE "" CACHE STRING "Sanitizers, as in address,undefined")

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}")
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}")
set(CMAKE_BUILD_RPATH_USE_ORIGIN ON)
set(CMAKE_INSTALL_RPATH "$ORIGIN")

# Programs, too, so that all objects agree about it and can share precompiled headers.
add_compile_options(${CMAKE_CXX_COMPILE_OPTIONS_PIC})
add_compile_options(-Wall -Wextra -Wpedantic -Wconversion -Wshadow -Wformat=2 -Werror)
# The build type of everyday: soon compiled, with lines in back traces.
set(CMAKE_CXX_FLAGS_QUICK "-O1 -g1")
# Inside its own std::string g++ 12 sees copies that overlap or go beyond an end, and at -O3 parts without a value, where
# there are none.
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  add_compile_options(-Wno-restrict -Wno-array-bounds -Wno-stringop-overflow -Wno-stringop-overread
                      $<$<CONFIG:Release>:-Wno-maybe-uninitialized>)
endif()
if(VEX_JOIN)
  # It takes a source that another one includes for a header.
  add_compile_options(-Wno-subobject-linkage)
endif()
if(VEX_SANITIZE)
  add_compile_options(-fsanitize=${VEX_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
  add_link_options(-fsanitize=${VEX_SANITIZE})
endif()

if(VEX_FUZZ)
  # The fuzz targets see which ways through the code an input takes.
  add_compile_options(-fsanitize=fuzzer-no-link)
endif()

# What sources of every room include. They name it all the same: the builds without precompiled headers see to it.
set(VEX_COMMON_HEADERS <algorithm> <cstdint> <exception> <filesystem> <functional> <memory> <optional> <ostream> <span>
                       <stdexcept> <string> <string_view> <utility> <vector>)

# vex_precompile(TARGET): the target reads them precompiled. The first one makes them for all.
function(vex_precompile target)
  get_property(maker GLOBAL PROPERTY vex_precompiled)
  if(NOT VEX_PRECOMPILE)
    return()
  elseif(maker)
    target_precompile_headers(${target} REUSE_FROM ${maker})
  else()
    target_precompile_headers(${target} PRIVATE ${VEX_COMMON_HEADERS})
    set_property(GLOBAL PROPERTY vex_precompiled ${target})
  endif()
endfunction()

# A room: a static library named vex_NAME from this folder's sources. Includes start at the project's root.
function(vex_room name)
  cmake_parse_arguments(ROOM "" "" "SOURCES;USES" ${ARGN})
  add_library(vex_${name} STATIC ${ROOM_SOURCES})
  target_include_directories(vex_${name} PUBLIC "${CMAKE_SOURCE_DIR}")
  target_link_libraries(vex_${name} PUBLIC ${ROOM_USES})
  vex_precompile(vex_${name})
endfunction()
