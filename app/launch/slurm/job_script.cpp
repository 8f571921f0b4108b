#include "launch/slurm/job_script.h"

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <fstream>

namespace vostrand {
namespace {

namespace fs = std::filesystem;

std::string Quoted(const std::string& word) {
  std::string text = "'";
  for (const char c : word) {
    if (c == '\'')
      text += "'\\''";
    else
      text += c;
  }
  return text + "'";
}

std::string Exit(int code) {
  return "exit " + std::to_string(code);
}

}  // namespace

std::string JobScript(const JobPlan& plan) {
  std::string timeout;
  if (plan.timeout_seconds > 0)
    timeout = " --timeout-ms " + std::to_string(static_cast<long>(plan.timeout_seconds * 1000));
  std::string text =
      "#!/bin/sh\n"
      "# One run of a sweep: its commands one after the other until one fails.\n" +
      // What submits the job runs in a locale of its own, and hands it on.
      (plan.locale ? "export LC_ALL=" + Quoted(*plan.locale) : "unset LC_ALL") +
      "\n"
      "folder=" +
      Quoted(plan.folder) + "\nsupervisor=" + Quoted(plan.supervisor) +
      "\n"
      // A cluster starts a job whose working directory is not there in another, and says nothing.
      "cd " +
      Quoted(plan.work_dir) + " 2>/dev/null && [ -d \"$folder\" ] || " + Exit(job_without_folder) +
      "\n"
      "[ -e \"$folder/lease\" ] || " +
      Exit(job_given_up) +
      "\n"
      // Should it have been submitted twice, one of the two does nothing.
      "mkdir \"$folder/taken\" 2>/dev/null || " +
      Exit(job_given_up) +
      "\n"
      "exec >>\"$folder/log\" 2>&1 || " +
      Exit(job_without_folder) +
      "\n"
      "echo \"${SLURMD_NODENAME:-$(hostname)}\" >\"$folder/began.new\" && "
      "mv \"$folder/began.new\" \"$folder/began\"\n"
      "[ -x \"$supervisor\" ] || " +
      Exit(job_without_supervisor) +
      "\n"
      // The supervisor takes the signal too and gives its program time; the script waits for it.
      "ended=\n"
      "trap 'ended=1' TERM\n"
      "perform() {\n"
      "  [ -z \"$ended\" ] && [ -e \"$folder/lease\" ] || " +
      Exit(job_given_up) +
      "\n"
      "  outcome=$folder/$1\n"
      "  shift\n"
      "  \"$supervisor\" --outcome \"$outcome\" --lease \"$folder/lease\" --output " +
      Quoted(plan.output_file) + timeout +
      " -- \"$@\" || exit $?\n"
      "}\n";
  for (const JobStep& step : plan.steps) {
    text += "perform " + std::to_string(step.step);
    for (const std::string& word : step.words) text += " " + Quoted(word);
    text += "\n";
  }
  return text;
}

bool JobFolder::Make(const std::string& script) const {
  std::error_code error;
  fs::create_directories(path_, error);
  const auto write = [](const std::string& path, const std::string& text) {
    return (std::ofstream(path) << text).flush().good();
  };
  return !error && write(Lease(), "The job goes on while this file is here.\n") &&
         write(path_ + "/script", script);
}

void JobFolder::GiveUp() const {
  std::error_code error;
  fs::remove(Lease(), error);
}

std::string JobFolder::Node() const {
  std::string name;
  std::ifstream(path_ + "/began") >> name;
  return name;
}

double JobFolder::QueueSeconds() const {
  std::error_code error;
  const auto began = fs::last_write_time(path_ + "/began", error);
  if (error) return 0;
  const auto submitted = fs::last_write_time(path_ + "/script", error);
  return error ? 0 : std::max(0.0, std::chrono::duration<double>(began - submitted).count());
}

std::string JobFolder::LastWords() const {
  std::ifstream log(path_ + "/log");
  std::string last;
  for (std::string line; std::getline(log, line);)
    if (!line.empty()) last = line.substr(0, 200);
  return last;
}

void JobFolder::Remove() const {
  std::error_code error;
  fs::remove_all(path_, error);
}

}  // namespace vostrand
