# What ./run and ./test have in common: one at a time, everything made that is missing, Wine stopped, a verdict as the last line.
# shellcheck source=tools/lib/tree.sh
. "$(dirname "${BASH_SOURCE[0]}")/tree.sh"
# shellcheck source=tools/lib/wine.sh
. "$KESP_TOOLS/lib/wine.sh"
# shellcheck source=tools/lib/second_starts.sh
. "$KESP_TOOLS/lib/second_starts.sh"

session_reason="stopped early; see above" session_verdict= session_second_wine_maker=

# session_begin <name>: from here on the last line says "<name>: success" or "<name>: FAILED (why)".
session_begin() {
  session_name=$1
  # It would send the 64-bit tests to the second Wine, where others of the same name are at work.
  unset KESP_WINE
  trap session_end EXIT
  trap 'session_fail interrupted' INT TERM
  if ! mkdir -p "$KESP_ROOT/build" 2>/dev/null || [ ! -w "$KESP_ROOT/build" ]; then
    session_fail "build/ cannot be written by $(id -un); a run as another user may have made it"
  fi
  exec 8>"$KESP_ROOT/build/session.lock"
  if ! flock --nonblock 8; then
    say "another run of this tree is busy; waiting for it"
    flock 8
  fi
  forget_second_starts
}

session_succeed() { session_verdict="success${1:+ ($1)}"; }

session_fail() {
  session_reason=$*
  exit 1
}

session_end() {
  local bits
  trap - EXIT
  session_await_second_wine
  for bits in 64 32; do
    "$KESP_TOOLS/wine-prefix" "$bits" stop 8>&- >/dev/null 2>&1 || true
  done
  "$KESP_TOOLS/lib/screen" stop 8>&- || true
  tell_second_starts
  if [ -n "$session_verdict" ]; then
    printf '%s\n' "$session_name: $session_verdict"
    exit 0
  fi
  printf '%s\n' "$session_name: FAILED ($session_reason)"
  exit 1
}

# session_step <what> <command...>: without the lock, which nothing left behind may keep.
session_step() {
  local what=$1
  shift
  "$@" 8>&- </dev/null || session_fail "$what"
}

# Begins to make the second Wine, which is loaded from the network while the compiler is at work.
session_make_second_wine() {
  "$KESP_TOOLS/second-wine" 8>&- </dev/null >/dev/null 2>&1 &
  session_second_wine_maker=$!
}

session_await_second_wine() {
  [ -z "$session_second_wine_maker" ] || wait "$session_second_wine_maker" || true
  session_second_wine_maker=
}

session_start_wine64() {
  session_step "Wine could not be started" "$KESP_TOOLS/wine-prefix" 64 start
}

# Sets wine32_reason to why the 32-bit library cannot be run here; empty where it can.
session_start_second_wine() {
  local code=0 said=$KESP_ROOT/build/logs/second-wine-reason.log
  session_await_second_wine
  mkdir -p "$KESP_ROOT/build/logs"
  "$KESP_TOOLS/wine-prefix" 32 start 8>&- </dev/null 2>"$said" || code=$?
  wine32_reason=$(tail -n 1 "$said")
  case $code in
    0) wine32_reason= ;;
    77)
      say "wine32: the 32-bit library is built but cannot be run here: $wine32_reason"
      # One attempt is enough: the tests are not to try again, each for itself.
      export KESP_SKIP_WINE32=1 KESP_SKIP_WINE32_REASON=$wine32_reason
      ;;
    *) session_fail "the second Wine could not be started: $wine32_reason" ;;
  esac
}
