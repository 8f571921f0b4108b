#pragma once

#include <functional>

#include "common/host_run.h"

/// A sweep of two runs on a machine that fails, and what must hold after it however it ended.
class DisturbedSweepTest : public HostTest {
 protected:
  using Texts = std::vector<std::string>;

  DisturbedSweepTest() {
    Plan("-n 2 -t 1 -s 1");
    std::filesystem::copy(Path("w"), Path("pristine"), std::filesystem::copy_options::recursive);
  }

  /// The undisturbed sweep, to measure by.
  void SetUp() override {
    Reset();
    inputs_ = Inputs();
    ASSERT_EQ(Command({VOSTRAND_PROGRAM}), 0) << err;
    planned_ = Inputs();  // The par command file is written anew.
    results_ = Results();
    records_ = Records();
    ASSERT_EQ(Read("w/top.ncd"), "design of 5_2\n");
  }

  /// Every sweep begins with the same folder w, and without records.
  void Reset() const {
    using copy = std::filesystem::copy_options;
    for (const auto& entry : std::filesystem::directory_iterator(Root()))
      if (entry.path().filename().string()[0] == 'r') std::filesystem::remove(entry.path());
    std::filesystem::remove_all(Path("w"));
    std::filesystem::copy(Path("pristine"), Path("w"), copy::recursive | copy::copy_symlinks);
  }

  /// A sweep whose command line begins with `command`; its exit code, -1 for a crash, -2 when it hung.
  int Command(const Texts& command, const char* option = "--verbose") {
    QStringList words = {"--jobs",  "1",       "--toolchain", "tools", "--json",   "r.json",
                         "--html",  "r.html",  "--junit",     "r.xml", "--events", "r.log",
                         "--trace", "r.trace", "--chdir",     "w",     option,     "top"};
    for (auto word = command.rbegin(); word != command.rend(); ++word)
      words.prepend(QString::fromStdString(*word));
    process.setWorkingDirectory(QString::fromStdString(Root()));
    process.start(words.takeFirst(), words);
    const bool ended = process.waitForFinished(20000) || (process.kill(), process.waitForFinished(), false);
    out = process.readAllStandardOutput().toStdString();
    err = process.readAllStandardError().toStdString();
    return !ended ? -2 : process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
  }

  /// Sweeps with `command`, mends the machine and resumes, which must lead to the whole result.
  int Disturb(
      const Texts& command, const std::string& how, const std::function<void()>& mend = [] {}) {
    const int code = Command(command);
    const testing::ScopedTrace trace(__FILE__, __LINE__,
                                     how + ": " + std::to_string(code) + "\n" + err + out);
    Check(code);
    mend();
    EXPECT_EQ(Command({VOSTRAND_PROGRAM}, "--resume"), 0) << "resumed\n" << err << out;
    EXPECT_EQ(Results(), results_) << "resumed";
    return code;
  }

  static bool Soak() { return std::getenv("VOSTRAND_SOAK") != nullptr; }

 private:
  bool Said(const std::string& text) const { return (err + out).find(text) != std::string::npos; }
  void Check(int code) const {
    EXPECT_GE(code, 0) << "crashed or hung";
    EXPECT_TRUE(Inputs() == inputs_ || Inputs() == planned_) << "the user's own files have changed";
    EXPECT_FALSE(Said("its files changed")) << "nobody has changed them";
    // A program that cannot be loaded has its own words.
    EXPECT_TRUE(code == 0 || Said("vostrand: ") || Said(" failed ") || Said("missing: ") || Said("rror"));
    EXPECT_TRUE(code != 0 || Results() == results_);
    EXPECT_TRUE(code != 0 || Said("vostrand: ") || Records() == records_)
        << "nobody said that they lack something";
    for (const std::string file : {"w/top.ncd", "w/top.twr", "w/top.par", "w/top.pad"})
      EXPECT_TRUE(!Said("\n  " + file + "\n") || !Read(file).empty()) << file;
    EXPECT_TRUE(!Said("\n  w/top.ncd\n") || Said("\nbest: " + Read("w/top.ncd").substr(10)));
    EXPECT_TRUE(Eventually([&] { return !IsAnythingRunning(); }, std::chrono::seconds(10)));
  }
  bool IsAnythingRunning() const {
    std::error_code gone;
    for (const auto& entry : std::filesystem::directory_iterator("/proc", gone))
      if (read_symlink(entry.path() / "cwd", gone).string().starts_with(Root())) return true;
    return false;
  }
  Texts Inputs() const { return {Read("w/top_map.ncd"), Read("w/top.prf"), Read("w/top.p2t")}; }
  Texts Results() const {
    Texts texts;
    for (const std::string of : {"w/top", "w/top.dir/5_1", "w/top.dir/5_2"})
      for (const char* const extension : {".csv", ".log", ".par", ".ncd", ".twr", ".pad", ".out"})
        texts.push_back(of + extension + ": " + Read(of + extension));
    return texts;
  }
  // Without numbers: times, sizes of processes. What is drawn to scale is the same only at its end.
  Texts Records() const {
    Texts texts = {Read("r.json"), Read("r.xml"), Read("r.trace"), Read("r.html"), Read("r.log")};
    for (const auto i : {3U, 4U})
      texts[i].erase(0, texts[i].size() - std::min<std::size_t>(texts[i].size(), 8));
    for (std::string& text : texts)
      for (std::size_t i = text.size(); i-- > 0;)
        if (std::strchr("0123456789.e+-", text[i])) text.erase(i, 1);
    return texts;
  }

  Texts inputs_, planned_, results_, records_;
};
