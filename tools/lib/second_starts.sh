# Programs that Wine had to start a second time: a line for each in a log, which ./run and ./test begin anew.
second_starts_log=$KESP_ROOT/build/logs/second-starts.log

forget_second_starts() { rm -f "$second_starts_log"; }

# note_second_start <program and its arguments> <code of the first start>
note_second_start() {
  mkdir -p "${second_starts_log%/*}"
  printf '%s: said nothing and ended with %s: %s\n' "$(date -u +%FT%TZ)" "$2" "$1" >>"$second_starts_log"
  say "the program said nothing and ended with $2; once more"
}

# Says how many there were, and which; nothing where there were none.
tell_second_starts() {
  [ -s "$second_starts_log" ] || return 0
  say "programs that Wine had to start a second time: $(wc -l <"$second_starts_log")"
  sed 's/^/--   /' "$second_starts_log"
}
