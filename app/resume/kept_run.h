#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "result/run_record.h"

namespace vostrand {

/// A file that a finished run left, as it was when it was kept.
struct KeptFile {
  std::string name;  ///< In the folder of the results: "5_3.dir/5_3.ncd".
  std::int64_t size = 0;
  std::int64_t modified_ns = 0;  ///< Since the epoch.

  bool operator==(const KeptFile&) const = default;
};

/// A finished run that need not be run again while its identity stays the same.
struct KeptRun {
  std::string identity;
  std::vector<KeptFile> files;
  RunRecord record;
};

}  // namespace vostrand
