#pragma once

#include <QElapsedTimer>
#include <QTimer>
#include <optional>
#include <string>
#include <vector>

#include "execute/run_plan.h"
#include "observe/progress_text.h"
#include "observe/tool_output.h"
#include "options/host_options.h"

namespace vostrand {

struct ProgressOptions {
  bool quiet = false;    ///< Only messages and failed runs.
  bool verbose = false;  ///< What the tools print, too.
  std::size_t jobs = 1;  ///< Most runs at once.
  int file = 2;          ///< Descriptor that is written to.
};

ProgressOptions ProgressOptionsOf(const HostOptions& options);

/// Shows a sweep on standard error: a line for each run that has ended and, on a terminal, below them a block
/// that is redrawn in place. While it lives everything else for standard error goes through Print.
class Progress final : public Observer {
 public:
  /// `plan` outlives this object. Needs the event loop to go on between events.
  Progress(const std::vector<PlannedRun>& plan, const ProgressOptions& options);
  /// Leaves the terminal without the block.
  ~Progress() override;
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;

  void On(const Event& event) override;
  /// Shows the text above the block, on a terminal within a tenth of a second and once its line has ended.
  void Print(const std::string& text);

 private:
  void Tell(const Event& event, double since);
  void DrawSoon();
  void Draw();
  Screen ScreenNow() const;
  double Now() const;

  const std::vector<PlannedRun>& plan_;
  const ProgressOptions options_;
  const bool redraws_;
  const bool colour_;
  SweepState state_;
  std::optional<ToolOutput> tool_output_;
  double last_event_seconds_ = 0;
  QElapsedTimer since_event_;
  QElapsedTimer since_frame_;
  bool over_ = true;                // No sweep goes on: there is no block.
  std::string above_;               // Not yet shown.
  std::vector<std::string> drawn_;  // The block on the terminal; the cursor stands below it.
  QTimer timer_;                    // The next frame, or the next sign of life.
};

}  // namespace vostrand
