# How the scripts talk: progress on standard output, one clear line on failure.
say() { printf '%s\n' "-- $*"; }

fail() {
  printf '%s\n' "${KESP_COMMAND:-$(basename "$0")}: FAILED ($*)" >&2
  exit 1
}

# run_logged <name> <command...>: the output goes to build/logs/<name>.log; on failure its end is shown.
run_logged() {
  local name=$1 log
  shift
  mkdir -p "$KESP_ROOT/build/logs"
  log=$KESP_ROOT/build/logs/$name.log
  if "$@" >"$log" 2>&1 </dev/null; then
    return 0
  fi
  printf '%s\n' "---- the end of $log" >&2
  tail -n 60 "$log" >&2
  printf '%s\n' "----" >&2
  return 1
}
