# Sourced by the scripts: makes sure that Debian packages are there, and builds.
# shellcheck shell=bash

# need PACKAGE...: installs those that are missing, and says so. Answers 1, with a clear line, when that is not possible.
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
# shellcheck disable=SC2034  # for the scripts that source this
native_packages=(g++ cmake ninja-build libncurses-dev libgmock-dev libbenchmark-dev binutils)

# progress NAME: of the build tool's lines, one that tells how far it is; at a terminal kept up to date.
progress() {
  local line told=-1 tenth
  while IFS= read -r line; do
    [[ $line =~ ^\[([0-9]+)/([0-9]+)\] ]] || continue
    tenth=$((10 * BASH_REMATCH[1] / BASH_REMATCH[2]))
    if [ -t 1 ]; then
      printf '\rbuild: %s, step %s of %s ' "$1" "${BASH_REMATCH[1]}" "${BASH_REMATCH[2]}"
    elif [ "$tenth" -ge $((told + 2)) ]; then
      echo "build: $1, step ${BASH_REMATCH[1]} of ${BASH_REMATCH[2]}"
    else
      continue
    fi
    told=$tenth
  done
  [ "$told" -lt 0 ] && echo "build: $1, nothing to do" || { [ ! -t 1 ] || echo; }
}

# build PRESET [ARGUMENT...]: the arguments go to the build. Answers 1 after showing the errors.
build() {
  local preset=$1 log=build/$1.log
  shift
  mkdir -p build
  { cmake --preset "$preset" && cmake --build --preset "$preset" "$@"; } 2>&1 | tee "$log" | progress "build/$preset"
  [ "${PIPESTATUS[0]}" -ne 0 ] || return 0
  grep -nE 'error|FAILED|Error' "$log" | head -n 20
  tail -n 5 "$log"
  echo "the build failed; the whole log is $log" >&2
  return 1
}
