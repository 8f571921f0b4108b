#include "observe/run_lines.h"

#include <algorithm>
#include <cstdio>
#include <deque>
#include <fstream>

namespace vostrand {
namespace {

constexpr std::size_t shown_lines = 10;
constexpr std::size_t longest_line = 200;
constexpr std::streamoff end_of_file = 1 << 14;

std::string StatusText(int status) {
  if (status == 0) return "finished";
  if (status == cancelled_status) return "cancelled";
  return "failed with " + std::to_string(status);
}

// What a terminal can show of a tool's line.
std::string Shown(const std::string& line) {
  std::string text = line.substr(0, longest_line);
  for (char& c : text)
    if (static_cast<unsigned char>(c) < ' ' || c == 127) c = ' ';
  return text;
}

// The file's last lines. Only its end is read: a tool may have written gigabytes.
std::vector<std::string> LastLines(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  file.seekg(0, std::ios::end);
  const auto size = static_cast<std::streamoff>(file.tellg());
  file.seekg(std::max<std::streamoff>(0, size - end_of_file));
  std::deque<std::string> last;
  for (std::string line; std::getline(file, line);) {
    last.push_back(Shown(line));
    if (last.size() > shown_lines) last.pop_front();
  }
  return {last.begin(), last.end()};
}

}  // namespace

void RunLines::On(const Event& event) {
  switch (event.kind) {
    case Event::Kind::step_finished:
      elapsed_[event.run] += event.outcome.elapsed_seconds;
      Say(event.run, event.outcome.message);
      return;
    case Event::Kind::run_finished:
      Say(event.run, event.message);
      std::fprintf(stderr, "[%zu/%zu] %s %s after %.1f s\n", ++ended_, plan_.size(),
                   plan_[event.run].name.c_str(), StatusText(event.status).c_str(), elapsed_[event.run]);
      if (event.status != 0 && event.status != cancelled_status) ShowEndOf(plan_[event.run].output_file);
      return;
    default:
      return;
  }
}

void RunLines::Say(std::size_t run, const std::string& message) const {
  if (!message.empty())
    std::fprintf(stderr, "vostrand: run %s: %s\n", plan_[run].name.c_str(), message.c_str());
}

void RunLines::ShowEndOf(const std::string& output_file) const {
  const std::vector<std::string> lines = LastLines(output_file);
  for (const std::string& line : lines) std::fprintf(stderr, "    %s\n", line.c_str());
  if (!lines.empty()) std::fprintf(stderr, "    (%s)\n", output_file.c_str());
}

}  // namespace vostrand
