#include "observe/run_lines.h"

#include <cstdio>
#include <deque>
#include <fstream>

namespace vostrand {
namespace {

constexpr std::size_t shown_lines = 10;

std::string StatusText(int status) {
  if (status == 0) return "finished";
  if (status == cancelled_status) return "cancelled";
  return "failed with " + std::to_string(status);
}

}  // namespace

void RunLines::On(const Event& event) {
  switch (event.kind) {
    case Event::Kind::step_finished:
      elapsed_[event.run] += event.outcome.elapsed_seconds;
      if (!event.message.empty())
        std::fprintf(stderr, "vostrand: run %s: %s\n", plan_[event.run].name.c_str(), event.message.c_str());
      return;
    case Event::Kind::run_finished:
      std::fprintf(stderr, "[%zu/%zu] %s %s after %.1f s\n", ++ended_, plan_.size(),
                   plan_[event.run].name.c_str(), StatusText(event.status).c_str(), elapsed_[event.run]);
      if (event.status != 0 && event.status != cancelled_status) ShowEndOf(plan_[event.run].output_file);
      return;
    default:
      return;
  }
}

void RunLines::ShowEndOf(const std::string& output_file) const {
  std::ifstream file(output_file);
  std::deque<std::string> last;
  for (std::string line; std::getline(file, line);) {
    last.push_back(line);
    if (last.size() > shown_lines) last.pop_front();
  }
  for (const std::string& line : last) std::fprintf(stderr, "    %s\n", line.c_str());
  if (!last.empty()) std::fprintf(stderr, "    (%s)\n", output_file.c_str());
}

}  // namespace vostrand
