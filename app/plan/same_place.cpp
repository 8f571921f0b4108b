#include "plan/same_place.h"

namespace vostrand {

namespace fs = std::filesystem;

bool IsSame(const fs::path& a, const fs::path& b) {
  std::error_code error;
  return fs::equivalent(a, b, error);
}

bool LiesIn(const fs::path& folder, const fs::path& file) {
  std::error_code error;
  const fs::path named = fs::canonical(file.parent_path(), error) / file.filename();
  for (const fs::path& place : {named, fs::canonical(file, error)})
    for (fs::path above = place; above.has_relative_path(); above = above.parent_path())
      if (IsSame(above, folder)) return true;
  return false;
}

}  // namespace vostrand
