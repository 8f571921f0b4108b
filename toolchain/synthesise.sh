#!/bin/sh
# Synthesises a Verilog design to the design file that par reads.
set -eu

usage="usage: vostrand-synth DESIGN.v TOP OUT_map.ncd"
fail() {
  code=$1
  shift
  printf 'vostrand-synth: error: %s\n' "$*" >&2
  exit "$code"
}

[ $# -eq 3 ] || fail 1 "$usage"
design=$1 top=$2 out=$3
[ -r "$design" ] && [ ! -d "$design" ] || fail 2 "cannot read design \"$design\""
# Quoted and in a script below: what could end the quotes, or the line, is refused.
case $design$out in *'"'* | *';'* | *[[:cntrl:]]*) fail 1 'names must hold no ", no ; and no control characters' ;; esac
case $design in *[][*?\\]*) fail 1 'the name of the design must hold none of [ ] * ? \' ;; esac
case $top in *[!A-Za-z0-9_]* | '') fail 1 "\"$top\" is no module name" ;; esac
command -v yosys >/dev/null || fail 4 "yosys is not installed"

[ ! -d "$out" ] || fail 6 "\"$out\" is a folder"
if [ "$design" -ef "$out" ]; then fail 1 "the output would replace the design"; fi
# These beginnings mean something else to the programs below.
case $design in [-+~\<]*) design=./$design ;; esac
case $out in [-+~\<]*) out=./$out ;; esac

# Beside this script in the build folder; installed beside par.
here=$(dirname "$(readlink -f "$0")")
engine=${VOSTRAND_ENGINE:-$here/engine}
[ -d "$engine" ] || engine=$(dirname "$here")/libexec/vostrand/engine
[ -r "$engine/synth.ys" ] || fail 4 "the engine's file \"$engine/synth.ys\" is missing; VOSTRAND_ENGINE can name its folder"

# A temporary name in the same folder, so that a failed synthesis leaves nothing that looks finished.
new=$out.new.$$
# Some of the synthesiser's commands take no name with blanks, others expand it.
case ${TMPDIR-} in *[!A-Za-z0-9._/+-]*) unset TMPDIR ;; esac
work=$(mktemp -d) || fail 6 "cannot make a temporary folder"
trap 'rm -rf "$new" "$work"' EXIT
trap 'exit 129' HUP
trap 'exit 130' INT
trap 'exit 143' TERM
if ! (: >"$new") 2>/dev/null; then fail 6 "cannot write \"$out\""; fi

ln -s "$(readlink -f "$engine")" "$work/engine"

# A net without a driver would become a constant, and so would one that is let go.
if ! yosys -q -e 'used but has no driver|limited support for tri-state' -p "
  read_verilog -lib $work/engine/cells.v
  read_verilog \"$design\"
  hierarchy -check -top $top
  script $work/engine/synth.ys generic:mapped
  techmap -map $work/engine/map_cells.v
  script $work/engine/synth.ys mapped:
  write_json \"$new\"" >"$work/log" 2>&1; then
  three_state='three-state logic, which the device does not have'
  message=$(grep -m 1 'ERROR: ' "$work/log") || message=$(tail -n 3 "$work/log")
  case $message in
    # What the last check found is in the warnings before its error; a repeated one stands only where it came first.
    *'check -assert'*)
      message=$({ grep -E 'conflicting drivers|nmapped|logic loop' "$work/log" || grep 'Warning: ' "$work/log" ||
        printf '%s\n' "$message"; } | tail -n 1)
      ;;
    *'t:$tribuf'*) message=$three_state ;;
  esac
  fail 2 "$(printf '%s\n' "$message" | sed "s/ERROR: //; s/Warning: //
    s/.*tri-state logic at the moment\. (\(.*\))\$/\1: $three_state/")"
fi
# The synthesiser does not notice when a disk is full.
[ "$(tail -n 1 "$new")" = "}" ] || fail 6 "cannot write \"$out\" whole: is the disk full?"
mv -fT "$new" "$out"
