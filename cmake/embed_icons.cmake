# Writes a source file that holds icon files as data.
# cmake -DOUT=FILE.cpp "-DICONS=ID=FILE.ico;..." -P embed_icons.cmake

set(arrays "")
set(entries "")
foreach(icon IN LISTS ICONS)
  string(REGEX MATCH "^([0-9]+)=(.*)$" matched "${icon}")
  set(id "${CMAKE_MATCH_1}")
  file(READ "${CMAKE_MATCH_2}" bytes HEX)
  string(REGEX REPLACE "(..)" "0x\\1," bytes "${bytes}")
  string(APPEND arrays "constexpr std::uint8_t kIcon${id}[] = {${bytes}};\n")
  string(APPEND entries "{${id}, kIcon${id}},")
endforeach()
file(WRITE "${OUT}" "// Made by the build from the drawings in plugin/icons.
#include \"plugin/embedded_icons.h\"

namespace vex::plugin {
namespace {

${arrays}
constexpr EmbeddedIcon kIcons[] = {${entries}};

}  // namespace

const std::span<const EmbeddedIcon> kEmbeddedIcons = kIcons;

}  // namespace vex::plugin
")
