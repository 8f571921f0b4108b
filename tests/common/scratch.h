#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

/// A test with a folder of its own, removed when it ends. Names are relative to it.
class ScratchTest : public ::testing::Test {
 protected:
  ScratchTest() {
    std::string name = (std::filesystem::temp_directory_path() / "vostrand-test-XXXXXX").string();
    root_ = ::mkdtemp(name.data());
  }
  ~ScratchTest() override {
    std::error_code ignored;
    std::filesystem::remove_all(root_, ignored);
  }

  std::string Path(const std::string& name) const { return (root_ / name).string(); }
  const std::string& Root() const { return root_.native(); }

  /// Writes a file, folders on the way to it included; returns its path.
  std::string Write(const std::string& name, const std::string& text) const {
    std::filesystem::create_directories((root_ / name).parent_path());
    std::ofstream(root_ / name, std::ios::binary) << text;
    return Path(name);
  }
  std::string Read(const std::string& name) const {
    std::ostringstream text;
    text << std::ifstream(root_ / name, std::ios::binary).rdbuf();
    return text.str();
  }
  bool Exists(const std::string& name) const { return std::filesystem::exists(root_ / name); }

 private:
  std::filesystem::path root_;
};
