// Each fast path against the plain way of doing the same, where their boundaries lie: pieces of 254
// characters, the end of what was read at once, and files that only copying treats rightly.
#include <sys/stat.h>

#include <random>

#include "common/scratch.h"
#include "ut/filemanager.h"
#include "ut/find.h"
#include "ut/line_reader.h"

namespace fs = std::filesystem;
using namespace std::string_literals;

namespace {

using FastPaths = ScratchTest;

class Random {
 public:
  std::size_t Below(std::size_t n) { return engine_() % n; }
  template <typename T, std::size_t n>
  const T& OneOf(const T (&choices)[n]) {
    return choices[Below(n)];
  }

 private:
  std::mt19937 engine_{20261123};
};

// Lines about the length of a piece, with marks whole, cut short, behind a NUL and across pieces.
std::string Text(Random& random, std::size_t size) {
  static const std::string parts[] = {"\n", "\r\n", "Score:", "Score", "Score::\n", "\0"s, "\0S"s, "core:"};
  constexpr std::size_t lengths[] = {2, 3, 5, 9, 248, 250, 254, 508, 1000};
  std::string text;
  while (text.size() < size)
    text += random.Below(2) ? random.OneOf(parts) : std::string(random.OneOf(lengths), 'x');
  return text;
}

// All lines that hold the mark, and the line behind each, which the next search begins with.
std::vector<std::string> LinesWithMark(const std::string& path, auto next_with) {
  std::vector<std::string> found;
  ut_line_reader lines(path.c_str());
  for (std::string_view line; next_with(lines, line);) {
    found.emplace_back(line);
    if (lines.next(line)) found.emplace_back(line);
  }
  return found;
}

TEST_F(FastPaths, SkippingFindsTheLinesThatReadingAllOfThemFinds) {
  static constexpr std::string_view mark = "Score:";
  const auto reading = [](ut_line_reader& lines, std::string_view& line) {
    while (lines.next(line))
      if (line.find(mark) != std::string_view::npos) return true;
    return false;
  };
  const auto skipping = [](ut_line_reader& lines, std::string_view& line) {
    return lines.next_with(mark, line);
  };
  Random random;
  std::size_t marks = 0;
  for (int round = 0; round < 300; ++round) {
    // Marks lie anywhere, or only about the end of the first or second buffer of 64 kB.
    const std::size_t buffers = random.Below(3) * 65536;
    const std::string filler = buffers == 0 ? "" : Text(random, 500) + std::string(buffers - 900, 'x');
    const std::string path = Write("text", filler + Text(random, random.Below(3000)));
    const std::vector<std::string> expected = LinesWithMark(path, reading);
    ASSERT_EQ(LinesWithMark(path, skipping), expected) << Read("text");
    marks += expected.size();
  }
  EXPECT_GT(marks, 300U);
  std::string_view line;
  EXPECT_FALSE(ut_line_reader(Path("missing").c_str()).next_with(mark, line));
}

TEST_F(FastPaths, FindingInBlocksIsFinding) {
  Random random;
  for (int round = 0; round < 3000; ++round) {
    std::string text;
    for (std::size_t n = random.Below(1200); n > 0; --n) text += random.OneOf("abbbbbbbbbbbbbbbbbbbc");
    const std::string part =
        round % 2 ? "a" + std::string(random.Below(4), 'b') + "c" : std::string(300, 'b');
    ASSERT_EQ(ut_find(text, part), text.find(part)) << text << ' ' << part;
  }
}

// What tells a moved file from a copied one: identity, links, and the permissions that a new file would not
// get.
TEST_F(FastPaths, AFileMovesByNameOnlyWhereACopyWouldBeTheSame) {
  const mode_t umask_before = ::umask(022);
  const auto inode = [&](const std::string& name) {
    struct stat status = {};
    ::stat(Path(name).c_str(), &status);
    return status.st_ino;
  };
  const auto move = [&](const std::string& from) {
    return ut_file->move(Path(from).c_str(), Path("to/" + from).c_str()) != 0;
  };
  const struct {
    const char* name;
    unsigned mode, mode_moved;
    bool by_name;
  } cases[] = {{"plain", 0644, 0644, true},
               {"program", 0755, 0755, true},
               {"private", 0400, 0400, true},
               {"open_to_all", 0666, 0644, false},
               {"special", 04755, 0755, false}};
  for (const auto& c : cases) {
    Write("to/"s + c.name, "an older and longer text");
    fs::permissions(Write(c.name, "text"), fs::perms(c.mode));
    const ino_t before = inode(c.name);
    EXPECT_TRUE(move(c.name) && !Exists(c.name)) << c.name;
    EXPECT_EQ(Read("to/"s + c.name), "text") << c.name;
    EXPECT_EQ(fs::status(Path("to/"s + c.name)).permissions(), fs::perms(c.mode_moved)) << c.name;
    EXPECT_EQ(inode("to/"s + c.name) == before, c.by_name) << c.name;
  }

  fs::create_hard_link(Write("linked", "text"), Path("other"));
  fs::create_symlink(Path("other"), Path("symbolic"));
  fs::create_hard_link(Write("outside", "kept"), Path("to/linked"));  // Another name of what is replaced.
  fs::create_symlink(Path("outside"), Path("to/symbolic"));
  for (const char* const name : {"linked", "symbolic"}) {
    EXPECT_TRUE(move(name) && !Exists(name) && !fs::is_symlink(Path("to/"s + name))) << name;
    std::ofstream(Path("to/"s + name), std::ios::app) << " and more";
    EXPECT_EQ(Read("to/"s + name), "text and more") << name;
  }
  EXPECT_EQ(Read("other") + Read("outside"), "textkept") << "another name of the file";

  fs::create_symlink(Path("to/target"), Path("target"));
  Write("to/target", "lost");
  EXPECT_FALSE(move("target") || Exists("to/target")) << "a link to what it replaces";
  Write("folder", "text");
  Write("to/folder/inside", "");
  EXPECT_FALSE(move("folder") || move("to") || move("missing"));
  EXPECT_EQ(Read("folder"), "text");
  ::umask(umask_before);
}

// The memory file system is another than the folder's, unless the folder lies in it.
TEST_F(FastPaths, BetweenFileSystemsAFileIsCopied) {
  const std::string away = "/dev/shm/" + fs::path(Root()).filename().string();
  const std::string text = std::string(300000, 't') + "\0end"s;
  EXPECT_TRUE(ut_file->move(Write("big", text).c_str(), away.c_str()) && !Exists("big"));
  EXPECT_TRUE(ut_file->move(away.c_str(), Path("back").c_str()) && !fs::exists(away));
  EXPECT_EQ(Read("back"), text);
}

}  // namespace
