#pragma once

#include <string>
#include <vector>

namespace vostrand {

/// One action of a run, as the executor sees it.
struct PlannedStep {
  std::vector<std::string> words;  ///< The program and its arguments; empty for a callback.
  bool IsCallback() const { return words.empty(); }
};

/// One place-and-route run, as the executor sees it.
struct PlannedRun {
  std::string name;
  std::vector<PlannedStep> steps;
  std::string output_file;             ///< What its tools print is kept here.
  std::vector<std::string> leftovers;  ///< Files of an earlier sweep, removed before the run starts.
  std::string leftover_folder;         ///< The same, with all that is in it; empty when there is none.
};

}  // namespace vostrand
