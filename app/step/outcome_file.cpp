#include "step/outcome_file.h"

#include <unistd.h>

#include <cstdio>
#include <memory>

namespace vostrand::step {
namespace {

struct CloseFile {
  void operator()(std::FILE* file) const { std::fclose(file); }
};
using File = std::unique_ptr<std::FILE, CloseFile>;

// Whole numbers only: a decimal point would depend on the reader's locale.
constexpr const char* format =
    "exit_code %d\nsignal %d\ncancelled %d\nelapsed_us %ld\ncpu_us %ld\npeak_kib %ld\nend\n%n";

long Microseconds(double seconds) {
  return static_cast<long>(seconds * 1e6);
}

}  // namespace

bool WriteOutcome(const std::string& path, const Outcome& outcome) {
  const std::string beside = path + ".tmp";
  std::FILE* const file = std::fopen(beside.c_str(), "we");
  if (!file) return false;
  int length = 0;
  std::fprintf(file, format, outcome.exit_code, outcome.signal, outcome.cancelled ? 1 : 0,
               Microseconds(outcome.elapsed_seconds), Microseconds(outcome.cpu_seconds), outcome.peak_kib,
               &length);
  const bool written = std::fflush(file) == 0 && fsync(fileno(file)) == 0;
  return std::fclose(file) == 0 && written && std::rename(beside.c_str(), path.c_str()) == 0;
}

bool ReadOutcome(const std::string& path, Outcome& outcome) {
  const File file(std::fopen(path.c_str(), "re"));
  if (!file) return false;
  Outcome read;
  int cancelled = 0;
  long elapsed = 0;
  long cpu = 0;
  int length = 0;
  const int values = std::fscanf(file.get(), format, &read.exit_code, &read.signal, &cancelled, &elapsed,
                                 &cpu, &read.peak_kib, &length);
  if (values != 6 || length == 0) return false;
  read.cancelled = cancelled != 0;
  read.elapsed_seconds = static_cast<double>(elapsed) / 1e6;
  read.cpu_seconds = static_cast<double>(cpu) / 1e6;
  outcome = read;
  return true;
}

}  // namespace vostrand::step
