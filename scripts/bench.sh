#!/usr/bin/env bash
# Measures the library against peers and limits: builds in release mode, makes inputs of real size under build/bench
# and removes them again, and writes build/bench/report.md with its plot. docs/performance.md explains the tables.
set -euo pipefail
cd "$(dirname "$0")/.."

build=${VOSTRAND_BENCH_BUILD:-build/release}
out=build/bench
mkdir -p "$out"
free_mb=$(df --output=avail -m "$out" | tail -1)
if [ "$free_mb" -lt 3000 ]; then
  echo "bench.sh: 3000 MB free are needed in $out, there are $free_mb" >&2
  exit 1
fi

scripts/install-deps.sh --bench
cmake --preset release -B "$build" -DVOSTRAND_BUILD_BENCH=ON >/dev/null
cmake --build "$build" --target bench_points bench_strings vostrandlib
# Measured where it can be built; it needs more than the library.
cmake --build "$build" --target vostrand vostrand-step || echo "bench.sh: the program is left out" >&2

inputs=$out/inputs
trap 'rm -rf "$inputs" /dev/shm/vostrand-bench.ncd' EXIT
rm -rf "$inputs"
"$build"/bench/bench_points "$inputs" "$build/app/vostrand" "$PWD/$build/lib/libvostrandlib.so.1" |
  tee "$out/report.md"

[ ! -x "$build/app/vostrand" ] || bench/dispatch.sh "$build/app/vostrand" "$inputs/dispatch" | tee -a "$out/report.md"

# The growth table as a plot, both axes logarithmic: time on the left, peak memory on the right.
awk -F'|' '
  function x(mb, panel) { return 60 + 420 * panel + 330 * log(mb / 0.01) / log(1e5) }
  function y(value) { return 300 - 260 * log(value) / log(1e4) }
  /^### 10/ { growth = 1 }
  /^### [^1]|^### 1[^0]/ { growth = 0 }
  growth && $3 > 0 {
    if (!($2 in color)) { color[$2] = substr("#c03030#3060c0#308030#a06000", 1 + 7 * n++, 7); names[n] = $2 }
    for (p = 0; p < 2; ++p) points[$2, p] = points[$2, p] sprintf("%.1f,%.1f ", x($3, p), y($(4 + p)))
  }
  END {
    print "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"860\" height=\"360\" font-family=\"sans-serif\" font-size=\"11\">"
    print "<rect width=\"860\" height=\"360\" fill=\"white\"/>"
    for (p = 0; p < 2; ++p) {
      printf "<text x=\"%d\" y=\"25\">%s, by input, MB</text>\n", x(0.01, p), p ? "peak memory, MB" : "time, ms"
      printf "<rect x=\"%d\" y=\"40\" width=\"330\" height=\"260\" fill=\"none\" stroke=\"#888\"/>\n", x(0.01, p)
      for (mb = 0.01; mb < 2000; mb *= 10) printf "<text x=\"%d\" y=\"316\">%g</text>\n", x(mb, p), mb
      for (v = 1; v < 20000; v *= 10) printf "<text x=\"%d\" y=\"%d\" text-anchor=\"end\">%g</text>\n", x(0.01, p) - 4, y(v) + 4, v
      for (i = 1; i <= n; ++i)
        printf "<polyline fill=\"none\" stroke=\"%s\" points=\"%s\"/>\n", color[names[i]], points[names[i], p]
    }
    for (i = 1; i <= n; ++i) printf "<text x=\"%d\" y=\"345\" fill=\"%s\">%s</text>\n", 120 * i - 60, color[names[i]], names[i]
    print "</svg>"
  }' "$out/report.md" >"$out/growth.svg"

# One line per work: the median of ours over that of each peer.
{
  printf '\n### 4. Strings, ns\n\n| work | std::string | std::string_view | ours | to string | to view |\n'
  printf '|---|---:|---:|---:|---:|---:|\n'
  "$build"/bench/bench_strings --benchmark_repetitions=7 --benchmark_enable_random_interleaving=true \
    --benchmark_min_time=0.05 --benchmark_report_aggregates_only=true --benchmark_format=csv 2>/dev/null |
    awk -F, '
      $1 ~ /_median/ {
        gsub(/"/, "", $1); sub(/_median/, "", $1); split($1, part, "/")
        work = part[1] (part[3] ? ", " part[3] " pieces" : ""); ns[work, part[2]] = $4
        if (!(work in seen)) { seen[work] = 1; order[++n] = work }
      }
      END {
        for (i = 1; i <= n; ++i) {
          w = order[i]; s = ns[w, "string"]; v = ns[w, "view"]; o = ns[w, "ours"]
          printf "| %s | %.1f | %s | %.1f | %.2f | %s |\n", w, s, v ? sprintf("%.1f", v) : "", o, o / s, v ? sprintf("%.2f", o / v) : ""
        }
      }'
} | tee -a "$out/report.md"
printf '\n%s\n' "$(uname -sm), $(nproc) cores, $(stat -f -c %T "$out"), load $(cut -d' ' -f1-3 /proc/loadavg)" | tee -a "$out/report.md"
