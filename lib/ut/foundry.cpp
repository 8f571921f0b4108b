#include "ut/foundry.h"

#include <dlfcn.h>

#include <cstdlib>
#include <string>

namespace {

UT_FOUNDRY the_foundry;
std::string root_text;

std::string directory_of(const std::string& path) {
  const std::size_t slash = path.rfind('/');
  return slash == std::string::npos ? "." : path.substr(0, slash);
}

std::string loaded_file() {
  Dl_info info;
  if (!::dladdr(static_cast<const void*>(&the_foundry), &info) || !info.dli_fname) return {};
  char* const resolved = ::realpath(info.dli_fname, nullptr);
  const std::string path = resolved ? resolved : info.dli_fname;
  std::free(resolved);
  return path;
}

}  // namespace

UT_FOUNDRY* UT_FOUNDRY::_foundryObj = nullptr;

void UT_FOUNDRY::checkFoundry() {
  const char* const configured = std::getenv("VOSTRAND_ROOT");
  root_text = configured && *configured ? configured : directory_of(directory_of(loaded_file()));
  while (root_text.ends_with('/')) root_text.pop_back();
  root = root_text.c_str();
  rootKnown = 1;
}

UT_FOUNDRY& UT_FOUNDRY::instance() {
  // Not std::call_once: when memory runs out inside, the C library unwinds through its own frames with help
  // that it has yet to load, and ends the process where it cannot.
  [[maybe_unused]] static const bool made = [] {
    _foundryObj = &the_foundry;
    the_foundry.checkFoundry();
    return true;
  }();
  return the_foundry;
}
