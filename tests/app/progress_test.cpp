// Events in, text and screens out: what a user sees of a sweep.
#include "observe/progress.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <pty.h>

#include <QCoreApplication>
#include <clocale>

#include "common/scratch.h"
#include "observe/eta.h"

using namespace vostrand;
using Kind = Event::Kind;

namespace {

Event At(double seconds, Kind kind, std::size_t run = 0, std::size_t step = 0, int status = 0) {
  Event event(kind, run);
  event.at_seconds = seconds;
  event.step = step;
  event.status = status;
  if (kind == Kind::step_finished) event.outcome.exit_code = status;
  return event;
}

Event Finished(double seconds, std::size_t run, std::optional<bool> met, std::optional<float> score) {
  Event event = At(seconds, Kind::run_finished, run);
  event.verdict = {met, score};
  return event;
}

// Two jobs, six runs of par (10 s) and sorv (2 s): two have finished, one has failed, two run, one waits.
SweepState Midway() {
  SweepState state({"5_1", "5_2", "5_3", "5_4", "n\xC3\xA4m\x07\xFF", "5_6"}, 2, 2, {"par", "sorv"});
  for (std::size_t run = 0; run < 2; ++run) {
    state.On(At(0, Kind::run_started, run));
    state.On(At(0, Kind::step_started, run, 0));
    state.On(At(10, Kind::step_finished, run, 0));
    state.On(At(10, Kind::step_started, run, 1));
    state.On(At(12, Kind::step_finished, run, 1));
    state.On(Finished(12, run, run == 1, run == 1 ? 1.3334F : -7.F));
  }
  for (std::size_t run = 2; run < 5; ++run) {
    state.On(At(12, Kind::run_started, run));
    state.On(At(12, Kind::step_started, run, 0));
  }
  state.On(At(40, Kind::step_finished, 2, 0, 9));
  state.On(At(40, Kind::run_finished, 2, 0, 9));
  Event once_more = At(66, Kind::step_started, 4, 0);
  once_more.try_number = 2;
  state.On(once_more);
  return state;
}

Screen Wide(std::size_t width, std::size_t height = 24) {
  return {width, height, false};
}

// Lets the event loop run.
void Spin(int ms) {
  QElapsedTimer timer;
  for (timer.start(); timer.elapsed() < ms;) QCoreApplication::processEvents();
  QCoreApplication::processEvents();  // What fell due while this test had to wait for a processor.
}

// The little of a terminal that redrawing needs. Text behind the last column is a fault.
struct Terminal {
  explicit Terminal(unsigned short columns) {
    openpty(&master, &slave, nullptr, nullptr, nullptr);
    fcntl(master, F_SETFL, O_NONBLOCK);
    Resize(columns);
  }
  ~Terminal() { close(master), close(slave); }
  void Resize(unsigned short columns) {
    width = columns;
    const winsize size{10, columns, 0, 0};
    ioctl(master, TIOCSWINSZ, &size);
  }
  // After the next frame must have come.
  std::string Text() {
    Spin(150);
    char c;
    while (read(master, &c, 1) == 1) Take(c);
    std::string text;
    for (const std::string& line : rows) text += line + "\n";
    return text.substr(0, text.find_last_not_of('\n') + 1);
  }
  void Take(char c) {
    if (c == '\x1b' || !escape.empty()) {
      escape += c;
      if (!isalpha(c)) return;
      if (c == 'A') row -= std::stoul(escape.substr(2));
      if (c == 'J') rows.resize(row);
      if (c == 'J' || c == 'K') rows.resize(std::max(rows.size(), row + 1)), rows[row].resize(column);
      escape.clear();
    } else if (c == '\r' || c == '\n') {
      column = 0;
      row += c == '\n';
    } else {
      rows.resize(std::max(rows.size(), row + 1));
      EXPECT_LT(column, width) << rows[row];
      rows[row].resize(std::max(rows[row].size(), column + 1));
      rows[row][column++] = c;
    }
  }
  int master = -1, slave = -1;
  std::size_t width = 0, row = 0, column = 0;
  std::string escape;
  std::vector<std::string> rows;
};

class ProgressTest : public ScratchTest {
 protected:
  ProgressTest() {
    setenv("TERM", "xterm", 1);
    for (const char* name : {"5_1", "5_2", "5_3"}) {
      plan.emplace_back().name = name;
      plan.back().steps = {{{"/tools/par"}}};
      plan.back().output_file = Path(std::string(name) + ".out");
    }
  }
  ProgressOptions On(const Terminal& terminal, bool verbose = false) {
    ProgressOptions options;
    options.file = terminal.slave;
    options.verbose = verbose;
    return options;
  }
  int argc = 0;
  QCoreApplication app{argc, nullptr};
  std::vector<PlannedRun> plan;
};

}  // namespace

TEST(ProgressText, FollowsTheSweepAndForetellsItsEnd) {
  SweepState state = Midway();
  EXPECT_EQ(SecondsLeft(state, 72), 14)
      << "behind the overdue run's sorv the last run, though the other ends later";
  state.On(At(72, Kind::run_started, 9));
  state.On(At(72, Kind::step_started, 3, std::size_t{1} << 40));
  EXPECT_EQ(state.Waiting(), 1U) << "events of another plan change nothing";
  state.On(At(72, Kind::stopping));
  EXPECT_EQ(SecondsLeft(state, 72), 6) << "only what runs is waited for";
  state.On(Finished(73, 3, true, 1.3334F));
  EXPECT_EQ(state.best, 1U);
  state.On(Finished(73, 0, true, 1.3334F));
  EXPECT_EQ(state.best, 0U) << "of equals the first in the plan";
  EXPECT_FALSE(SecondsLeft(SweepState({"a"}, 1, 1), 0));
}

TEST(ProgressText, FitsTheScreen) {
  std::setlocale(LC_CTYPE, "C.UTF-8");
  const SweepState state = Midway();
  EXPECT_EQ(ProgressText(state, 72, Wide(90)),
            (std::vector<std::string>{
                "5_4    1/2 par  1:00", "näm ?  1/2 par  1:00  try 2",
                "2 finished, 2 running, 1 failed, 1 waiting | best 5_2 1.333 | 1:12, about 0:14 left",
                "1 of 2 runs met timing; one more run improves the best by 4.17 on average"}));
  EXPECT_EQ(ProgressText(state, 72, Wide(40, 3)),
            (std::vector<std::string>{"and 2 more", "2 finished, 1 failed | about 0:14 left",
                                      "1 of 2 runs met timing; one more run im…"}));
  EXPECT_EQ(ProgressText(state, 3600, Wide(20)),
            (std::vector<std::string>{"5_4    1/2 par", "näm ?  1/2 par", "2 finished, 1 failed",
                                      "1 of 2 runs met tim…"}));
  EXPECT_EQ(SignOfLife(state, 720), "12 min: 2 of 6 runs finished, 2 running, 1 failed, best 5_2 1.333");
  EXPECT_EQ(Shown("日本e\xCC\x81", 5), "日本e\xCC\x81") << "cells, not characters or bytes";
  EXPECT_EQ(Shown("日本語", 5), "日本…");
  std::setlocale(LC_CTYPE, "C");
  EXPECT_EQ(Shown("na\xC3\xAFve name", 9), "na??ve...");
}

TEST_F(ProgressTest, RedrawsInPlaceAndLeavesWhatIsAboveAlone) {
  Terminal terminal(60);
  setenv("NO_COLOR", "1", 1);
  std::optional<Progress> progress(std::in_place, plan, On(terminal));
  progress->On(At(0, Kind::sweep_started));
  for (std::size_t run = 0; run < 2; ++run) {
    progress->On(At(0, Kind::run_started, run));
    progress->On(At(0, Kind::step_started, run));
  }
  Event step = At(0, Kind::step_started);
  step.try_number = 2;
  progress->On(step);
  EXPECT_TRUE(terminal.Text().starts_with("5_1  1/1 par  0:00  try 2\n"));
  progress->On(At(0, Kind::step_started));  // A shorter line, nothing else.
  EXPECT_EQ(terminal.Text(),
            "5_1  1/1 par  0:00\n5_2  1/1 par  0:00\n0 finished, 2 running, 1 waiting | 0:00");
  progress->Print("warning: in two ");
  progress->Print("pieces\n");
  progress->On(At(11.2, Kind::step_finished, 1));
  progress->On(Finished(11.2, 1, true, 1.3334F));
  const std::string above =
      "warning: in two pieces\n[1/3] 5_2 finished after 11.2 s, score 1.333, timing met\n";
  EXPECT_EQ(terminal.Text(),
            above + "5_1  1/1 par  0:11\n1 finished | best 5_2 1.333 | 0:11, about 0:11 left");
  terminal.Resize(24);
  progress->On(At(12, Kind::stopping));
  terminal.width = 60;  // The line about the stop is the terminal's to wrap.
  const std::string stop = "vostrand: no further run is started: \n";
  EXPECT_EQ(terminal.Text(), above + stop + "5_1  1/1 par  0:12\n1 finished");
  progress->On(At(13, Kind::run_finished, 0, 0, cancelled_status));
  progress->On(At(13, Kind::sweep_finished));
  progress.reset();
  EXPECT_EQ(terminal.Text(), above + stop + "[2/3] 5_1 cancelled after 13.0 s");
}

TEST_F(ProgressTest, ShowsEveryLineOfTheToolsOnceInAFileToo) {
  ProgressOptions options;
  options.verbose = true;
  options.file = open(Path("err").c_str(), O_WRONLY | O_CREAT, 0600);
  Progress progress(plan, options);
  progress.On(At(0, Kind::sweep_started));
  progress.On(At(0, Kind::run_started));
  progress.On(At(0, Kind::step_started));
  Write("5_1.out", "one\ntw");
  Spin(400);
  EXPECT_EQ(Read("err"), "5_1 | one\n");
  Write("5_1.out", "one\ntwo\n\x1b[31m three");
  progress.On(At(1, Kind::step_finished, 0, 0, 9));
  std::filesystem::remove(Path("5_1.out"));
  progress.On(At(1, Kind::step_started));
  Write("5_1.out", std::string(300000, 'x') + "\nagain\n");
  progress.On(At(70, Kind::step_finished, 0, 0, 9));
  progress.On(At(70, Kind::run_finished, 0, 0, 9));
  progress.On(At(70, Kind::sweep_finished));
  close(options.file);
  const std::string text = Read("err");
  EXPECT_TRUE(text.starts_with("5_1 | one\n5_1 | two\n5_1 |  [31m three\n5_1 | xxx")) << text.substr(0, 99);
  EXPECT_GE(std::count(text.begin(), text.end(), 'x'), 300000);
  EXPECT_TRUE(text.ends_with("x\n5_1 | again\n")) << text.substr(text.size() - 99);
  EXPECT_NE(text.find("\n[1/3] 5_1 failed with 9 after 1:10\n    "), std::string::npos);
}
