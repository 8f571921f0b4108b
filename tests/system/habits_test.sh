#!/usr/bin/env bash
# habits_test.sh PROGRAM MAN_DIR DATA_DIR: what users reach for without thinking. The manual and the completions know
# the program's options, no more and no fewer, and completing beside hostile names runs nothing.
set -u
program=$1 man=$2 data=$3
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
cd "$scratch" || exit 1
failures=0

expect() {  # what, expected, actual
  [ "$2" = "$3" ] && return
  printf '%s\n  expected: %s\n  is:       %s\n' "$1" "$2" "$3"
  failures=$((failures + 1))
}
# COMPREPLY of the command line with these words, the last one at the cursor; sorted.
completed() {
  local function=_${1//-/_}
  bash --norc -c 'compopt() { :; }; . "$1"; COMP_WORDS=("${@:3}") COMP_CWORD=$(($# - 3)); "$2"
    printf "%s\n" "${COMPREPLY[@]}"' - "$data/bash-completion/completions/$1" "$function" "$@" 2>&1 | listed
}
listed() { LC_ALL=C sort | paste -sd ' '; }

help=$("$program" --help) || exit 1
options=$(sed -nE 's/^ +(--[a-z][a-z-]*).*/\1/p' <<<"$help" | listed)
case $options in *--help*--jobs*) ;; *) echo "no options in the help: $options"; exit 1 ;; esac

expect 'manual' "$options" "$(sed -nE 's/^\.It Fl -([a-z-]+).*/--\1/p' "$man/man1/vostrand.1" | listed)"
expect 'bash' "$options" "$(completed vostrand --)"
expect 'zsh' "$options" "$(grep -oE '\-\-[a-z-]+=?\[' "$data/zsh/site-functions/_vostrand" | tr -d '=[' | listed)"

# An option with a value has no options behind it, a switch has; both as the help and zsh say.
for option in $options; do
  takes=$(grep -cE "^ +$option (N|DIR|FILE|DURATION|SIZE|ARGS|all\|best|local\|slurm)( |$)" <<<"$help")
  behind=$(completed vostrand "$option" --he)
  [ "$takes" = 1 ] && expect "behind $option" '' "$behind" || expect "behind $option" --help "$behind"
  expect "zsh: $option takes" "$takes" "$(grep -c -e "$option=\[" "$data/zsh/site-functions/_vostrand")"
done

mkdir designs
touch top.p2t two.p2t 'a b.p2t' '$(touch hit).p2t' '`touch${IFS}hit`.p2t' "q'u\"ote.p2t" designs/inner.p2t
cat >result.json <<'R'
{ "host": { "name": "here" }, "runs": [ { "name": "5_1", "outcome": "finished" },
  { "name": "$(touch hit)", "outcome": "finished" }, { "name": "5_2",
    "outcome": "failed" } ] }
R
cp result.json '$(touch hit).json'
expect 'base names' 'top two' "$(completed vostrand --jobs = 4 '')"
expect 'in --chdir' 'inner' "$(completed vostrand --chdir "'designs/'" '')"
expect 'behind --' 'top' "$(completed vostrand --quiet -- to)"
expect 'behind a base name' '-cst -dissorv' "$(completed vostrand top '')"
expect 'values' 'all best' "$(completed vostrand --retain = | LC_ALL=C sort)"
expect 'results' 'result.json' "$(completed vostrand-view show '')"
expect 'runs' '5_1 5_2' "$(completed vostrand-view explain result.json '')"
for word in '$(touch hit)' '`touch hit`' '$(touch hit)/' '"$(touch hit)' '$(touch hit).json'; do
  completed vostrand --chdir "$word" "$word" >out; completed vostrand "$word" >>out
  completed vostrand-view explain "$word" '' >>out
done
expect 'what hostile names ran' '' "$(ls hit designs/hit 2>/dev/null)"

for page in "$man"/man1/*.1; do
  ! command -v mandoc >/dev/null || expect "$page" '' "$(mandoc -T lint -W warning "$page")"
done
for file in "$data"/zsh/site-functions/_*; do
  ! command -v zsh >/dev/null || expect "$file" '' "$(zsh -n "$file" 2>&1)"
done
exit $((failures > 0))
