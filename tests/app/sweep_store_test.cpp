#include "resume/sweep_store.h"

#include <gtest/gtest.h>

#include "common/scratch.h"
#include "common/unprivileged.h"

namespace fs = std::filesystem;

using SweepStoreTest = ScratchTest;

// Two users, each in a working directory of their own.
TEST_F(SweepStoreTest, AnotherUsersLockHoldsWhereOneCannotBeMade) {
  for (const char* const folder : {"first", "second", "output"}) fs::create_directory(Path(folder));
  for (const char* const folder : {"", "second"}) fs::permissions(Path(folder), fs::perms(0777));
  {
    vostrand::SweepStore first(Path("first"), {"a"}, "../output/top");
    ASSERT_EQ(first.Open(), "");
    const Unprivileged user;
    vostrand::SweepStore second(Path("second"), {"b"}, "../output/top");
    EXPECT_EQ(second.Open(), "another vostrand is at work on this output");
    EXPECT_TRUE(second.IsTaken());
  }
  EXPECT_FALSE(Exists("output/.vostrand"));
  const Unprivileged user;
  vostrand::SweepStore second(Path("second"), {"b"}, "../output/top");
  EXPECT_EQ(second.Open(), "");
}
