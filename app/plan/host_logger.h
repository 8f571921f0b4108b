#pragma once

#include <functional>
#include <iosfwd>
#include <string>
#include <utility>

#include "host/logger.h"

namespace vostrand {

/// What the library says: errors and warnings go to standard error at once, status lines where they are asked
/// for.
class HostLogger final : public orlo::kelpn::ILogger {
 public:
  explicit HostLogger(bool show_status) : show_status_(show_status) {}

  void onStdout(const char* text) override;
  void onStderr(const char* text) override;

  /// Shows the status lines that were held back, as when planning ended without a plan.
  void ShowHeldBack(std::ostream& stream) const;
  /// While set, what is shown goes through `print` instead of standard error: a display stands there.
  void PrintThrough(std::function<void(const std::string& text)> print) { print_ = std::move(print); }
  /// The status lines so far.
  const std::string& Status() const { return status_; }
  /// While muted nothing is shown: the host works something out a second time.
  void Mute(bool muted) { muted_ = muted; }
  /// True when a status line that begins with `text` has come.
  bool HasHeard(const std::string& text) const;

 private:
  void Show(const char* text);

  bool show_status_;
  bool muted_ = false;
  std::string status_;
  std::function<void(const std::string& text)> print_;
};

}  // namespace vostrand
