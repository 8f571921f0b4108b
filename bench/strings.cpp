// UT_STROBJ against std::string and std::string_view doing the same work. A benchmark is called WORK/TYPE;
// those of one WORK do the same with each type that can.
#include <benchmark/benchmark.h>

#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "ut/strobj.h"
#include "ut/text.h"

namespace {

using std::string;
using std::string_view;

const string row = "FREQUENCY NET \"core_17/clk_domain_c\" 100.|  100.000 MHz|  184.332 MHz|     4";

template <typename Text>
Text Part(const Text& text, std::size_t at, std::size_t n) {
  if constexpr (requires { text.substr(at, n); })
    return text.substr(at, n);
  else
    return text.right_from(at).left(n);
}

template <typename Text>
void Slice(benchmark::State& state) {
  const Text text{string_view(row)};
  for (auto _ : state) benchmark::DoNotOptimize(Part(text, 5, 30));
}

template <typename Text>
void Copy(benchmark::State& state) {
  const Text text{string_view(row)};
  for (auto _ : state) {
    Text copy = text;
    benchmark::DoNotOptimize(copy);
  }
}

template <typename Text>
void Trim(benchmark::State& state) {
  const Text text = Part(Text{string_view(row)}, 41, 13);
  for (auto _ : state) {
    if constexpr (requires { text.trimmed(); })
      benchmark::DoNotOptimize(text.trimmed());
    else
      benchmark::DoNotOptimize(Text(ut_trimmed(text)));
  }
}

template <typename Text>
void Compare(benchmark::State& state) {
  const Text a{string_view(row)};
  const Text b{string_view(row)};
  for (auto _ : state) {
    benchmark::DoNotOptimize(a);
    benchmark::DoNotOptimize(a < b);
  }
}

template <typename Text>
void LookUp(benchmark::State& state) {
  std::vector<string> names(500);
  std::map<Text, int> map;
  std::vector<Text> keys;
  for (string& name : names) {
    name = "FREQUENCYNET\"core_" + std::to_string(keys.size()) + "/clk\"";
    map[keys.emplace_back(string_view(name))] = 1;
  }
  std::size_t n = 0;
  for (auto _ : state) benchmark::DoNotOptimize(map.find(keys[n++ % keys.size()]));
}

template <typename Text>
void Append(benchmark::State& state) {
  for (auto _ : state) {
    Text text;
    for (int n = 0; n < state.range(0); ++n) text.append(string_view(row));
    benchmark::DoNotOptimize(text);
  }
}

}  // namespace

#define ALL_THREE(Work)                              \
  BENCHMARK(Work<string>)->Name(#Work "/string");    \
  BENCHMARK(Work<string_view>)->Name(#Work "/view"); \
  BENCHMARK(Work<UT_STROBJ>)->Name(#Work "/ours")

ALL_THREE(Slice);
ALL_THREE(Copy);
ALL_THREE(Trim);
ALL_THREE(Compare);
ALL_THREE(LookUp);
BENCHMARK(Append<string>)->Name("Append/string")->Arg(1000)->Arg(100000);
BENCHMARK(Append<UT_STROBJ>)->Name("Append/ours")->Arg(1000)->Arg(100000);

BENCHMARK_MAIN();
