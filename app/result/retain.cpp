#include "result/retain.h"

#include <filesystem>
#include <set>

namespace vostrand {

namespace fs = std::filesystem;

std::vector<std::string> RetainBest(const PromotionReport& report, const Promotion& promotion,
                                    const std::vector<std::string>& runs) {
  std::vector<std::string> left;
  if (!report.Good() || !promotion.multi_run) return left;
  std::error_code error;
  // A promoted file can be a link to another run's, and the output can have a run's name.
  std::set<fs::path> result = {fs::canonical(promotion.Summary(), error)};
  for (const PromotedFile& file : report.files) result.insert(fs::canonical(file.path, error));

  for (const std::string& run : runs) {
    if (run == promotion.best || run.empty() || run.find('/') != std::string::npos) continue;
    for (const char* const extension : {".ncd", ".par", ".twr", ".pad", ".dly", ".icf", ".out", ".dir"}) {
      const fs::path path = promotion.output_dir + "/" + run + extension;
      const fs::file_type type = fs::symlink_status(path, error).type();
      const auto ours = path.extension() == ".dir" ? fs::file_type::directory : fs::file_type::regular;
      if (type != ours && type != fs::file_type::symlink) continue;
      if (type == fs::file_type::regular && result.count(fs::canonical(path, error)) > 0) continue;
      fs::remove_all(path, error);  // Takes a link itself, not what it leads to.
      if (error) left.push_back(path);
    }
  }
  return left;
}

}  // namespace vostrand
