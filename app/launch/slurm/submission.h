#pragma once

#include <functional>
#include <string>
#include <vector>

namespace vostrand {

struct SlurmSettings {
  std::string supervisor;    ///< Path of vostrand-step, valid on the nodes.
  std::string work_dir;      ///< Full path, valid on the nodes.
  std::string state_folder;  ///< Of the sweep, inside the working directory.
  std::vector<std::string> sbatch_arguments;
  double timeout_seconds = 0;  ///< Of each command; 0 means as long as it takes.
  double poll_seconds = 1;
  double patience_seconds = 600;  ///< How long the controller may not answer.
};

constexpr const char* silent_controller = "the cluster's controller does not answer";

/// sbatch for one job, whose script comes on standard input.
std::vector<std::string> SubmitCommand(const SlurmSettings& settings, const std::string& own_option);

/// What a user reads in the queue: the run's name, as far as it is harmless there, and what makes it unique.
std::string JobName(const std::string& run, const std::string& session, int number);

/// Why the cluster would never run such a job; empty when it would. Waits while its controller does not
/// answer.
std::string WhyRefusedByCluster(const SlurmSettings& settings,
                                const std::function<void(const std::string& line)>& say);

}  // namespace vostrand
