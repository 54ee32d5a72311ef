# The simulated instrument without sanitizers, for what is measured or takes long.

# Builds it, and lets tools/with-instrument and tools/with-serial-line run it.
use_fast_instrument() {
  cmake -S "$KESP_ROOT" -B "$KESP_ROOT/build/bench" -G Ninja -DKESP_SANITIZE=OFF >/dev/null
  cmake --build "$KESP_ROOT/build/bench" --target kesp-sim >/dev/null
  export KESP_INSTRUMENT=$KESP_ROOT/build/bench/simulator/kesp-sim
}
