#!/usr/bin/env bash
# dispatch.sh VOSTRAND FOLDER: 99 runs of two commands that do nothing, against others that start the same 198 commands;
# 99 runs that sleep, against the ideal; and what waiting costs. Prints tables for scripts/bench.sh.
set -euo pipefail

program=$(realpath "$1")
folder=$2
rounds=5
mkdir -p "$folder"/{true,sleep,wait}/tools "$folder"/{true,sleep,wait}/work
cd "$folder"

prepare() { # FOLDER PAR RUNS
  ln -sf "$2" "$1/tools/par"
  ln -sf /bin/true "$1/tools/sorv"
  echo design >"$1/work/top_map.ncd"
  echo "-n $3 -t 1" >"$1/work/top.p2t"
  echo 'FREQUENCY NET "clk" 100 MHz ;' >"$1/work/top.prf"
}
printf '#!/bin/sh\nexec sleep 0.2\n' >nap
printf '#!/bin/sh\nexec sleep 10\n' >doze
chmod +x nap doze
prepare true /bin/true 99
prepare sleep "$PWD/nap" 99
prepare wait "$PWD/doze" 2

{
  printf 'all:'
  printf ' run%s' {1..99}
  printf '\n'
  for i in {1..99}; do printf 'run%s:\n\t/bin/true\n\t/bin/true\n' "$i"; done
} >Makefile

sweep() { "$program" --quiet --toolchain "$1/tools" --chdir "$1/work" --jobs "$2" top >/dev/null 2>&1 || true; }
alone="vostrand, planning and report alone"
contenders=(xargs make vostrand "$alone" "99 lines brought to the disk")
run() {
  case $1 in
    xargs) seq 198 | xargs -P2 -n1 /bin/true ;;
    make) make -s -j2 all ;;
    vostrand) sweep true 2 ;;
    99*) dd if=/dev/zero of=lines bs=1000 count=99 oflag=append,dsync conv=notrunc status=none ;;
    *) "$program" --quiet --toolchain true/tools --chdir true/work --resume top >/dev/null 2>&1 || true ;;
  esac
}
milliseconds() { # Of a command.
  local began=$EPOCHREALTIME
  "$@"
  echo "$EPOCHREALTIME $began" | awk '{ printf "%.1f\n", 1000 * ($1 - $2) }'
}
median() { sort -n | awk '{ v[NR] = $1 } END { print v[int((NR + 1) / 2)] }'; }

for contender in "${contenders[@]}"; do run "$contender"; done
declare -A times medians
for ((round = 0; round < rounds; ++round)); do
  for contender in "${contenders[@]}"; do times[$contender]+="$(milliseconds run "$contender") "; done
done
printf '\n### 8. Dispatch: 99 runs of two commands that do nothing, two at once\n\n| what | time, ms | ratio |\n|---|---:|---:|\n'
first=
for contender in "${contenders[@]}"; do
  time=$(tr ' ' '\n' <<<"${times[$contender]% }" | median)
  first=${first:-$time}
  medians[$contender]=$time
  printf '| %s | %s | %s |\n' "$contender" "$time" "$(awk "BEGIN { printf \"%.2f\", $time / $first }")"
done
awk "BEGIN { d = ${medians[vostrand]} - ${medians[$alone]}
  printf \"| vostrand without planning and report | %.1f | %.2f |\n\", d, d / $first }"

# Seven rounds of 16 at once, the last of three: 1.4 s.
nap_by_xargs() { seq 99 | xargs -P16 -I{} sh -c './nap; exec /bin/true'; }
peer=$(for ((round = 0; round < rounds; ++round)); do milliseconds nap_by_xargs; done | median)
time=$(for ((round = 0; round < rounds; ++round)); do milliseconds sweep sleep 16; done | median)
printf '\n### 8. 99 runs that sleep 0.2 s, 16 at once\n\n| what | time, ms | ratio |\n|---|---:|---:|\n| ideal | 1400 | 1.00 |\n'
for what in "xargs $peer" "vostrand $time" "vostrand, without planning and report $(awk "BEGIN { print $time - ${medians[$alone]} }")"; do
  printf '| %s | %s | %s |\n' "${what% *}" "${what##* }" "$(awk "BEGIN { printf \"%.3f\", ${what##* } / 1400 }")"
done

# Its own processor time, the tools' left out: read from the process while it waits.
"$program" --quiet --toolchain wait/tools --chdir wait/work --jobs 2 top >/dev/null 2>&1 &
host=$!
ticks() { awk '{ print $14 + $15 }' "/proc/$host/stat"; }
sleep 2
before=$(ticks)
sleep 6
after=$(ticks)
wait "$host" || true
printf '\n### 8. Waiting\n\n| what | ms of processor time in 6 s |\n|---|---:|\n| vostrand | %s |\n' "$(((after - before) * 10))"
