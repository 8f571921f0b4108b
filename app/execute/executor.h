#pragma once

#include <functional>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "execute/clock.h"
#include "execute/events.h"
#include "execute/launcher.h"
#include "execute/run_plan.h"
#include "execute/step_times.h"

namespace vostrand {

/// What the user allows a sweep.
struct Limits {
  int jobs = 1;              ///< Most runs at once.
  int retries = 0;           ///< How often a failed step is tried again.
  int requeues = 0;          ///< How often a step is, beside that, whose machine failed.
  long memory_kib = 0;       ///< For all runs together; 0 means no limit.
  int until = 0;             ///< Stop after so many runs that meet timing; 0 means never.
  bool fail_fast = false;    ///< Stop at the first failed run.
  bool stop_now = false;     ///< A stop ends the runs that still go on.
  double grace_seconds = 0;  ///< A run that is expected to end within this after the stop is let go on.
};

/// What the executor needs beside the plan.
struct ExecutorHooks {
  std::function<void(std::size_t run, std::size_t step)> call_back;  ///< Performs a callback step.
  std::function<bool()> stop_requested;                              ///< Asked after every callback.
  /// Clears the way for a run, or for its first command once more; returns why that failed, or nothing.
  std::function<std::string(const PlannedRun& run, bool once_more)> before_run;
  std::function<Verdict(std::size_t run)> judge;  ///< What a run that has just finished is worth.
  std::function<long()> free_memory_kib;  ///< What the machine could still give; for Limits::memory_kib.
  std::function<void()> finished;         ///< Everything has ended.
};

/// Decides when: at most `jobs` runs at once, started in plan order, each a chain of steps. A step that fails
/// is tried again as often as the limits allow, then ends its run. Once the sweep stops - a run met timing,
/// one failed, the user had enough - no further run starts. Lives on one thread.
class Executor {
 public:
  Executor(std::vector<PlannedRun> plan, const Limits& limits, Launcher& launcher, Clock& clock,
           Observer& observer, ExecutorHooks hooks);

  void Start();
  /// Starts nothing more and ends what runs; a second call makes it end at once. In front of Start nothing is
  /// started then.
  void Cancel();

  /// Each run's status: 0 finished, `cancelled_status`, or the exit code of the step that failed.
  const std::vector<int>& Statuses() const { return statuses_; }
  /// Why no further run was started; empty when all were.
  const std::string& StoppedBecause() const { return stopped_because_; }

 private:
  static constexpr std::size_t nobody = static_cast<std::size_t>(-1);
  // A run that has been started and not ended.
  struct Running {
    std::size_t run = 0;
    std::size_t slot = 0;
    std::size_t step = 0;
    int try_number = 1;
    int losses = 0;      // Tries of the step that its machine took with it.
    bool waits = false;  // For a machine.
    double began = 0;
    double step_began = 0;  // On its machine.
    long peak_kib = 0;
    bool told_to_end = false;
  };

  bool Stopping() const { return !stopped_because_.empty(); }
  void TakeRestored();
  void StartRuns();
  bool HasMemory();
  std::size_t TakeSlot();
  void StartStep(std::size_t run, std::size_t step);
  void StartCommand(Running& running);
  void StepPlaced(std::size_t run, const Place& place);
  bool IsTriedAgain(Running& running, const step::Outcome& outcome) const;
  void StepEnded(std::size_t run, const step::Outcome& outcome);
  void EndRun(std::size_t run, int status, const std::string& message = {});
  void Judged(const Verdict& verdict);
  void Stop(const std::string& why, std::size_t but_not);
  void StopIfRequested(std::size_t by_run);
  void EndWithin(std::size_t run, double seconds);
  void TellToEnd(Running& running);
  void Later(double seconds, std::function<void()> then);
  void FinishIfIdle();
  Event About(Event::Kind kind, const Running& running) const;
  void Tell(Event event);

  std::vector<PlannedRun> plan_;
  const Limits limits_;
  Launcher& launcher_;
  Clock& clock_;
  Observer& observer_;
  ExecutorHooks hooks_;
  std::vector<int> statuses_;
  std::map<std::size_t, Running> running_;  // By run.
  std::set<std::size_t> free_slots_;        // Of those that were in use.
  std::size_t slots_ = 0;                   // That were ever in use.
  StepTimes step_times_;
  std::size_t next_ = 0;  // First run that has not been started.
  double began_ = 0;
  long expected_peak_kib_ = 0;  // The most that a finished run took; 0 before one has finished.
  int met_ = 0;
  std::string stopped_because_;
  std::size_t wanted_ = nobody;  // The run that asked for the stop.
  bool started_ = false;
  bool cancelled_ = false;
  bool waiting_for_memory_ = false;
  bool finished_ = false;
  std::shared_ptr<const bool> alive_ = std::make_shared<const bool>(true);  // For what the clock calls later.
};

}  // namespace vostrand
