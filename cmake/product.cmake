# What the product calls itself, in one place: the version resource, the dialogs, the registration and the type
# library all take it from here. The version, and the name of the library file, are the project's own.

set(VEX_PROJECT_NAME "vexFirmWarePlugin")
set(VEX_PROJECT_DESCRIPTION "vexFirmwarePlugin")
set(VEX_COMPANY_NAME "Norvan")
set(VEX_TRADEMARKS "28")

string(LENGTH "${PROJECT_VERSION_MINOR}" digits)
if(digits LESS 2)
  set(VEX_VERSION_TEXT "${PROJECT_VERSION_MAJOR}.0${PROJECT_VERSION_MINOR}")
else()
  set(VEX_VERSION_TEXT "${PROJECT_VERSION_MAJOR}.${PROJECT_VERSION_MINOR}")
endif()

configure_file("${CMAKE_SOURCE_DIR}/cmake/product.h.in" "${CMAKE_BINARY_DIR}/generated/core/product.h" @ONLY)
add_library(vex_product INTERFACE)
target_include_directories(vex_product INTERFACE "${CMAKE_BINARY_DIR}/generated")
