#pragma once

#include <functional>
#include <string>
#include <vector>

/// Measuring in alternation: whatever else the machine does meets every contender alike.
namespace bench {

struct Measured {
  double seconds = 0;      ///< Wall clock.
  double cpu_seconds = 0;  ///< Of the process and the system for it; 0 for work inside this process.
  long peak_kb = 0;        ///< The process's greatest resident size; 0 for work inside this process.
};

/// One who does the work: a command, or a function of this process when there is no command.
struct Contender {
  std::string name;
  std::vector<std::string> command = {};
  std::function<double()> work = {};   ///< Returns its seconds.
  std::function<void()> prepare = {};  ///< Before every round, not measured; may be empty.
};

/// Medians of `rounds` rounds, in each of which every contender has its turn, after one round that only warms
/// up. A command that fails ends the program.
std::vector<Measured> Alternate(const std::vector<Contender>& contenders, int rounds);

double Median(std::vector<double> values);

/// Prints a table: per contender its medians, their ratio to the first contender's, and its command.
void WriteTable(const std::string& title, const std::vector<Contender>& contenders, int rounds);

}  // namespace bench
