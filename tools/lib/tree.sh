# Where things lie; sourced by every script, so that each works from any directory and on any path.
KESP_ROOT=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
KESP_TOOLS=$KESP_ROOT/tools
export KESP_ROOT KESP_TOOLS
# An ordinary user of Debian has no administrator's programs there, such as debootstrap.
PATH=$PATH:/usr/sbin:/sbin
# shellcheck source=tools/lib/say.sh
. "$KESP_TOOLS/lib/say.sh"

# The C++ sources of the tree, one a line; neither builds nor products.
source_files() {
  (cd "$KESP_ROOT" && find . \( -path ./build -o -path ./dist -o -path ./.git \) -prune \
    -o \( -name '*.h' -o -name '*.cpp' \) -type f -print | sed 's|^\./||' | LC_ALL=C sort)
}

can_be_root() {
  [ "$(id -u)" = 0 ] && return 0
  command -v sudo >/dev/null || return 1
  sudo -n true 2>/dev/null || { [ -t 0 ] && sudo -v; }
}

# as_root <command...>: runs it as root, through sudo where need be; 126 where neither can be.
as_root() {
  if [ "$(id -u)" = 0 ]; then
    "$@"
  else
    can_be_root || return 126
    sudo -n -- "$@"
  fi
}
