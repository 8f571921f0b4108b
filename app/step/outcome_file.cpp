#include "step/outcome_file.h"

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>

namespace vostrand::step {
namespace {

constexpr const char* last_line = "end";

}  // namespace

// Whole numbers only: a decimal point would depend on the reader's locale.
std::string AsText(const Outcome& outcome) {
  const auto microseconds = [](double seconds) { return std::to_string(static_cast<long>(seconds * 1e6)); };
  return "exit_code " + std::to_string(outcome.exit_code) + "\nsignal " + std::to_string(outcome.signal) +
         "\ncancelled " + std::to_string(outcome.cancelled) + "\ntimed_out " +
         std::to_string(outcome.timed_out) + "\nelapsed_us " + microseconds(outcome.elapsed_seconds) +
         "\ncpu_us " + microseconds(outcome.cpu_seconds) + "\npeak_kib " + std::to_string(outcome.peak_kib) +
         "\nmessage " + outcome.message + "\n" + last_line + "\n";
}

bool FromText(const std::string& text, Outcome& outcome) {
  Outcome read;
  bool whole = false;
  std::size_t begin = 0;
  for (std::size_t end; (end = text.find('\n', begin)) != std::string::npos; begin = end + 1) {
    const std::string line = text.substr(begin, end - begin);
    const std::size_t blank = line.find(' ');
    const std::string name = line.substr(0, blank);
    const std::string value = blank == std::string::npos ? "" : line.substr(blank + 1);
    const long number = std::atol(value.c_str());
    if (name == "exit_code") read.exit_code = static_cast<int>(number);
    if (name == "signal") read.signal = static_cast<int>(number);
    if (name == "cancelled") read.cancelled = number != 0;
    if (name == "timed_out") read.timed_out = number != 0;
    if (name == "elapsed_us") read.elapsed_seconds = static_cast<double>(number) / 1e6;
    if (name == "cpu_us") read.cpu_seconds = static_cast<double>(number) / 1e6;
    if (name == "peak_kib") read.peak_kib = number;
    if (name == "message") read.message = value;
    whole = name == last_line;
  }
  if (whole) outcome = read;
  return whole;
}

bool WriteOutcome(const std::string& path, const Outcome& outcome, bool to_disk) {
  const std::string text = AsText(outcome);
  const std::string beside = path + ".tmp";
  std::FILE* const file = std::fopen(beside.c_str(), "we");
  if (!file) return false;
  const bool written = std::fwrite(text.data(), 1, text.size(), file) == text.size() &&
                       std::fflush(file) == 0 && (!to_disk || fsync(fileno(file)) == 0);
  return std::fclose(file) == 0 && written && std::rename(beside.c_str(), path.c_str()) == 0;
}

bool ReadOutcome(const std::string& path, Outcome& outcome) {
  std::ifstream file(path);
  return FromText({std::istreambuf_iterator<char>(file), {}}, outcome);
}

}  // namespace vostrand::step
