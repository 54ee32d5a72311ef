# Windows programs on Linux: prefixes of this tree's own, never the one in the home directory.
KESP_WINE32_ROOT=${KESP_WINE32_ROOT:-/var/cache/kespcommobj/wine32}
# Wine insists on owning its prefix, so each user of the tree has one.
KESP_WINE_BASE=${KESP_WINE_BASE:-$KESP_ROOT/build/wine-$(id -un)}
export KESP_WINE32_ROOT KESP_WINE_BASE

# The X display that all programs share, such as ":99"; empty where there is none. KESP_SCREEN names one that is there.
wine_screen() {
  if [ -n "${KESP_SCREEN:-}" ]; then
    printf '%s\n' "$KESP_SCREEN"
  else
    cat "$KESP_WINE_BASE/screen" 2>/dev/null || true
  fi
}

wine_prefix() { printf '%s\n' "$KESP_WINE_BASE/win$1"; }

# Settings of the loader that make pseudo-terminals behave as COM ports (tests/serial_line); none before it is built.
# The library's name stands alone, because the loader would end a path at a space.
serial_line_settings() {
  local folder=$KESP_ROOT/build/native/tests/serial_line/$1 library=kesp-serial-line.so
  [ -e "$folder/$library" ] || return 0
  printf '%s\n' "LD_PRELOAD=$library" "LD_LIBRARY_PATH=$folder${LD_LIBRARY_PATH:+:$LD_LIBRARY_PATH}"
}

# in_wine <64|32> <command...>: a Linux command (wine, wineserver, wineboot) with the settings of that Wine.
in_wine() {
  local bits=$1 loader
  shift
  mapfile -t loader < <(serial_line_settings "$bits")
  # A home of its own too: Wine links its documents folder there, and puts menu entries there.
  set -- env LC_ALL=C.UTF-8 WINEPREFIX="$(wine_prefix "$bits")" WINEARCH="win$bits" WINEDEBUG=-all \
    WINEDLLOVERRIDES="mscoree,mshtml,winemenubuilder.exe=" HOME="$KESP_WINE_BASE/home" DISPLAY="$(wine_screen)" \
    ${loader[@]+"${loader[@]}"} "$@"
  if [ "$bits" = 32 ]; then
    in_wine32_chroot "$@"
  else
    "$@"
  fi
}

# In the 32-bit system, with this tree at its own path and as the calling user. Our environment goes along.
in_wine32_chroot() {
  local name kept=()
  while read -r name; do
    kept+=("$name=${!name}")
  done < <(compgen -e | grep -E '^(KESP|GTEST)_')
  as_root unshare -m "$KESP_TOOLS/lib/enter-chroot" "$KESP_WINE32_ROOT" "$(id -u):$(id -g)" "$KESP_ROOT" "$PWD" \
    env "${kept[@]}" "$@"
}

windows_path() {
  local path
  path=$(realpath -s "$1")
  printf 'Z:%s\n' "${path//\//\\}"
}

# beside_driver <64|32> <folder> <program> [bus.json]: puts the simulated GPIB driver, its bus and a copy of the program
# into the folder, the first place where Windows looks for a DLL. Prints the path of the copy. The program may be the
# name of one that Windows brings along.
beside_driver() {
  local bits=$1 folder=$2 program=$3 bus=${4:-} place driver=
  for place in "$KESP_ROOT/build/win$bits/simulator" "$KESP_ROOT/dist/win$bits/simulator/gpib"; do
    [ -n "$driver" ] || [ ! -e "$place/Gpib-32.dll" ] || driver=$place/Gpib-32.dll
  done
  [ -n "$driver" ] || fail "there is no simulated GPIB driver; tools/build win$bits makes it"
  [[ $program == */* ]] || program=$(wine_prefix "$bits")/drive_c/windows/system32/${program%.exe}.exe
  [ -e "$program" ] || fail "$program is not there"
  cp "$driver" "$folder/" || fail "$driver cannot be copied"
  [ -z "$bus" ] || cp "$bus" "$folder/Gpib-32.json" || fail "$bus cannot be copied"
  # A link where both are on one disk, because some programs are large.
  ln -L "$program" "$folder/" 2>/dev/null || cp "$program" "$folder/" || fail "$program cannot be copied"
  printf '%s\n' "$folder/$(basename "$program")"
}
