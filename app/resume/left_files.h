#pragma once

#include <optional>
#include <string>
#include <vector>

#include "execute/events.h"
#include "execute/run_plan.h"
#include "resume/kept_run.h"

namespace vostrand {

/// A shared file system may go on saying for a minute that a file is not there, or as it was; opening its
/// folder makes it ask again. What is no folder is left alone.
void AskAgain(const std::string& folder);

/// A file as it lies there, a link as a link; nothing when there is none or errno says why it cannot be told.
std::optional<KeptFile> LookAt(const std::string& path, const std::string& name);

/// The files and links at `name` in the folder, which may be a folder itself; their names begin with `name`.
/// Nothing when not all of them can be told.
std::optional<std::vector<std::string>> FilesAt(const std::string& folder, const std::string& name);

/// Notes what each run has left when it ends, so that nothing that is written later, by a process that nobody
/// could reach, passes for its result.
class LeftFiles final : public Observer {
 public:
  /// `plan` outlives this object.
  explicit LeftFiles(const std::vector<PlannedRun>& plan) : plan_(plan), left_(plan.size()) {}

  void On(const Event& event) override;
  /// The finished runs whose files are not what they were, as far as the disk tells.
  std::vector<std::size_t> Changed() const;

 private:
  std::optional<std::vector<KeptFile>> Look(std::size_t run) const;

  const std::vector<PlannedRun>& plan_;
  std::vector<std::optional<std::vector<KeptFile>>> left_;
};

}  // namespace vostrand
