#include "ut/dir.h"

#include <dirent.h>
#include <fnmatch.h>

#include <algorithm>
#include <memory>

#include "ut/c_locale.h"

UT_DIR::UT_DIR(const char* path, unsigned char) {
  struct close_listing {
    void operator()(DIR* listing) const { ::closedir(listing); }
  };
  const std::unique_ptr<DIR, close_listing> listing(path ? ::opendir(path) : nullptr);
  if (!listing) return;
  while (const dirent* entry = ::readdir(listing.get())) {
    const std::string name = entry->d_name;
    if (name != "." && name != "..") names_.push_back(name);
  }
  // File systems list in an order of their own; messages about entries should not depend on it.
  std::sort(names_.begin(), names_.end());
}

const char* UT_DIR::getnextfile(const char* pattern) {
  while (next_ < names_.size()) {
    const std::string& name = names_[next_++];
    const ut_c_locale_scope c_locale;
    if (!pattern || ::fnmatch(pattern, name.c_str(), 0) == 0) return name.c_str();
  }
  return nullptr;
}
