# Windows programs on Linux: prefixes of this tree's own, never the one in the home directory.
#
# There are two. Debian 12's own Wine runs 64-bit programs; the second Wine (tools/second-wine) runs 32-bit ones and,
# with KESP_WINE=10, 64-bit ones, in one Windows of both widths.
KESP_SECOND_WINE=${KESP_SECOND_WINE:-/var/cache/kespcommobj/second-wine}
# Wine insists on owning its prefix, so each user of the tree has one.
KESP_WINE_BASE=${KESP_WINE_BASE:-$KESP_ROOT/build/wine-$(id -un)}
export KESP_SECOND_WINE KESP_WINE_BASE

# The X display that all programs share, such as ":99"; empty where there is none. KESP_SCREEN names one that is there.
wine_screen() {
  if [ -n "${KESP_SCREEN:-}" ]; then
    printf '%s\n' "$KESP_SCREEN"
  else
    cat "$KESP_WINE_BASE/screen" 2>/dev/null || true
  fi
}

# is_second <64|32>: whether programs of that width run in the second Wine.
is_second() { [ "$1" = 32 ] || [ "${KESP_WINE:-}" = 10 ]; }

# takes_wine <word>: for an option --wine, whose one value is 10.
takes_wine() {
  [ "$1" = 10 ] || fail "--wine takes 10, the second Wine (tools/second-wine)"
  export KESP_WINE=10
}

wine_prefix() {
  if is_second "$1"; then
    printf '%s\n' "$KESP_WINE_BASE/both"
  else
    printf '%s\n' "$KESP_WINE_BASE/win64"
  fi
}

# The system folder of a width, as Linux sees it.
system_folder() {
  if [ "$1" = 32 ]; then
    printf '%s\n' "$(wine_prefix 32)/drive_c/windows/syswow64"
  else
    printf '%s\n' "$(wine_prefix 64)/drive_c/windows/system32"
  fi
}

# Settings of the loader that make pseudo-terminals behave as COM ports (tests/serial_line); none before it is built.
# The library's name stands alone, because the loader would end a path at a space, and each program takes that of its
# own width.
serial_line_settings() {
  local folder=$KESP_ROOT/build/native/tests/serial_line library=kesp-serial-line.so width path=
  for width in 64 $(! is_second "$1" || echo 32); do
    [ -e "$folder/$width/$library" ] || return 0
    path=$path$folder/$width:
  done
  printf '%s\n' "LD_PRELOAD=$library" "LD_LIBRARY_PATH=${path%:}${LD_LIBRARY_PATH:+:$LD_LIBRARY_PATH}"
}

# in_wine <64|32> <command...>: a Linux command (wine, wineserver, wineboot) with the settings of that Wine.
# KESP_WINE_OVERRIDES names other DLLs that Wine does without.
# KESP_WINE_ARCH=win32 makes the second Wine's Windows one of 32-bit programs only.
in_wine() {
  local bits=$1 loader
  shift
  mapfile -t loader < <(serial_line_settings "$bits")
  # A home of its own too: Wine links its documents folder there, and puts menu entries there.
  set -- env LC_ALL=C.UTF-8 WINEPREFIX="$(wine_prefix "$bits")" WINEARCH="${KESP_WINE_ARCH:-win64}" WINEDEBUG=-all \
    WINEDLLOVERRIDES="${KESP_WINE_OVERRIDES:-mscoree,mshtml,winemenubuilder.exe=}" HOME="$KESP_WINE_BASE/home" \
    DISPLAY="$(wine_screen)" ${loader[@]+"${loader[@]}"} "$@"
  if is_second "$bits"; then
    in_second_wine "$bits" "$@"
  else
    "$@"
  fi
}

# In the second Wine's system, with this tree at its own path and as the calling user. Our environment goes along.
in_second_wine() {
  local bits=$1 name kept=()
  shift
  while read -r name; do
    kept+=("$name=${!name}")
  done < <(compgen -e | grep -E '^(KESP|GTEST)_')
  # There is one "wine" for each width.
  as_root unshare -m "$KESP_TOOLS/lib/enter-chroot" "$KESP_SECOND_WINE" "$(id -u):$(id -g)" "$KESP_ROOT" "$PWD" \
    env "${kept[@]}" PATH="/usr/local/lib/wine$bits:/usr/bin:/bin" "$@"
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
  [[ $program == */* ]] || program=$(system_folder "$bits")/${program%.exe}.exe
  [ -e "$program" ] || fail "$program is not there"
  cp "$driver" "$folder/" || fail "$driver cannot be copied"
  [ -z "$bus" ] || cp "$bus" "$folder/Gpib-32.json" || fail "$bus cannot be copied"
  # A link where both are on one disk, because some programs are large.
  ln -L "$program" "$folder/" 2>/dev/null || cp "$program" "$folder/" || fail "$program cannot be copied"
  printf '%s\n' "$folder/$(basename "$program")"
}
