# Sourced by the scripts that run Windows programs: builds a preset, and sets up the system's Wine.
# shellcheck shell=bash

root=$PWD
# Runs i686 programs where the kernel does not; beside the project or not at all.
# shellcheck disable=SC2034  # for the scripts that source this
wine32=../shared/tools/wine32

# build PRESET [ARGUMENT...]: the arguments go to the build. Answers 1 after showing the errors.
build() {
  local preset=$1
  shift
  mkdir -p build
  echo "build: build/$preset"
  local log=build/$preset.log
  cmake --preset "$preset" >"$log" 2>&1 && cmake --build --preset "$preset" "$@" >>"$log" 2>&1 && return
  grep -nE 'error|FAILED|Error' "$log" | head -n 20
  return 1
}

# set_up_wine: sets wine and wineserver, and what they need of the environment, a screen among it. Answers 1 where
# that cannot be had. Everything that it starts ends with the script.
set_up_wine() {
  need wine64 fonts-wine xvfb g++-mingw-w64-x86-64-posix googletest cmake ninja-build g++ binutils || return 1
  wine=$(command -v wine64 || ls /usr/lib/wine/wine64 2>/dev/null) || return 1
  wineserver=$(command -v wineserver64 wineserver || ls /usr/lib/wine/wineserver64 2>/dev/null) || return 1
  wineserver=${wineserver%%$'\n'*}
  export WINEPREFIX=$root/build/wine WINEDEBUG=-all WINEDLLOVERRIDES='mscoree,mshtml=;winemenubuilder.exe=d'
  mkdir -p build
  display=$(mktemp)
  Xvfb -displayfd 9 -screen 0 1280x1024x24 -nolisten tcp 9>"$display" >/dev/null 2>&1 &
  xvfb=$!
  trap '"$wineserver" -k 2>/dev/null; kill "$xvfb" 2>/dev/null; rm -f "$display"' EXIT
  local _
  for _ in $(seq 50); do [ -s "$display" ] && break; sleep 0.1; done
  [ -s "$display" ] || return 1
  DISPLAY=:$(cat "$display")
  export DISPLAY
  [ -f "$WINEPREFIX/ready" ] && return
  rm -rf "$WINEPREFIX"
  echo "set-up: a Wine prefix in build/wine"
  timeout 300 "$wine" wineboot -i >build/wine.log 2>&1
  [ -d "$WINEPREFIX/drive_c/windows/Fonts" ] || return 1
  ln -sf /usr/share/wine/fonts/*.ttf /usr/share/wine/fonts/*.fon "$WINEPREFIX/drive_c/windows/Fonts/"
  # Without a window manager, nobody answers what Wine would ask one.
  timeout 60 "$wine" reg add 'HKCU\Software\Wine\X11 Driver' /v Managed /t REG_SZ /d N /f >/dev/null 2>&1
  timeout 60 "$wineserver" -w
  touch "$WINEPREFIX/ready"
}
