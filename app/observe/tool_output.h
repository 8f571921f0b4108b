#pragma once

#include <QFile>
#include <QTimer>
#include <functional>
#include <list>
#include <string>
#include <vector>

#include "execute/events.h"
#include "execute/run_plan.h"

namespace vostrand {

/// Hands on what the tools print while they run, as lines led by their run: "5_1 | text". A file is read in
/// pieces, other things come in between; what is left when the sweep ends is read at once. The output of two
/// tries of a run does not mix.
class ToolOutput final : public Observer {
 public:
  /// `plan` outlives this object; `show` takes whole lines.
  ToolOutput(const std::vector<PlannedRun>& plan, std::function<void(const std::string& lines)> show);

  void On(const Event& event) override;

 private:
  // The output of one try of a step.
  struct Followed {
    std::size_t run = 0;
    qint64 offset = 0;  // Where in the file it begins.
    bool ended = false;
    QFile file;
    std::string line;  // Whose end has not come yet.
  };

  bool Read(Followed& followed);
  void ReadAll();

  const std::vector<PlannedRun>& plan_;
  std::function<void(const std::string&)> show_;
  std::list<Followed> followed_;  // In the order of their steps' starts.
  QTimer timer_;
};

/// The last ten lines of a file, as shown. Only its end is read: a tool may have written gigabytes.
std::vector<std::string> LastLines(const std::string& path);

}  // namespace vostrand
