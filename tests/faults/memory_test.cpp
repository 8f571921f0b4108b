// Memory runs out inside the library: at each allocation of each entry in turn, that one alone or all from
// there on. Every case is a process of its own, so that one that ends it does not hide the others.
#include <gtest/gtest.h>
#include <unistd.h>

#include <cerrno>

#include "common/pretend_tools.h"
#include "common/scratch.h"
#include "common/tool_run.h"
#include "context/thread_context.h"
#include "profile/profile_file.h"

namespace {

bool inside = false;
bool lasting = false;
long calls = 0;
long failing = 0;

template <typename Real, typename... Sizes>
void* AllocateOrFail(Real real, Sizes... sizes) {
  const bool fails = inside && (++calls == failing || (lasting && calls > failing));
  if (fails) errno = ENOMEM;
  return fails ? nullptr : real(sizes...);
}

}  // namespace

extern "C" {
void* __libc_malloc(std::size_t size);
void* __libc_realloc(void* memory, std::size_t size);
void* malloc(std::size_t size) {
  return AllocateOrFail(__libc_malloc, size);
}
void* realloc(void* memory, std::size_t size) {
  return AllocateOrFail(__libc_realloc, memory, size);
}
}

namespace {

enum Entry { planning, callback, report, ending, profile };

class MemoryTest : public ScratchTest, public ::testing::WithParamInterface<Entry> {
 protected:
  template <typename Call>
  static int In(Entry entry, Call call) noexcept {
    inside = entry == GetParam();
    const int result = call();
    inside = false;
    return result;
  }

  // One use of every entry; memory runs out in the parameter's.
  void Use() const {
    const std::string ini = Write("a.ini", "[s]\nk=old\n[t]\nk=v\n");
    const bool set =
        In(profile, [&] { return WritePrivateProfileString("s", "k", "new", ini.c_str()); }) == 1;
    EXPECT_EQ(Read("a.ini"), set ? "[s]\nk=new\n[t]\nk=v\n" : "[s]\nk=old\n[t]\nk=v\n");
    Write("top_map.ncd", "design");
    Write("top.p2t", "-n 2 -t 1 -stopzero\n");
    Write("top.prf", "FREQUENCY NET \"clk_c\" 100.000000 MHz ; # w 2 p 3\n");
    ToolRun run(Root());
    const char* arguments[] = {"vostrand", "top", nullptr};
    const int refused = In(planning, [&] { return vostrand_main(2, arguments, &run.record); });
    EXPECT_TRUE(Read("top.p2t").starts_with("-n 2 -t 1 "));
    if (refused) return;
    ASSERT_EQ(run.record.seeds.size(), 2);
    PretendedRun{"5_1", 90.0, 4.0, 70}.LeaveIn(Path("top.dir"));
    PretendedRun{"5_2", 110.0, 4.0, 50}.LeaveIn(Path("top.dir"));
    for (const auto& seed : run.record.seeds) {
      ASSERT_EQ(seed.steps.size(), 3);
      In(callback, [&] { return seed.steps[1].callback(seed.name.c_str(), &run.record); });
    }
    const int failed = In(report, [&] { return vostrand_report(&run.record); });
    In(ending, [&] { return vostrand_exit(0, &run.record); });
    EXPECT_TRUE(failed || Read("top.ncd") == "design of 5_2\n");
    EXPECT_TRUE(failed || Read("top.csv").ends_with("\n2 is the best."));
  }

  void UseAndExit(long at, bool lastingly) const {
    // Qt ends the process where it cannot take the thread in, once for each thread.
    orlo::vostrand_lib::ThreadContext();
    failing = at;
    lasting = lastingly;
    Use();
    Write("calls", std::to_string(calls));
    failing = 0;
    lasting = false;
    Use();  // With memory again, everything works.
    _exit(HasFailure());
  }
};

}  // namespace

TEST_P(MemoryTest, RunsOutAtEachAllocation) {
  EXPECT_EXIT(UseAndExit(0, false), ::testing::ExitedWithCode(0), "");
  const long count = std::stol(Read("calls"));
  for (long i = 0; i < 2 * count; ++i)
    EXPECT_EXIT(UseAndExit(1 + i / 2, i % 2), ::testing::ExitedWithCode(0), "") << "case " << i;
  std::cout << "[   FAULTS ] " << 2 * count << " of " << 2 * count << "\n";
}

INSTANTIATE_TEST_SUITE_P(, MemoryTest, ::testing::Values(planning, callback, report, ending, profile));
