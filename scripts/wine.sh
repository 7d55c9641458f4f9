# Sourced by what runs Windows programs: sets up the system's Wine.
# shellcheck shell=bash

# What the 64-bit Windows side needs, and the 32-bit one.
# shellcheck disable=SC2034  # for the scripts that source this
wine_packages=(wine64 fonts-wine xvfb) win64_packages=(g++-mingw-w64-x86-64-posix googletest) win32_packages=(g++-mingw-w64-i686-posix googletest)

root=$PWD
# Runs i686 programs where the kernel does not; beside the project or not at all.
# shellcheck disable=SC2034
wine32=$root/../shared/tools/wine32

# start_wine: sets wine, and what it needs of the environment, a screen among it. Answers 1 where that cannot be had.
# Everything that it starts ends with the script; what the script runs finds it started.
start_wine() {
  wine=${VEX_WINE:-}
  [ -z "$wine" ] || return 0
  wine=$(command -v wine64 || ls /usr/lib/wine/wine64 2>/dev/null) || return 1
  wineserver=$(command -v wineserver64 wineserver || ls /usr/lib/wine/wineserver64 2>/dev/null) || return 1
  wineserver=${wineserver%%$'\n'*}
  command -v Xvfb >/dev/null || return 1
  # With file names of any script.
  export LC_ALL=C.UTF-8 WINEPREFIX=$root/build/wine WINEDEBUG=-all WINEDLLOVERRIDES='mscoree,mshtml=;winemenubuilder.exe=d'
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
  if [ ! -f "$WINEPREFIX/ready" ]; then
    rm -rf "$WINEPREFIX"
    echo "set-up: a Wine prefix in build/wine"
    timeout 300 "$wine" wineboot -i >build/wine.log 2>&1
    [ -d "$WINEPREFIX/drive_c/windows/Fonts" ] || return 1
    ln -sf /usr/share/wine/fonts/*.ttf /usr/share/wine/fonts/*.fon "$WINEPREFIX/drive_c/windows/Fonts/"
    # Without a window manager, nobody answers what Wine would ask one.
    timeout 60 "$wine" reg add 'HKCU\Software\Wine\X11 Driver' /v Managed /t REG_SZ /d N /f >/dev/null 2>&1
    timeout 60 "$wineserver" -w
    touch "$WINEPREFIX/ready"
  fi
  # One server for all programs.
  "$wineserver" -p
  export VEX_WINE=$wine
}
