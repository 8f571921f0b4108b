#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "observe/sweep_state.h"

namespace vostrand {

/// What text has to fit on, in cells of a terminal.
struct Screen {
  std::size_t width = 80;
  std::size_t height = 24;  ///< Running runs that do not fit are counted.
  bool colour = false;
};

/// A line for each running run, the status line and the odds, none wider than the screen; `now` is in seconds
/// of the sweep.
std::vector<std::string> ProgressText(const SweepState& state, double now, const Screen& screen);

/// "5_3 finished after 11.2 s, score 1.333, timing met": what run_finished or run_restored tells. `since` is
/// when the run started.
std::string EndedText(const std::string& name, const Event& event, double since, bool colour);

/// "12 min: 7 of 24 runs finished, 2 running, best 5_6 1.333".
std::string SignOfLife(const SweepState& state, double now);

/// What a terminal can show of the text: control characters as blanks, bytes that are no characters of the
/// locale as "?". More than `cells` are cut off and leave an ellipsis.
std::string Shown(std::string_view text, std::size_t cells = std::string_view::npos);

}  // namespace vostrand
