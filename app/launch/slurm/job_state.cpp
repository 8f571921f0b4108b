#include "launch/slurm/job_state.h"

#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <iterator>
#include <sstream>

#include "execute/events.h"
#include "launch/slurm/job_script.h"

namespace vostrand {
namespace {

struct Column {
  const char* name;
  std::size_t width;
};

// The columns are cut off at their width; names of nodes and reasons may be.
constexpr Column columns[] = {{"JobID", 12},  {"State", 16},    {"exit_code", 8},
                              {"Reason", 40}, {"NodeList", 40}, {"Name", 80}};

std::string Trimmed(const std::string& text) {
  const std::size_t begin = text.find_first_not_of(' ');
  return begin == std::string::npos ? "" : text.substr(begin, text.find_last_not_of(' ') - begin + 1);
}

template <std::size_t n>
bool IsOneOf(const std::string& state, const char* const (&states)[n]) {
  return std::find(std::begin(states), std::end(states), state) != std::end(states);
}

constexpr const char* lost_states[] = {"NODE_FAIL", "BOOT_FAIL", "PREEMPTED"};
constexpr const char* ended_states[] = {"COMPLETED",     "FAILED",   "CANCELLED", "TIMEOUT",
                                        "OUT_OF_MEMORY", "DEADLINE", "REVOKED"};

// The script's own exit codes, of use only when there is nothing else.
std::string Hint(const JobStatus& job) {
  switch (WIFEXITED(job.wait_status) ? WEXITSTATUS(job.wait_status) : 0) {
    case job_without_folder:
      return ": the node does not see the working directory, which all nodes must share";
    case job_without_supervisor:
      return ": the node does not see vostrand-step beside the program vostrand, which all nodes must share";
    case job_given_up:
      return ": it was given up before it began";
    default:
      return ", and the step left no outcome";
  }
}

}  // namespace

bool JobStatus::IsWaiting() const {
  return state == "PENDING" || state == "CONFIGURING" || state.starts_with("REQUEUE");
}

bool JobStatus::HasEnded() const {
  return IsLost() || IsOneOf(state, ended_states);
}

bool JobStatus::TellsMoreThan(const JobStatus& other) const {
  const auto rank = [](const JobStatus& job) {
    if (!job.HasEnded()) return job.IsWaiting() ? 3 : 4;
    if (WIFEXITED(job.wait_status) && WEXITSTATUS(job.wait_status) == job_given_up) return 0;
    return job.state == "CANCELLED" ? 1 : 2;  // Perhaps a twin that never began.
  };
  return rank(*this) > rank(other);
}

bool JobStatus::IsLost() const {
  return IsOneOf(state, lost_states);
}

std::vector<std::string> QueueCommand() {
  std::string format;
  for (const Column& column : columns)
    format += (format.empty() ? "" : ",") + std::string(column.name) + ":" + std::to_string(column.width);
  return {"squeue", "--noheader", "--states=all", "--user", std::to_string(geteuid()), "--Format", format};
}

std::vector<JobStatus> ReadQueue(const std::string& text) {
  std::vector<JobStatus> jobs;
  std::istringstream lines(text);
  for (std::string line; std::getline(lines, line);) {
    std::string values[std::size(columns)];
    std::size_t at = 0;
    for (std::size_t i = 0; i < std::size(columns) && at < line.size(); at += columns[i++].width)
      values[i] = Trimmed(line.substr(at, columns[i].width));
    if (values[5].empty()) continue;
    JobStatus& job = jobs.emplace_back();
    job.id = values[0];
    job.state = values[1];
    job.wait_status = std::atoi(values[2].c_str());
    job.reason = values[3];
    job.node = values[4];
    job.name = values[5];
  }
  return jobs;
}

step::Outcome OutcomeOf(const JobStatus& job, const std::optional<step::Outcome>& marker) {
  const std::string what = "job " + job.id +
                           (job.state.empty() ? " is gone from the queue" : " ended " + job.state) +
                           (job.node.empty() ? "" : " on " + job.node);
  if (job.IsLost()) {
    step::Outcome outcome = JobError(what);
    outcome.lost = true;
    return outcome;
  }
  if (job.state == "CANCELLED") return JobCancelled(marker);
  if (marker && marker->cancelled && !job.state.empty()) {
    // Told to end by the node: it makes room for another job, or is shut down in good order.
    step::Outcome outcome = JobError(what + ", told to end by the cluster");
    outcome.lost = job.state == "COMPLETED" || job.state == "FAILED";
    return outcome;
  }
  if (job.state.empty() || job.state == "COMPLETED" || job.state == "FAILED")
    return marker ? *marker : JobError(what + Hint(job));
  return JobError(what);
}

step::Outcome JobError(const std::string& message) {
  step::Outcome outcome;
  outcome.exit_code = job_failed;
  outcome.message = message;
  return outcome;
}

step::Outcome JobCancelled(const std::optional<step::Outcome>& marker) {
  step::Outcome outcome = marker.value_or(step::Outcome());
  outcome.exit_code = cancelled_status;
  outcome.cancelled = true;
  return outcome;
}

}  // namespace vostrand
