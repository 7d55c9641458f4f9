# Sourced by the scripts: makes sure that Debian packages are there, and says what it installs.
# shellcheck shell=bash

# need PACKAGE...: installs those that are missing. Answers 1, with a clear line, when that is not possible.
need() {
  local missing=() package
  for package in "$@"; do
    dpkg-query -W -f='${db:Status-Status}' "$package" 2>/dev/null | grep -qx installed || missing+=("$package")
  done
  [ "${#missing[@]}" -gt 0 ] || return 0
  echo "set-up: installing ${missing[*]}"
  if ! command -v apt-get >/dev/null || [ "$(id -u)" -ne 0 ]; then
    echo "set-up: cannot install ${missing[*]}: this needs apt-get and root" >&2
    return 1
  fi
  local log
  log=$(mktemp)
  if ! { apt-get update && DEBIAN_FRONTEND=noninteractive apt-get install -y --no-install-recommends "${missing[@]}"; } >"$log" 2>&1; then
    tail -n 5 "$log" >&2
    echo "set-up: installing ${missing[*]} failed; is the network there?" >&2
    rm -f "$log"
    return 1
  fi
  rm -f "$log"
}

# What the native build needs.
native_packages=(g++ cmake ninja-build libncurses-dev libgtest-dev libbenchmark-dev binutils)
