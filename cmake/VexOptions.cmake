# Language, warnings and options of every target.

option(VEX_TESTS "Build the tests" ON)
option(VEX_BENCHMARKS "Build the benchmarks" OFF)
option(VEX_FUZZ "Build the fuzz targets (clang only)" OFF)
set(VEX_SANITIZE "" CACHE STRING "Sanitizers, as in address,undefined")

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}")
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}")
set(CMAKE_BUILD_RPATH_USE_ORIGIN ON)

add_compile_options(-Wall -Wextra -Wpedantic -Wconversion -Wshadow -Wformat=2 -Werror)
# g++ 12 warns falsely of overlapping copies inside its own std::string at -O3.
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
  add_compile_options(-Wno-restrict)
endif()
if(VEX_SANITIZE)
  add_compile_options(-fsanitize=${VEX_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
  add_link_options(-fsanitize=${VEX_SANITIZE})
endif()

if(VEX_FUZZ)
  # The fuzz targets see which ways through the code an input takes.
  add_compile_options(-fsanitize=fuzzer-no-link)
endif()

# A room: a static library named vex_NAME from this folder's sources. Includes start at the project's root.
function(vex_room name)
  cmake_parse_arguments(ROOM "" "" "SOURCES;USES" ${ARGN})
  add_library(vex_${name} STATIC ${ROOM_SOURCES})
  target_include_directories(vex_${name} PUBLIC "${CMAKE_SOURCE_DIR}")
  target_link_libraries(vex_${name} PUBLIC ${ROOM_USES})
endfunction()
