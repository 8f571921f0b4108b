#include "result/promotion_check.h"

#include <algorithm>
#include <filesystem>
#include <utility>

namespace vostrand {
namespace {

using Found = std::vector<FileRecord>::const_iterator;

// Adds one file to the report from what was found of it and, up to `end`, of its sources.
void Judge(const ExpectedFile& expected, Found target, Found end, std::int64_t old_ns,
           PromotionReport& report) {
  using State = PromotedFile::State;
  const Found source = target + 1;
  const auto is = [&](State state, const std::string& why) {
    PromotedFile file;
    file.path = expected.path;
    file.source = source == end ? expected.path : expected.sources.front().back();
    file.size = target->size;
    file.sha256 = target->sha256;
    file.state = state;
    if (!why.empty()) report.missing.push_back(file.path + " (" + why + ")");
    report.files.push_back(std::move(file));
  };
  const auto unread = [](const FileRecord& file) { return file.size >= 0 && file.sha256.empty(); };
  const auto same = [&](const FileRecord& file) {
    return file.size == target->size && file.sha256 == target->sha256;
  };
  if (std::any_of(target, end, unread)) return is(State::unchecked, "not checked");
  if (expected.optional && target->size < 0 && source->size < 0) return;
  if (target->size < 0) return is(State::missing, "not there");
  if (source == end && target->modified_ns == old_ns) return is(State::missing, "older than the sweep");
  if (source == end || std::any_of(source, end, same)) return is(State::equal, "");
  const Found there = std::find_if(source, end, [](const FileRecord& file) { return file.size >= 0; });
  if (there == end)
    is(State::differs,
       expected.optional ? "left by an earlier sweep, the best run has none" : "the best run's is not there");
  else if (there->size == target->size)
    is(State::differs, "differs from the best run's");
  else
    is(State::differs, std::to_string(target->size) + " bytes instead of " + std::to_string(there->size));
}

}  // namespace

std::string Promotion::Summary() const {
  return output_dir + "/" + std::filesystem::path(stem).filename().string() + ".par";
}

std::string WholeFile(const std::string& output_dir, const std::string& run, const char* extension) {
  namespace fs = std::filesystem;
  const std::string gathered = output_dir + "/" + run + extension;
  const std::string left = output_dir + "/" + run + ".dir/" + run + extension;
  std::error_code error;
  if (!fs::is_regular_file(left, error)) return gathered;
  const auto size = fs::file_size(gathered, error);
  return error || size != fs::file_size(left, error) ? left : gathered;
}

std::vector<ExpectedFile> ExpectedFiles(const Promotion& promotion) {
  std::vector<ExpectedFile> files;
  const auto of_best = [&](const char* extension) {
    return WholeFile(promotion.output_dir, promotion.best, extension);
  };
  const auto expect = [&](const char* extension, FileHasher::Parts sources, bool optional = false) {
    files.push_back({promotion.stem + extension, std::move(sources), optional});
  };
  if (promotion.best.empty()) return files;
  for (const char* const extension : {".ncd", ".twr"})
    if (extension[1] != 't' || promotion.timing)
      expect(extension, promotion.multi_run ? FileHasher::Parts{{of_best(extension)}} : FileHasher::Parts());
  if (!promotion.multi_run) return files;
  expect(".par", {{promotion.Summary(), of_best(".par")}});
  // The summary is written beside the output directory. In any other folder the best run's report stands
  // alone, or behind what was there before.
  const auto normal = [](const std::string& path) { return std::filesystem::path(path).lexically_normal(); };
  if (normal(promotion.output_dir) != normal(promotion.stem + ".dir"))
    files.back().sources.push_back({of_best(".par")});
  for (const char* const extension : {".pad", ".dly", ".icf"})
    expect(extension, {{of_best(extension)}}, true);
  return files;
}

void CheckPromotion(FileHasher& hasher, const Promotion& promotion,
                    std::function<void(PromotionReport)> done) {
  FileHasher::Parts parts;
  const std::vector<ExpectedFile> expected = ExpectedFiles(promotion);
  for (const ExpectedFile& file : expected) {
    parts.push_back({file.path});
    parts.insert(parts.end(), file.sources.begin(), file.sources.end());
  }
  const auto judge = [expected, done = std::move(done), old_ns = promotion.old_ns](const auto& records) {
    PromotionReport report;
    auto found = records.begin();
    for (const ExpectedFile& file : expected) {
      const auto end = found + static_cast<std::ptrdiff_t>(1 + file.sources.size());
      Judge(file, std::exchange(found, end), end, old_ns, report);
    }
    done(std::move(report));
  };
  std::vector<FileRecord> records(parts.size());
  hasher.Start(std::move(records), judge, std::move(parts));
}

}  // namespace vostrand
