#pragma once

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "records/event_json.h"
#include "resume/disk_sync.h"
#include "resume/kept_run.h"

namespace vostrand {

/// Writes the journal: each event a line, as in the event log; the lines of finished and restored runs hold
/// all that is needed to take them over, and are brought to the disk at once, beside what goes on. The
/// journal of the sweep before stays until the first line that is not about a restored run, so that a crash
/// loses neither.
class Journal final : public Observer {
 public:
  /// `keep` is asked about every run that has finished or was restored.
  Journal(std::string path, const EventHeader& header, std::function<KeptRun(std::size_t run)> keep);
  ~Journal() override;
  Journal(const Journal&) = delete;
  Journal& operator=(const Journal&) = delete;

  void On(const Event& event) override;
  /// What went wrong, once; empty otherwise. The sweep goes on, but cannot be resumed from here.
  /// Waits for the disk.
  std::string Error();

 private:
  void Write(const QByteArray& line, bool to_disk);
  void ReplaceEarlier();
  void Fail(const std::string& what, int error);

  std::string path_;
  std::vector<std::string> names_;
  std::function<KeptRun(std::size_t run)> keep_;
  int file_ = -1;
  std::unique_ptr<DiskSync> disk_;
  bool in_place_ = false;
  std::string error_;
};

/// Appends a run that finished without its sweep. False when that fails.
bool AppendKeptRun(const std::string& path, const KeptRun& kept);

/// The finished runs of a journal by name, the last line about a run holding. Lines that are torn or unknown
/// are skipped; a file that is not there has none.
std::map<std::string, KeptRun> ReadKeptRuns(const std::string& path);

}  // namespace vostrand
