#include "plan/host_logger.h"

#include <iostream>

#include "observe/harmless.h"

namespace vostrand {

void HostLogger::Show(const char* text) {
  const std::string shown = Harmless(text);
  if (print_)
    print_(shown);
  else
    std::cerr << shown;
}

void HostLogger::onStdout(const char* text) {
  if (muted_) return;
  status_ += text;
  if (show_status_) Show(text);
}

void HostLogger::onStderr(const char* text) {
  if (!muted_) Show(text);
}

void HostLogger::ShowHeldBack(std::ostream& stream) const {
  if (show_status_) return;
  stream << Harmless(status_);
  if (!status_.empty() && status_.back() != '\n') stream << '\n';
}

bool HostLogger::HasHeard(const std::string& text) const {
  return status_.starts_with(text) || status_.find('\n' + text) != std::string::npos;
}

}  // namespace vostrand
