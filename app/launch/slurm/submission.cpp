#include "launch/slurm/submission.h"

#include <QString>
#include <cctype>
#include <chrono>
#include <thread>
#include <utility>

#include "launch/slurm/slurm_commands.h"

namespace vostrand {
namespace {

// Options that make something else of a submission than one job that is watched here. Long ones may be cut
// short.
bool IsRefused(const std::string& word) {
  for (const char* const letter : {"-a", "-W", "-M", "-h", "-V"})
    if (word.starts_with(letter)) return true;
  const std::string name = word.substr(0, word.find('='));
  for (const std::string refused : {"--array", "--wrap", "--wait", "--clusters", "--test-only", "--help",
                                    "--version", "--usage", "--autocomplete"})
    if (name.size() > 3 && refused.starts_with(name)) return true;
  return word == "--" || word == ":";
}

}  // namespace

std::vector<std::string> SubmitCommand(const SlurmSettings& settings, const std::string& own_option) {
  std::vector<std::string> words = {"sbatch"};
  words.insert(words.end(), settings.sbatch_arguments.begin(), settings.sbatch_arguments.end());
  // Ours stand last, where they win.
  words.insert(words.end(), {"--parsable", "--no-requeue", "--export=ALL", "--output=/dev/null",
                             "--error=/dev/null", "--chdir=" + settings.work_dir, own_option});
  return words;
}

std::string JobName(const std::string& run, const std::string& session, int number) {
  std::string name = run.substr(0, 40);
  for (char& c : name)
    if (!std::isalnum(static_cast<unsigned char>(c)) && c != '_' && c != '-') c = '_';
  return name + "." + session + "." + std::to_string(number);
}

std::string WhyRefusedByCluster(const SlurmSettings& settings,
                                const std::function<void(const std::string& line)>& say) {
  for (const std::string& word : settings.sbatch_arguments)
    if (IsRefused(word)) return word + " cannot be among the options for sbatch";
  if (QString::fromStdString(settings.work_dir).toStdString() != settings.work_dir)
    return "the working directory's name is no text that a cluster could be given";
  const auto give_up =
      std::chrono::steady_clock::now() + std::chrono::duration<double>(settings.patience_seconds);
  for (bool said = false;;) {
    const CommandResult result =
        SlurmCommands::RunAndWait(SubmitCommand(settings, "--test-only"), "#!/bin/sh\n");
    if (result.Succeeded()) return {};
    if (!result.IsUnanswered() || std::chrono::steady_clock::now() > give_up)
      return "the cluster does not take such jobs: " + result.Why();
    if (!std::exchange(said, true)) say(silent_controller + std::string("; waiting for it"));
    std::this_thread::sleep_for(std::chrono::seconds(1));
  }
}

}  // namespace vostrand
