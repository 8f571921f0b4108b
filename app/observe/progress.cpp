#include "observe/progress.h"

#include <poll.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <filesystem>

#include "observe/harmless.h"

namespace vostrand {
namespace {

constexpr qint64 frame_ms = 100;
// When nothing happens but time: a timer of a whole second, a little off, would leave out seconds.
constexpr auto next_frame = std::chrono::milliseconds(500);
constexpr auto next_sign_of_life = std::chrono::minutes(1);

std::string Variable(const char* name) {
  const char* const value = std::getenv(name);
  return value ? value : "";
}

bool CanRedraw(int file) {
  const std::string terminal = Variable("TERM");
  return isatty(file) && !terminal.empty() && terminal != "dumb";
}

constexpr std::size_t safe_piece = 4096;  // What can be written without waiting where anything can.
constexpr int patience_ms = 500;

// A reader that takes nothing must not hold up the sweep: what it has not taken in time is not shown.
void WriteAll(int file, std::string_view bytes) {
  while (!bytes.empty()) {
    pollfd writable{file, POLLOUT, 0};
    if (poll(&writable, 1, patience_ms) == 0) return;
    const ssize_t written = write(file, bytes.data(), std::min(bytes.size(), safe_piece));
    if (written >= 0)
      bytes.remove_prefix(static_cast<std::size_t>(written));
    else if (errno != EINTR && errno != EAGAIN)
      return;
  }
}

SweepState StateFor(const std::vector<PlannedRun>& plan, std::size_t jobs) {
  std::vector<std::string> names;
  std::vector<std::string> programs;
  std::size_t steps = 0;
  for (const PlannedRun& run : plan) {
    names.push_back(run.name);
    steps = std::max(steps, run.steps.size());
    for (std::size_t i = programs.size(); i < run.steps.size(); ++i)
      programs.push_back(run.steps[i].IsCallback()
                             ? "check"
                             : std::filesystem::path(run.steps[i].words[0]).filename().string());
  }
  return {std::move(names), steps, jobs, std::move(programs)};
}

}  // namespace

ProgressOptions ProgressOptionsOf(const HostOptions& options) {
  ProgressOptions result;
  result.quiet = options.quiet;
  result.verbose = options.verbose;
  result.jobs = static_cast<std::size_t>(std::max(options.jobs, 1));
  return result;
}

Progress::Progress(const std::vector<PlannedRun>& plan, const ProgressOptions& options)
    : plan_(plan),
      options_(options),
      redraws_(!options.quiet && CanRedraw(options.file)),
      colour_(CanRedraw(options.file) && Variable("NO_COLOR").empty()),
      state_(StateFor(plan, options.jobs)) {
  if (options.verbose) tool_output_.emplace(plan, [this](const std::string& lines) { Print(lines); });
  timer_.setSingleShot(true);
  QObject::connect(&timer_, &QTimer::timeout, &timer_, [this] {
    if (redraws_) return Draw();
    timer_.start(next_sign_of_life);
    Print(SignOfLife(state_, Now()) + "\n");
  });
}

Progress::~Progress() {
  over_ = true;
  if (!above_.empty() && above_.back() != '\n') above_ += '\n';
  Draw();
}

double Progress::Now() const {
  return last_event_seconds_ + static_cast<double>(since_event_.elapsed()) / 1000;
}

void Progress::On(const Event& event) {
  if (tool_output_) tool_output_->On(event);
  last_event_seconds_ = event.at_seconds;
  since_event_.start();
  double since = event.at_seconds;
  for (const SweepState::Running& run : state_.running)
    if (run.run == event.run) since = run.since;
  state_.On(event);
  over_ = event.kind == Event::Kind::sweep_finished;
  Tell(event, since);
  if (redraws_)
    DrawSoon();
  else if (over_)
    timer_.stop();
  else if (!timer_.isActive() && !options_.quiet)
    timer_.start(next_sign_of_life);
}

void Progress::Tell(const Event& event, double since) {
  const bool failed = event.status != 0 && event.status != cancelled_status;
  const bool ended = event.kind == Event::Kind::run_finished;
  const std::string said = ended ? event.message : event.outcome.message;
  if ((ended || event.kind == Event::Kind::step_finished) && !said.empty())
    Print("vostrand: run " + Shown(plan_[event.run].name) + ": " + HarmlessLine(said) + "\n");
  if (event.kind == Event::Kind::stopping && !options_.quiet)
    Print("vostrand: no further run is started: " + HarmlessLine(event.message) + "\n");
  if (!ended && event.kind != Event::Kind::run_restored) return;
  if (options_.quiet && !failed) return;

  std::string text = EndedText(plan_[event.run].name, event, since, colour_) + "\n";
  if (ended) text = "[" + std::to_string(state_.Ended()) + "/" + std::to_string(plan_.size()) + "] " + text;
  const std::string& file = plan_[event.run].output_file;
  const std::vector<std::string> last = failed ? LastLines(file) : std::vector<std::string>();
  for (const std::string& line : last) text += "    " + line + "\n";
  if (!last.empty()) text += "    (" + HarmlessLine(file) + ")\n";
  Print(text);
}

void Progress::Print(const std::string& text) {
  above_ += text;
  if (redraws_) return DrawSoon();
  WriteAll(options_.file, above_);
  above_.clear();
  if (timer_.isActive()) timer_.start(next_sign_of_life);
}

// Not at once while a sweep goes on: where a run ends, the next mostly starts in the same turn of the loop.
void Progress::DrawSoon() {
  if (over_) return Draw();
  const qint64 elapsed = since_frame_.isValid() ? since_frame_.elapsed() : frame_ms;
  const qint64 due = std::max<qint64>(0, frame_ms - elapsed);
  if (!timer_.isActive() || timer_.remainingTime() > due) timer_.start(std::chrono::milliseconds(due));
}

Screen Progress::ScreenNow() const {
  winsize size{};
  ioctl(options_.file, TIOCGWINSZ, &size);
  Screen screen;
  // The last column stays free: behind it terminals differ in where the next character goes.
  screen.width = (size.ws_col < 2 ? 80u : size.ws_col) - 1u;
  screen.height = size.ws_row == 0 ? 24 : size.ws_row;
  --screen.height;  // The cursor stands below the block.
  screen.colour = colour_;
  return screen;
}

// One frame: back up to the block's start, what is new above it, the block. Never further up than the block
// has lines, so that nothing else is lost when a narrower terminal has wrapped them.
void Progress::Draw() {
  if (!redraws_) return;
  const std::size_t whole_lines = above_.rfind('\n') + 1;
  const std::vector<std::string> block =
      over_ ? std::vector<std::string>() : ProgressText(state_, Now(), ScreenNow());
  if (whole_lines > 0 || block != drawn_) {
    std::string frame;
    if (!drawn_.empty()) frame = "\r\x1b[" + std::to_string(drawn_.size()) + "A";
    if (whole_lines > 0 || block.size() < drawn_.size()) frame += "\x1b[J";
    frame += above_.substr(0, whole_lines);
    for (const std::string& line : block) frame += line + "\x1b[K\n";
    WriteAll(options_.file, frame);
    above_.erase(0, whole_lines);
    drawn_ = block;
    since_frame_.start();
  }
  if (over_)
    timer_.stop();
  else
    timer_.start(next_frame);
}

}  // namespace vostrand
