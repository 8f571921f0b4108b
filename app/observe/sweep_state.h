#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "execute/events.h"
#include "execute/step_times.h"

namespace vostrand {

/// A sweep as its events tell it, live or from a journal. All members are for reading; only On changes them.
/// Events about runs or steps that are not in the plan are skipped.
struct SweepState final : public Observer {
  struct Running {
    std::size_t run = 0;
    std::size_t slot = 0;
    std::size_t step = 0;
    int try_number = 1;
    double since = 0;       ///< When it started, in seconds of the sweep.
    double step_since = 0;  ///< When this try of its step did, on its machine.
    bool waits = false;     ///< A scheduler has it and has no machine for it yet.
    std::string place;      ///< The machine's name, or why it waits; empty on this machine.
  };

  /// `most_steps` is that of the longest run; `step_programs` names the steps as far as known.
  SweepState(std::vector<std::string> run_names, std::size_t most_steps, std::size_t most_jobs,
             std::vector<std::string> step_programs = {});

  void On(const Event& event) override;

  std::size_t Finished() const { return verdicts.size(); }  ///< The restored ones included.
  std::size_t Ended() const { return Finished() + failed + cancelled; }
  std::size_t Waiting() const;
  /// Of the running ones those that wait for a machine.
  std::size_t Queued() const;

  const std::vector<std::string> names;
  const std::size_t steps;
  const std::size_t jobs;
  const std::vector<std::string> programs;
  std::size_t restored = 0;
  std::size_t failed = 0;
  std::size_t cancelled = 0;      ///< Those that never started included, once that is certain.
  std::vector<Running> running;   ///< In the order in which they started.
  std::vector<Verdict> verdicts;  ///< Of the finished runs, in the order in which they ended.
  /// The finished run with the highest score; while none has a score, one that meets timing. Of equals the
  /// first in the plan.
  std::optional<std::size_t> best;
  Verdict best_verdict;
  StepTimes step_times;  ///< Of steps that ended well; callbacks take none.
  bool stopping = false;
  std::string stopped_because;

 private:
  void OnRun(const Event& event);
  void Finish(const Event& event);
};

}  // namespace vostrand
