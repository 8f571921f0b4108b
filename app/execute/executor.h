#pragma once

#include <functional>
#include <vector>

#include "execute/events.h"
#include "execute/launcher.h"
#include "execute/run_plan.h"

namespace vostrand {

/// What the executor needs beside the plan.
struct ExecutorHooks {
  std::function<void(std::size_t run, std::size_t step)> call_back;  ///< Performs a callback step.
  std::function<bool()> stop_requested;                              ///< Asked after every callback.
  /// Clears the way for a run; returns why that failed, or nothing.
  std::function<std::string(const PlannedRun& run)> before_run;
  std::function<void()> finished;  ///< Everything has ended.
};

/// Decides when: at most `jobs` runs at once, started in plan order, each a chain of steps. A step that fails
/// ends its run. Once a stop is requested no further run starts; those that run go on to their end. Lives on
/// one thread.
class Executor {
 public:
  Executor(std::vector<PlannedRun> plan, int jobs, Launcher& launcher, Observer& observer,
           ExecutorHooks hooks);

  void Start();
  /// Starts nothing more and ends what runs; a second call makes it end at once.
  void Cancel();

  /// Each run's status: 0 finished, `cancelled_status`, or the exit code of the step that failed.
  const std::vector<int>& Statuses() const { return statuses_; }

 private:
  void StartRuns();
  void StartStep(std::size_t run, std::size_t step);
  void StepEnded(std::size_t run, std::size_t step, const step::Outcome& outcome);
  void EndRun(std::size_t run, int status, const std::string& message = {});
  void FinishIfIdle();
  void Tell(Event::Kind kind, std::size_t run = 0, std::size_t step = 0, int status = 0);

  std::vector<PlannedRun> plan_;
  std::size_t jobs_;
  Launcher& launcher_;
  Observer& observer_;
  ExecutorHooks hooks_;
  std::vector<int> statuses_;
  std::size_t next_ = 0;  // First run that has not been started.
  std::size_t running_ = 0;
  bool cancelled_ = false;
  bool finished_ = false;
};

}  // namespace vostrand
