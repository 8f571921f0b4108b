// Loads the shared library, does a whole tool run and unloads it, again and again: nothing may keep it
// loaded, and nothing may be left over from the time before.
#include <dlfcn.h>
#include <gtest/gtest.h>

#include <thread>

#include "common/recording_logger.h"
#include "common/scratch.h"
#include "host/records.h"

using namespace orlo::kelpn::mparrunner;

namespace {

class LoadTest : public ScratchTest {
 protected:
  void WholeRun(void* library) {
    const auto main =
        reinterpret_cast<int (*)(int, const char**, VOSTRAND_CONTEXT*)>(dlsym(library, "vostrand_main"));
    const auto report = reinterpret_cast<int (*)(VOSTRAND_CONTEXT*)>(dlsym(library, "vostrand_report"));
    const auto exit = reinterpret_cast<int (*)(int, VOSTRAND_CONTEXT*)>(dlsym(library, "vostrand_exit"));
    ASSERT_TRUE(main && report && exit);
    RecordingLogger logger;
    VOSTRAND_CONTEXT record;
    record.logger = &logger;
    record.workDir = Root().c_str();
    const char* arguments[] = {"vostrand", "top", nullptr};
    EXPECT_EQ(main(2, arguments, &record), 0) << logger.err;
    EXPECT_EQ(report(&record), 0);
    EXPECT_EQ(exit(0, &record), 0);
  }
};

}  // namespace

TEST_F(LoadTest, TheLibraryCanBeUnloadedAndLoadedAgain) {
  Write("top_map.ncd", "design");
  Write("top.p2t", "-n 2\n");
  Write("top.prf", "");
  for (int i = 0; i < 20; ++i) {
    void* const library = dlopen(VOSTRAND_LIBRARY, RTLD_NOW | RTLD_LOCAL);
    ASSERT_TRUE(library) << dlerror();
    WholeRun(library);
    std::thread([&] { WholeRun(library); }).join();
    ASSERT_EQ(dlclose(library), 0);
    ASSERT_EQ(dlopen(VOSTRAND_LIBRARY, RTLD_NOW | RTLD_NOLOAD), nullptr) << "still loaded";
  }
}
