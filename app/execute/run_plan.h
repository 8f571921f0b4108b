#pragma once

#include <string>
#include <vector>

#include "execute/events.h"

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
  std::string results_folder;          ///< What it leaves lies here, under its own names.
  std::vector<std::string> results;    ///< Names in there of the files that it may leave; its folder's too.
  std::vector<std::string> leftovers;  ///< Files of an earlier sweep, removed before the run starts.
  std::string leftover_folder;         ///< The same, with all that is in it; empty when there is none.
  bool restored = false;    ///< An earlier sweep finished it and its files are back: it is not run again.
  Verdict earlier_verdict;  ///< Of a restored run.
  long earlier_peak_kib = 0;
};

}  // namespace vostrand
