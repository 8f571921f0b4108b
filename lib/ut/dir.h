#pragma once

#include <string>
#include <vector>

/// The names in a directory, read whole when it is opened, so that removing files while walking loses none.
class UT_DIR {
 public:
  /// Lists every entry of `path` but "." and "..", directories too. A directory that cannot be read lists
  /// nothing. `flag` is always 1.
  UT_DIR(const char* path, unsigned char flag);

  /// The next entry's bare name, or null after the last one; valid as long as the listing. A `pattern` with
  /// "*", "?" and "[...]" passes over the names that it does not fit; null means every entry.
  const char* getnextfile(const char* pattern);

 private:
  std::vector<std::string> names_;
  std::size_t next_ = 0;
};
