# What ./run and ./test have in common: one at a time, everything made that is missing, Wine stopped, a verdict as the last line.
# shellcheck source=tools/lib/tree.sh
. "$(dirname "${BASH_SOURCE[0]}")/tree.sh"
# shellcheck source=tools/lib/wine.sh
. "$KESP_TOOLS/lib/wine.sh"
# shellcheck source=tools/lib/second_starts.sh
. "$KESP_TOOLS/lib/second_starts.sh"

session_reason="stopped early; see above" session_verdict= session_has_tree=no session_left_out=()
session_second_wine_maker= session_second_wine_said=$KESP_ROOT/build/logs/second-wine-reason.log

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
  session_has_tree=yes
  forget_second_starts
  # Here, where sudo can ask for a password: the steps have no terminal.
  can_be_root || true
}

# session_leave_out <what>: the verdict is to name it, since nobody looked at it.
session_leave_out() { session_left_out+=("$1"); }

session_succeed() {
  local left_out
  left_out=$(printf '; %s' ${session_left_out[@]+"${session_left_out[@]}"})
  session_verdict="success${session_left_out[*]:+ (${left_out#; })}"
}

session_fail() {
  session_reason=$*
  exit 1
}

# What runs in the tree is ours only once the lock is.
session_end() {
  local bits
  trap - EXIT
  session_end_second_wine_maker
  if [ $session_has_tree = yes ]; then
    for bits in 64 32; do
      "$KESP_TOOLS/wine-prefix" "$bits" stop 8>&- >/dev/null 2>&1 || true
    done
    "$KESP_TOOLS/lib/screen" stop 8>&- || true
    tell_second_starts
  fi
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
  mkdir -p "${session_second_wine_said%/*}"
  "$KESP_TOOLS/second-wine" 8>&- </dev/null >/dev/null 2>"$session_second_wine_said" &
  session_second_wine_maker=$!
}

# Returns its exit code.
session_await_second_wine() {
  local maker=$session_second_wine_maker
  [ -n "$maker" ] || return 0
  ! kill -0 "$maker" 2>/dev/null || say "waiting for the second Wine, which is made once"
  session_second_wine_maker=
  wait "$maker"
}

# process_and_children <process>
process_and_children() {
  local child
  printf '%s\n' "$1"
  for child in $(cat "/proc/$1/task/$1/children" 2>/dev/null); do
    process_and_children "$child"
  done
}

# A run that has failed does not wait for what it cannot use any more.
session_end_second_wine_maker() {
  local processes
  [ -n "$session_second_wine_maker" ] && kill -0 "$session_second_wine_maker" 2>/dev/null || return 0
  say "the second Wine is not finished; the next run makes it"
  mapfile -t processes < <(process_and_children "$session_second_wine_maker")
  # Ours, and those that are root's.
  kill -TERM "${processes[@]}" 2>/dev/null || true
  as_root kill -TERM "${processes[@]}" 2>/dev/null || true
  session_await_second_wine >/dev/null || true
}

session_start_wine64() {
  session_step "Wine could not be started" "$KESP_TOOLS/wine-prefix" 64 start
}

# Sets wine32_reason to why the 32-bit library cannot be run here; empty where it can.
session_start_second_wine() {
  local code=0
  session_await_second_wine || code=$?
  # What could not be made is not tried again.
  [ $code != 0 ] || "$KESP_TOOLS/wine-prefix" 32 start 8>&- </dev/null 2>"$session_second_wine_said" || code=$?
  wine32_reason=$(tail -n 1 "$session_second_wine_said")
  case $code in
    0) wine32_reason= ;;
    77)
      say "wine32: the 32-bit library is built but cannot be run here: $wine32_reason"
      # One attempt is enough: the tests are not to try again, each for itself.
      export KESP_SKIP_WINE32=1 KESP_SKIP_WINE32_REASON=$wine32_reason
      session_leave_out "without the 32-bit library: $wine32_reason"
      ;;
    *) session_fail "the second Wine could not be started: $wine32_reason" ;;
  esac
}
