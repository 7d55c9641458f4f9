# Programs that the build runs itself. They are made for the machine that builds, also when the product is for
# another; then the compiler that makes them is the machine's own.

# vex_build_tool(NAME SOURCES...): sets NAME_command and NAME_depends for custom commands. Includes start at the
# project's root and find the native side's COM vocabulary; tools need nothing but the standard library.
function(vex_build_tool name)
  if(NOT CMAKE_CROSSCOMPILING)
    add_executable(${name} ${ARGN})
    target_include_directories(${name} PRIVATE "${CMAKE_SOURCE_DIR}" "${CMAKE_SOURCE_DIR}/com/native"
                               "${CMAKE_BINARY_DIR}/generated")
    set(${name}_command $<TARGET_FILE:${name}> PARENT_SCOPE)
    set(${name}_depends ${name} PARENT_SCOPE)
    return()
  endif()
  find_program(VEX_BUILD_CXX NAMES c++ g++ clang++ NO_CMAKE_FIND_ROOT_PATH REQUIRED)
  list(TRANSFORM ARGN PREPEND "${CMAKE_CURRENT_SOURCE_DIR}/" OUTPUT_VARIABLE sources)
  set(program "${CMAKE_CURRENT_BINARY_DIR}/${name}")
  add_custom_command(OUTPUT "${program}"
    COMMAND "${VEX_BUILD_CXX}" -std=c++20 -O1 -I "${CMAKE_SOURCE_DIR}" -I "${CMAKE_SOURCE_DIR}/com/native"
            -I "${CMAKE_BINARY_DIR}/generated" -MD -MF "${program}.d" ${sources} -o "${program}"
    DEPENDS ${sources}
    DEPFILE "${program}.d"
    COMMENT "Building ${name} for this machine" VERBATIM)
  set(${name}_command "${program}" PARENT_SCOPE)
  set(${name}_depends "${program}" PARENT_SCOPE)
endfunction()
