#include "observe/tool_output.h"

#include <fcntl.h>

#include <algorithm>
#include <chrono>
#include <deque>
#include <filesystem>
#include <fstream>
#include <set>

#include "observe/harmless.h"
#include "observe/progress_text.h"

namespace vostrand {
namespace {

constexpr auto pause = std::chrono::milliseconds(250);
constexpr auto pause_behind = std::chrono::milliseconds(20);  // When a tool is faster than we read.
constexpr qint64 piece = 1 << 17;
constexpr int last_rounds = 8;  // Of pieces when all is over: nobody waits for gigabytes on a terminal.
constexpr std::size_t longest_shown = 1 << 16;  // A longer line is shown in pieces of about so many bytes.
constexpr std::size_t last_lines = 10;
constexpr std::size_t longest_last_line = 200;
constexpr std::streamoff end_of_file = 1 << 14;

}  // namespace

ToolOutput::ToolOutput(const std::vector<PlannedRun>& plan, std::function<void(const std::string&)> show)
    : plan_(plan), show_(std::move(show)) {
  timer_.setSingleShot(true);
  QObject::connect(&timer_, &QTimer::timeout, &timer_, [this] { ReadAll(); });
}

void ToolOutput::On(const Event& event) {
  if (event.kind == Event::Kind::step_started && !event.callback) {
    Followed& followed = followed_.emplace_back();
    followed.run = event.run;
    std::error_code none;
    const auto size = std::filesystem::file_size(plan_[event.run].output_file, none);
    followed.offset = none ? 0 : static_cast<qint64>(size);
    if (!timer_.isActive()) timer_.start(pause);
  } else if (event.kind == Event::Kind::step_finished) {
    for (Followed& followed : followed_) followed.ended = followed.ended || followed.run == event.run;
    ReadAll();
  } else if (event.kind == Event::Kind::sweep_finished) {
    for (int round = 0; round < last_rounds && !followed_.empty(); ++round) ReadAll();
    for (const Followed& followed : followed_)
      show_(Shown(plan_[followed.run].name) + " | ... the rest is in " +
            HarmlessLine(plan_[followed.run].output_file) + "\n");
    followed_.clear();
    timer_.stop();
  }
}

void ToolOutput::ReadAll() {
  bool behind = false;
  std::set<std::size_t> busy;  // Runs with an earlier try that is not shown whole.
  for (auto its = followed_.begin(); its != followed_.end();) {
    Followed& followed = *its;
    const bool more = busy.count(followed.run) > 0 || Read(followed);
    behind = behind || more;
    if (more) busy.insert(followed.run);
    its = followed.ended && !more ? followed_.erase(its) : std::next(its);
  }
  if (followed_.empty())
    timer_.stop();
  else
    timer_.start(behind ? pause_behind : pause);
}

// Shows the next piece; false when that was all for now.
bool ToolOutput::Read(Followed& followed) {
  QFile& file = followed.file;
  if (!file.isOpen()) {
    const int opened = open(plan_[followed.run].output_file.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (opened < 0) return false;
    file.open(opened, QIODevice::ReadOnly | QIODevice::Unbuffered, QFileDevice::AutoCloseHandle);
    file.seek(followed.offset);
  }
  const QByteArray bytes = file.read(piece);
  const bool more = bytes.size() == piece;
  followed.line.append(bytes.constData(), static_cast<std::size_t>(bytes.size()));
  const std::string start = Shown(plan_[followed.run].name) + " | ";
  std::string lines;
  std::size_t begin = 0;
  const auto take = [&](std::size_t end) {
    lines += start + Shown(std::string_view(followed.line).substr(begin, end - begin)) + "\n";
    begin = end;
  };
  for (std::size_t end; (end = followed.line.find('\n', begin)) != std::string::npos; ++begin) take(end);
  if (followed.line.size() - begin > longest_shown ||
      (followed.ended && !more && begin < followed.line.size()))
    take(followed.line.size());
  followed.line.erase(0, begin);
  if (!lines.empty()) show_(lines);
  return more;
}

std::vector<std::string> LastLines(const std::string& path) {
  std::error_code error;
  if (!std::filesystem::is_regular_file(path, error)) return {};  // A pipe would be waited for.
  std::ifstream file(path, std::ios::binary);
  file.seekg(0, std::ios::end);
  const auto size = static_cast<std::streamoff>(file.tellg());
  file.seekg(std::max<std::streamoff>(0, size - end_of_file));
  std::deque<std::string> last;
  for (std::string line; std::getline(file, line);) {
    last.push_back(Shown(line, longest_last_line));
    if (last.size() > last_lines) last.pop_front();
  }
  return {last.begin(), last.end()};
}

}  // namespace vostrand
