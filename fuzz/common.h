#pragma once

#include <fuzzer/FuzzedDataProvider.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <string_view>

/// Ends the program where something is wrong, which makes the input a finding.
inline void Check(bool right) {
  if (!right) std::abort();
}

/// The input in parts: texts, numbers.
inline FuzzedDataProvider Parts(std::string_view in) {
  return {reinterpret_cast<const std::uint8_t*>(in.data()), in.size()};
}

/// The path of a file in memory that holds the text, until the next text takes its place.
inline std::string InMemory(std::string_view text) {
  static const int file = memfd_create("input", MFD_CLOEXEC);
  const auto size = static_cast<ssize_t>(text.size());
  Check(ftruncate(file, 0) == 0 && pwrite(file, text.data(), text.size(), 0) == size);
  return "/proc/self/fd/" + std::to_string(file);
}

/// A folder of its own below TMPDIR, current while it lives.
class Scratch {
 public:
  Scratch() : top_((std::filesystem::temp_directory_path() / "fuzz-XXXXXX").string()) {
    Check(mkdtemp(top_.data()) != nullptr);
    std::filesystem::create_directory(top_ + "/work");
    std::filesystem::current_path(top_ + "/work");
  }
  /// Whoever wrote beside the folder is found out.
  ~Scratch() {
    const std::filesystem::directory_iterator beside(top_);
    Check(std::distance(begin(beside), end(beside)) == 1);
    std::filesystem::current_path("/");
    std::filesystem::remove_all(top_);
  }
  void Write(const char* name, std::string_view text) const { std::ofstream(name, std::ios::binary) << text; }
  std::string Read(const char* name) const {
    std::ifstream file(name, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
  }

 private:
  std::string top_;
};
