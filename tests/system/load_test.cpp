// Loads the shared library, does whole tool runs and unloads it, again and again: nothing may keep it
// loaded, and nothing may be left over from the time before. VOSTRAND_SOAK=1 takes 1,000 times instead of 50.
#include <dlfcn.h>
#include <gtest/gtest.h>
#include <malloc.h>
#include <pthread.h>

#include <cstdlib>
#include <mutex>
#include <thread>

#include "common/pretend_tools.h"
#include "common/recording_logger.h"
#include "common/scratch.h"
#include "host/records.h"

using namespace orlo::kelpn::mparrunner;

namespace {

// What a process can run out of, as far as a leak shows in it.
struct Held {
  std::size_t files = 0;
  std::size_t thread_keys = 0;
  std::size_t heap = 0;  // Bytes; 0 under a sanitizer with a heap of its own.
  long rss_kb = 0;

  static Held Now() {
    Held held;
    for ([[maybe_unused]] const auto& file : std::filesystem::directory_iterator("/proc/self/fd"))
      ++held.files;
    std::vector<pthread_key_t> free_keys;
    for (pthread_key_t key = 0; pthread_key_create(&key, nullptr) == 0;) free_keys.push_back(key);
    for (const pthread_key_t key : free_keys) pthread_key_delete(key);
    held.thread_keys = PTHREAD_KEYS_MAX - free_keys.size();
    free_keys = {};
    std::ifstream status("/proc/self/status");
    for (std::string word; status >> word;)
      if (word == "VmRSS:") status >> held.rss_kb;
    status.close();
    const auto memory = ::mallinfo2();
    held.heap = memory.uordblks + memory.hblkhd;
    return held;
  }
};

std::mutex loader;

class LoadTest : public ScratchTest {
 protected:
  // The loader does both one at a time, but by a lock of its own that the thread sanitizer does not see.
  static void* Load() {
    const std::lock_guard lock(loader);
    return dlopen(VOSTRAND_LIBRARY, RTLD_NOW | RTLD_LOCAL);
  }
  static int Unload(void* library) {
    const std::lock_guard lock(loader);
    return dlclose(library);
  }
  static bool IsLoaded() { return dlopen(VOSTRAND_LIBRARY, RTLD_NOW | RTLD_NOLOAD) != nullptr; }

  void Design(const std::string& folder) const {
    Write(folder + "/top_map.ncd", "design");
    Write(folder + "/top.p2t", "-n 2 -t 1 -s 1\n");
    Write(folder + "/top.prf", "FREQUENCY NET \"clk_c\" 100.000000 MHz ; # w 2 p 3\n");
  }

  enum class End { on_its_thread, on_another_thread, with_its_thread, at_unload };

  // Plan, results, report and end, in the design's folder.
  void WholeRun(void* library, const std::string& folder, End end = End::on_its_thread) const {
    const auto main =
        reinterpret_cast<int (*)(int, const char**, VOSTRAND_CONTEXT*)>(dlsym(library, "vostrand_main"));
    const auto report = reinterpret_cast<int (*)(VOSTRAND_CONTEXT*)>(dlsym(library, "vostrand_report"));
    const auto exit = reinterpret_cast<int (*)(int, VOSTRAND_CONTEXT*)>(dlsym(library, "vostrand_exit"));
    ASSERT_TRUE(main && report && exit);
    const std::string work_dir = Path(folder);
    RecordingLogger logger;
    VOSTRAND_CONTEXT record;
    record.logger = &logger;
    record.workDir = work_dir.c_str();
    const auto run = [&] {
      const char* arguments[] = {"vostrand", "top", nullptr};
      ASSERT_EQ(main(2, arguments, &record), 0) << logger.err;
      PretendedRun{"5_1", 90.0, 4.0, 70}.LeaveIn(work_dir + "/top.dir");
      PretendedRun{"5_2", 110.0, 4.0, 0}.LeaveIn(work_dir + "/top.dir");
      EXPECT_EQ(report(&record), 0);
    };
    const auto on_another_thread = [](const auto& work) { std::thread(work).join(); };
    end == End::with_its_thread ? on_another_thread(run) : run();
    if (end == End::on_its_thread) exit(0, &record);
    if (end == End::on_another_thread) on_another_thread([&] { exit(0, &record); });
    EXPECT_EQ(logger.err, "");
    EXPECT_EQ(Read(folder + "/top.ncd"), "design of 5_2\n");
  }

  static int Rounds() { return std::getenv("VOSTRAND_SOAK") ? 1000 : 50; }
};

}  // namespace

TEST_F(LoadTest, NothingIsLeftOverWhenItIsUnloadedAndLoadedAgain) {
  Design("a");
  Held before;
  for (int i = 0; i < Rounds(); ++i) {
    if (i == 10) before = Held::Now();  // By then the process has what it keeps for good, such as Qt Core.
    void* const library = Load();
    ASSERT_TRUE(library) << dlerror();
    for (const End end : {End::on_its_thread, End::on_another_thread, End::with_its_thread, End::at_unload})
      WholeRun(library, "a", end);
    std::thread([&] { WholeRun(library, "a"); }).join();
    ASSERT_EQ(Unload(library), 0);
    ASSERT_FALSE(IsLoaded());
  }
  const Held after = Held::Now();
  EXPECT_EQ(after.files, before.files);
  EXPECT_EQ(after.thread_keys, before.thread_keys);
  if (before.heap == 0) return;
  EXPECT_LT(after.heap, before.heap + 16000);  // Caches of the threads that came and went.
  EXPECT_LT(after.rss_kb, before.rss_kb + 1000);
}

// Whoever unloads it last does so while the other threads have used it and live on.
TEST_F(LoadTest, ThreadsMayEachLoadAndUnloadIt) {
  std::vector<std::thread> threads;
  for (int t = 0; t < 8; ++t)
    threads.emplace_back([this, folder = "d" + std::to_string(t)] {
      Design(folder);
      for (int i = 0; i < 8; ++i) {
        void* const library = Load();
        ASSERT_TRUE(library) << dlerror();
        WholeRun(library, folder);
        ASSERT_EQ(Unload(library), 0);
      }
    });
  for (std::thread& thread : threads) thread.join();
  EXPECT_FALSE(IsLoaded());
}
