#pragma once

#include "result/file_hasher.h"

namespace vostrand {

/// What the library promoted, from where to where.
struct Promotion {
  std::string output_dir;  ///< Folder of the runs' results; of no use for a single run.
  std::string stem;        ///< Path of the result without extension.
  std::string best;        ///< Name of the best run; empty when none finished.
  bool timing = true;
  bool multi_run = true;  ///< False: the tools wrote the result where it is.
  /// When a single run's design file was modified that lay there before the sweep, since the epoch; -1 when
  /// there was none. One of this very time counts as missing. No clock is asked: clocks are set.
  std::int64_t old_ns = -1;

  std::string Summary() const;  ///< The summary without the best run's report behind it.
};

/// Path of a run's file, whole: in the output directory or, when it could not be moved there, or only in
/// part, still in the run's own folder.
std::string WholeFile(const std::string& output_dir, const std::string& run, const char* extension);

/// What one file of the result must hold.
struct ExpectedFile {
  std::string path;
  FileHasher::Parts sources;  ///< Any one of these lists of files, joined; none: the tools wrote it here.
  bool optional = false;      ///< There exactly when its source is.
};
std::vector<ExpectedFile> ExpectedFiles(const Promotion& promotion);

/// What a check found.
struct PromotionReport {
  bool Good() const { return !files.empty() && missing.empty(); }

  std::vector<PromotedFile> files;
  std::vector<std::string> missing;  ///< "path (why)" of each file that is not as it must be.
};

/// Compares the promoted files with the best run's, since the library does not say when a copy fails. Goes on
/// as long as the hasher lives; its Cancel ends it, and what was not compared is "not checked".
void CheckPromotion(FileHasher& hasher, const Promotion& promotion,
                    std::function<void(PromotionReport)> done);

}  // namespace vostrand
