#include "support/file_names.h"

namespace orlo::vostrand_lib {

UT_STROBJ GetCleanFileName(const UT_STROBJ& name) {
  if (name.right(1).strcmp("\"") != 0) return name;
  const UT_STROBJ without_first = name.right_from(1);
  return without_first.empty() ? without_first : without_first.left(without_first.size() - 1);
}

UT_STROBJ GenerateFilePath(const UT_STROBJ& directory, const UT_STROBJ& name) {
  if (name.empty() || directory.empty() || name.left(1).strcmp("/") == 0) return name;
  return directory.right(1).strcmp("/") == 0 ? directory + name : directory + '/' + name;
}

bool HasExtension(const UT_STROBJ& name, const char* extension) {
  return name.view().ends_with(extension);
}

UT_STROBJ WithoutExtension(const UT_STROBJ& name) {
  return name.left(name.size() - 4);
}

}  // namespace orlo::vostrand_lib
