#include "resume/run_identity.h"

#include <QCryptographicHash>
#include <algorithm>
#include <filesystem>
#include <fstream>
#include <sstream>

namespace vostrand {
namespace {

class Identity {
 public:
  // With its length in front, so that no two sequences of texts look alike.
  void Add(const std::string& text) {
    const std::string length = std::to_string(text.size()) + ":";
    hash_.addData(QByteArrayView(length));
    hash_.addData(QByteArrayView(text));
  }
  void Add(std::int64_t number) { Add(std::to_string(number)); }
  std::string Text() const { return hash_.result().toHex().toStdString(); }

 private:
  QCryptographicHash hash_{QCryptographicHash::Sha256};
};

std::string ContentOf(const std::filesystem::path& path) {
  std::ostringstream text;
  text << std::ifstream(path, std::ios::binary).rdbuf();
  return text.str();
}

// Its own planned par command file: the word behind "-f".
std::string ParCommands(const PlannedStep& step, const std::string& work_dir) {
  const auto option = std::find(step.words.begin(), step.words.end(), "-f");
  if (option == step.words.end() || option + 1 == step.words.end()) return {};
  return ContentOf(std::filesystem::path(work_dir) / *(option + 1));
}

}  // namespace

std::string RunIdentity(const PlannedRun& run, const std::string& work_dir,
                        const std::vector<FileRecord>& inputs, const std::vector<FileRecord>& tools) {
  Identity identity;
  identity.Add(run.name);
  for (const PlannedStep& step : run.steps) {
    identity.Add(static_cast<std::int64_t>(step.words.size()));
    for (const std::string& word : step.words) identity.Add(word);
    identity.Add(ParCommands(step, work_dir));
  }
  for (const FileRecord& file : inputs) {
    if (file.role == "par commands") continue;  // Planning rewrites it; the run has its own.
    identity.Add(file.role);
    identity.Add(file.path);
    identity.Add(file.sha256);
    if (file.sha256.empty()) identity.Add(file.modified_ns);  // It cannot be read by us.
  }
  for (const FileRecord& tool : tools) {
    identity.Add(tool.path);
    identity.Add(tool.size);
    identity.Add(tool.modified_ns);
  }
  return identity.Text();
}

}  // namespace vostrand
