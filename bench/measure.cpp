#include "measure.h"

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>

#include "work.h"

namespace bench {
namespace {

double Seconds(const timeval& time) {
  return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
}

std::string Joined(const std::vector<std::string>& words) {
  std::string text;
  for (const std::string& word : words) text += (text.empty() ? "" : " ") + word;
  return text;
}

[[noreturn]] void Become(const std::vector<std::string>& command) {
  std::vector<char*> words;
  for (const std::string& word : command) words.push_back(const_cast<char*>(word.c_str()));
  words.push_back(nullptr);
  ::dup2(::open("/dev/null", O_WRONLY), STDOUT_FILENO);
  ::execvp(words[0], words.data());
  std::perror(words[0]);
  ::_exit(127);
}

Measured Run(const Contender& contender) {
  if (contender.prepare) contender.prepare();
  if (contender.command.empty()) return {contender.work()};
  const double start = Now();
  const pid_t child = ::fork();
  if (child == 0) Become(contender.command);
  int status = -1;
  rusage usage = {};
  ::wait4(child, &status, 0, &usage);
  const double seconds = Now() - start;
  if (status == 0) return {seconds, Seconds(usage.ru_utime) + Seconds(usage.ru_stime), usage.ru_maxrss};
  std::fprintf(stderr, "failed: %s\n", Joined(contender.command).c_str());
  std::exit(1);
}

}  // namespace

double Median(std::vector<double> values) {
  std::sort(values.begin(), values.end());
  return values[values.size() / 2];
}

std::vector<Measured> Alternate(const std::vector<Contender>& contenders, int rounds) {
  std::vector<std::vector<double>> seconds(contenders.size()), cpu(contenders.size());
  std::vector<Measured> medians(contenders.size());
  for (int round = 0; round <= rounds; ++round) {
    for (std::size_t i = 0; i < contenders.size(); ++i) {
      const Measured one = Run(contenders[i]);
      if (round == 0) continue;
      seconds[i].push_back(one.seconds);
      cpu[i].push_back(one.cpu_seconds);
      medians[i].peak_kb = std::max(medians[i].peak_kb, one.peak_kb);
    }
  }
  for (std::size_t i = 0; i < contenders.size(); ++i) {
    medians[i].seconds = Median(seconds[i]);
    medians[i].cpu_seconds = Median(cpu[i]);
  }
  return medians;
}

void WriteTable(const std::string& title, const std::vector<Contender>& contenders, int rounds) {
  const std::vector<Measured> medians = Alternate(contenders, rounds);
  std::printf("\n### %s\n\n| what | time, ms | ratio | CPU, ms | ratio | peak, MB | command |\n",
              title.c_str());
  std::printf("|---|---:|---:|---:|---:|---:|---|\n");
  for (std::size_t i = 0; i < contenders.size(); ++i) {
    const Measured& own = medians[i];
    const Measured& first = medians[0];
    std::printf("| %s | %.1f | %.2f ", contenders[i].name.c_str(), own.seconds * 1e3,
                own.seconds / first.seconds);
    if (own.peak_kb == 0)
      std::printf("| | | | inside `bench_points` |\n");
    else
      std::printf("| %.1f | %.2f | %.1f | `%s` |\n", own.cpu_seconds * 1e3,
                  own.cpu_seconds / first.cpu_seconds, static_cast<double>(own.peak_kb) / 1024,
                  Joined(contenders[i].command).c_str());
  }
  std::fflush(stdout);
}

}  // namespace bench
