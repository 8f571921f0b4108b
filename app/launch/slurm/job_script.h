#pragma once

#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace vostrand {

/// A command of a run and its index among the run's steps.
struct JobStep {
  std::size_t step = 0;
  std::vector<std::string> words;  ///< The program's full path and its arguments.
};

/// What one cluster job does.
struct JobPlan {
  std::string work_dir;               ///< Full path, on every node.
  std::string folder;                 ///< The job's own, inside the working directory: see JobFolder.
  std::string supervisor;             ///< Full path of vostrand-step.
  std::string output_file;            ///< What the tools print is appended to it.
  std::optional<std::string> locale;  ///< The host's LC_ALL, if it has one, which the tools see too.
  double timeout_seconds = 0;
  std::vector<JobStep> steps;
};

/// Exit codes of the script for what it has no other way to tell. The node does not have the working
/// directory, or no supervisor, or the job was given up before it began.
constexpr int job_without_folder = 113;
constexpr int job_without_supervisor = 114;
constexpr int job_given_up = 115;

/// The script of a job: performs the steps one after the other, each under the supervisor, which leaves its
/// outcome in the job's folder, until one fails. No name in it is ever code.
std::string JobScript(const JobPlan& plan);

/// The folder of one job, through which the host and the job speak to each other: "lease" is there while the
/// host wants the job, "script" is what was submitted, "taken" keeps a second job away, "began" holds the
/// node's name, "N" is the outcome of step N, "log" what the script itself said.
class JobFolder {
 public:
  explicit JobFolder(std::string path) : path_(std::move(path)) {}

  const std::string& Path() const { return path_; }
  /// Makes the folder with its lease and the script; false when that fails.
  bool Make(const std::string& script) const;
  std::string Lease() const { return path_ + "/lease"; }
  std::string Outcome(std::size_t step) const { return path_ + "/" + std::to_string(step); }
  /// Ends the job wherever it runs, within about a second, also when the controller cannot be reached.
  void GiveUp() const;
  /// The node that the job began on; empty before.
  std::string Node() const;
  /// Seconds between the making of the folder and the job's begin, by the file system's clock alone; 0
  /// before.
  double QueueSeconds() const;
  /// The last line that the script itself, not its tools, said; empty when it said nothing.
  std::string LastWords() const;
  void Remove() const;

 private:
  std::string path_;
};

}  // namespace vostrand
