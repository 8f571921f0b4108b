// What is decided about jobs, without a cluster: the table of states and markers, the script, the journal of
// jobs.
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cstdlib>

#include "common/scratch.h"
#include "execute/events.h"
#include "launch/slurm/job_journal.h"
#include "launch/slurm/job_script.h"
#include "launch/slurm/job_state.h"

using namespace vostrand;

namespace {

// "lost", "cancelled" or the exit code.
std::string Decided(const std::string& state, std::optional<int> marker, int script_exit = 0,
                    bool told_to_end = false) {
  JobStatus job;
  job.id = "7";
  job.state = state;
  job.wait_status = W_EXITCODE(script_exit, 0);
  std::optional<step::Outcome> left;
  if (marker) left.emplace().exit_code = *marker;
  if (left) left->cancelled = told_to_end;
  const step::Outcome outcome = OutcomeOf(job, left);
  if (outcome.lost) return "lost";
  return outcome.cancelled ? "cancelled" : std::to_string(outcome.exit_code);
}

}  // namespace

TEST(JobState, NeverByAnExitCodeAlone) {
  EXPECT_EQ(Decided("COMPLETED", 0), "0");
  EXPECT_EQ(Decided("COMPLETED", {}), "123");
  EXPECT_EQ(Decided("FAILED", 255, 255), "255") << "the queue shows 65280, which would be a cancelled run";
  EXPECT_EQ(Decided("FAILED", {}, 9), "123");
  EXPECT_EQ(Decided("CANCELLED", 0), "cancelled");
  EXPECT_EQ(Decided("TIMEOUT", {}), "123");
  EXPECT_EQ(Decided("OUT_OF_MEMORY", 137), "123");
  for (const char* state : {"NODE_FAIL", "BOOT_FAIL", "PREEMPTED"}) EXPECT_EQ(Decided(state, 0), "lost");
  EXPECT_EQ(Decided("FAILED", 143, 143, true), "lost") << "pre-empted, and it ended in the time it was given";
  EXPECT_EQ(Decided("COMPLETED", 0, 0, true), "lost") << "it ended well, but not by itself";
  EXPECT_EQ(Decided("TIMEOUT", 143, 143, true), "123");
  EXPECT_EQ(Decided("", 0), "0") << "the queue has forgotten it";
  EXPECT_EQ(Decided("", {}), "123");
}

TEST(JobState, OfTwinsTheOneThatDidTheWorkTellsMore) {
  std::vector<JobStatus> rising(5);
  const char* const states[] = {"FAILED", "CANCELLED", "NODE_FAIL", "PENDING", "RUNNING"};
  for (std::size_t i = 0; i < rising.size(); ++i) rising[i].state = states[i];
  rising[0].wait_status = W_EXITCODE(job_given_up, 0);
  for (std::size_t i = 0; i < rising.size(); ++i)
    for (std::size_t k = 0; k < rising.size(); ++k)
      EXPECT_EQ(rising[i].TellsMoreThan(rising[k]), i > k) << states[i] << " and " << states[k];
}

using JobFiles = ScratchTest;

TEST_F(JobFiles, NamesInAScriptAreNeverCode) {
  const std::string hostile = "a'b $(touch hit) `touch hit`\n;touch hit";
  std::filesystem::create_directories(Path("work"));
  JobPlan plan;
  plan.work_dir = Path("work");
  plan.folder = Path("jobs/" + hostile);
  plan.output_file = hostile;
  plan.locale = hostile;
  plan.supervisor =
      Write("supervisor", "#!/bin/sh\nprintf '%s|' \"$LC_ALL\" \"$@\" >>\"$OUT\"\n[ \"${8}\" != fails ]\n");
  std::filesystem::permissions(plan.supervisor, std::filesystem::perms::owner_all);
  plan.steps = {{0, {hostile, "$1"}}, {2, {"fails"}}, {4, {"never"}}};
  setenv("OUT", Path("out").c_str(), 1);
  const JobFolder folder(plan.folder);
  ASSERT_TRUE(folder.Make(JobScript(plan)));
  const auto run = [&] {
    return WEXITSTATUS(std::system(("sh '" + Write("s", JobScript(plan)) + "'").c_str()));
  };
  EXPECT_EQ(run(), 1);
  EXPECT_EQ(run(), job_given_up) << "submitted twice";
  const std::string locale = hostile + "|--outcome|" + plan.folder;
  const std::string expected = locale + "/0|--lease|" + folder.Lease() + "|--output|" + hostile + "|--|" +
                               hostile + "|$1|" + locale + "/2|";
  EXPECT_EQ(Read("out").substr(0, expected.size()), expected);
  EXPECT_EQ(Read("out").find("never"), std::string::npos);
  EXPECT_FALSE(Exists("work/hit") || Exists("hit"));
  EXPECT_NE(folder.Node(), "");
  std::filesystem::remove(plan.folder + "/taken");
  folder.GiveUp();
  EXPECT_EQ(run(), job_given_up);
  folder.Remove();
  EXPECT_EQ(run(), job_without_folder);
}

TEST_F(JobFiles, AJournalTellsWhatTheHostDidNotSee) {
  JobNote note;
  note.run.name = "5_\xff";
  note.run.results_folder = Path("out");
  note.run.results = {"5_\xff.par"};
  note.steps = {0, 2};
  for (const char* job : {"a", "b", "c"}) {
    JobJournal journal(Path("jobs.jsonl"));
    note.job = job;
    EXPECT_TRUE(journal.Submitting(note));
    if (note.job != "b") journal.Submitted(job, "7");
    if (note.job == "a") journal.Ended(job);
  }
  std::ofstream(Path("jobs.jsonl"), std::ios::app) << "{\"job\":\"c\",\"en";
  const std::vector<JobNote> notes = JobJournal::Read(Path("jobs.jsonl"));
  ASSERT_EQ(notes.size(), 3u);
  EXPECT_TRUE(notes[0].ended && !notes[1].ended && !notes[2].ended);
  EXPECT_EQ(notes[1].id + notes[2].id, "7");
  EXPECT_EQ(notes[2].run.name + notes[2].run.results[0],
            "5_\xff"
            "5_\xff.par");
  EXPECT_EQ(notes[2].steps, note.steps);
}
