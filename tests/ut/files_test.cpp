#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include <csignal>
#include <cstring>
#include <vector>

#include "common/scratch.h"
#include "ut/dir.h"
#include "ut/filemanager.h"
#include "ut/line_reader.h"
#include "ut/rewrite.h"

namespace fs = std::filesystem;
using namespace std::string_literals;

namespace {

// While it lives, files cannot grow beyond `bytes`, as on a full disk.
class LimitedDisk {
 public:
  explicit LimitedDisk(rlim_t bytes) {
    std::signal(SIGXFSZ, SIG_IGN);
    ::getrlimit(RLIMIT_FSIZE, &before_);
    const rlimit limit = {bytes, before_.rlim_max};
    ::setrlimit(RLIMIT_FSIZE, &limit);
  }
  ~LimitedDisk() { ::setrlimit(RLIMIT_FSIZE, &before_); }

 private:
  rlimit before_ = {};
};

class Files : public ScratchTest {
 protected:
  Files() {
    Write("file", "old text\n");
    Write("dir/file", "x");
    fs::create_symlink("file", Path("to_file"));
    fs::create_symlink("dir", Path("to_dir"));
    fs::create_symlink("nothing", Path("dangling"));
    fs::create_hard_link(Path("file"), Path("same"));
    ::mkfifo(Path("fifo").c_str(), 0666);
  }
  std::vector<std::string> Names(const std::string& directory, const char* pattern = nullptr) const {
    std::vector<std::string> names;
    UT_DIR listing(Path(directory).c_str(), 1);
    while (const char* name = listing.getnextfile(pattern)) names.emplace_back(name);
    return names;
  }
  struct stat Status(const std::string& name) const {
    struct stat status = {};
    EXPECT_EQ(::stat(Path(name).c_str(), &status), 0) << name;
    return status;
  }
  bool Copy(const char* from, const char* to) const {
    return ut_file->copy(Path(from).c_str(), Path(to).c_str());
  }
  bool Append(const char* from, const char* to) const {
    return ut_file->append(Path(from).c_str(), Path(to).c_str());
  }
  bool Remove(const char* name) const { return ut_file->remove(Path(name).c_str()); }
};

}  // namespace

TEST_F(Files, LinesArriveInPiecesOf254Characters) {
  const auto a = [](std::size_t n) { return std::string(n, 'a'); };
  std::string many;  // More than one read takes.
  for (int i = 0; i < 300; ++i) many += a(252) + "\r\n";
  const std::vector<std::string> many_lines(300, a(252));
  const struct {
    std::string text;
    std::vector<std::string> pieces, whole;
  } cases[] = {
      {"", {}, {}},
      {"one\ntwo", {"one", "two"}, {"one", "two"}},
      {"\n\r\n\n", {"", "", ""}, {"", "", ""}},
      {"a\r\nb\r", {"a", "b\r"}, {"a", "b\r"}},  // Without a "\n", "\r" is text.
      {a(253) + "\nx\n", {a(253), "x"}, {a(253), "x"}},
      {a(254) + "\nx\n", {a(254), "", "x"}, {a(254), "x"}},
      {a(255) + "\nx\n", {a(254), "a", "x"}, {a(255), "x"}},
      {a(253) + "\r\nx\n", {a(253) + "\r", "", "x"}, {a(253), "x"}},
      {a(254) + "\r\nx\n", {a(254), "", "x"}, {a(254), "x"}},
      {a(254), {a(254)}, {a(254)}},
      {"a\0b\n\0\nc"s, {"a", "", "c"}, {"a\0b"s, "\0"s, "c"}},
      {many, many_lines, many_lines},
  };
  for (const auto& c : cases) {
    const std::string path = Write("lines", c.text);
    std::vector<std::string> pieces, whole;
    std::string line;
    std::string_view piece;
    for (ut_line_reader reader(path.c_str()); reader.next(piece);) pieces.emplace_back(piece);
    for (ut_line_reader reader(path.c_str()); reader.next_whole(line);) whole.push_back(line);
    EXPECT_EQ(pieces, c.pieces) << c.text.size() << " characters";
    EXPECT_EQ(whole, c.whole) << c.text.size() << " characters";
  }
}

TEST_F(Files, StreamsReadAndWrite) {
  const std::string path = Write("stream", "ab;cdefg\nh");
  const ut_stream_handle in = ut_open_stream(path.c_str(), UT_ACCESS_READ);
  for (const char* expected : {"ab;", "cdef", "g\n", "h", ""}) {
    unsigned char buffer[5];  // Of the most characters and a NUL.
    EXPECT_FALSE(in->eof && *expected) << expected;
    EXPECT_EQ(in->readkey(buffer, 4, "\n;"), static_cast<int>(std::strlen(expected)));
    EXPECT_STREQ(reinterpret_cast<const char*>(buffer), expected);
  }
  EXPECT_NE(in->eof, 0);
  const ut_stream_handle unreadable = ut_open_stream("/proc/self/mem", UT_ACCESS_READ);  // At address 0.
  unsigned char c[2];
  EXPECT_LT(unreadable->readkey(c, 1, "\n"), 0);
  EXPECT_TRUE(unreadable->eof && unreadable->failed() && !in->failed());
  EXPECT_FALSE(ut_open_stream(Path("fifo").c_str(), UT_ACCESS_READ)) << "nobody writes to it";

  UT_STREAM* out = ut_file->add_ofile(path.c_str(), UT_ACCESS_WRITE, nullptr, 1);
  const std::string much(100000, 'm');
  (*out << "100%s " << much.c_str() << nullptr).write("\0|"s).writeline("end");
  EXPECT_NE(ut_file->rm_ofile(out), 0);
  EXPECT_EQ(Read("stream"), "100%s " + much + "\0|end\n"s);
  ut_open_stream(path.c_str(), UT_ACCESS_WRITE);
  EXPECT_EQ(Read("stream"), "");
  out = ut_file->add_ofile("/dev/full", UT_ACCESS_WRITE, nullptr, 1);
  out->writeline("lost");
  EXPECT_EQ(ut_file->rm_ofile(out), 0) << "a write that fails as late as here";
  for (const std::string& wrong : {Root(), Path("no/file"), ""s})
    EXPECT_TRUE(!ut_open_stream(wrong.c_str(), UT_ACCESS_READ) &&
                !ut_open_stream(wrong.c_str(), UT_ACCESS_WRITE));
}

TEST_F(Files, KindsOfPaths) {
  const std::pair<const char*, const char*> cases[] = {
      // A letter for each property.

      {"file", "efr"},   {"dir", "ed"},  {"to_file", "eflr"}, {"to_dir", "edl"},
      {"dangling", "l"}, {"fifo", "er"}, {"missing", ""}};
  for (const auto& [name, kind] : cases) {
    const std::string path = Path(name);
    std::string found;
    if (ut_file->exist(path.c_str())) found += 'e';
    if (ut_file->isfile(path.c_str())) found += 'f';
    if (ut_file->isdir(path.c_str())) found += 'd';
    if (ut_file->islink(path.c_str())) found += 'l';
    if (ut_file->canread(path.c_str())) found += 'r';
    EXPECT_EQ(found, kind) << name;
  }
}

TEST_F(Files, CopyAndAppend) {
  for (const char* unreadable : {"missing", "dir", "fifo", "dangling"}) {
    EXPECT_FALSE(Copy(unreadable, "file") || Append(unreadable, "file")) << unreadable;
    EXPECT_FALSE(Copy(unreadable, "new") || Append(unreadable, "new") || Exists("new")) << unreadable;
  }
  EXPECT_FALSE(Copy("file", "dir") || Copy("file", "no/dir") || Append("file", "dir") ||
               Append("file", "no/dir"));
  EXPECT_TRUE(Copy("file", "same") && Copy("file", "to_file"));
  EXPECT_EQ(Read("file"), "old text\n");
  EXPECT_TRUE(Append("to_file", "same"));
  EXPECT_EQ(Read("file"), "old text\nold text\n");

  const std::string big = std::string(300000, 'b') + "\0end"s;
  fs::permissions(Write("big", big), fs::perms(0700));
  EXPECT_TRUE(Copy("big", "new") && Copy("dir/file", "to_file") && Append("big", "file") &&
              Append("big", "made"));
  EXPECT_EQ(Read("new"), big);
  EXPECT_EQ(Status("new").st_mode & 0777U, 0700U);
  EXPECT_EQ(Read("same"), "x" + big);
  EXPECT_EQ(Read("made"), big);
  const LimitedDisk limit(1000);
  EXPECT_FALSE(Copy("big", "cut_off") || Append("big", "cut_off"));
}

TEST_F(Files, DirectoriesAreListedAndOnlyFilesRemoved) {
  const std::string empty = Path("dir/sub");
  EXPECT_TRUE(ut_file->mkdir(empty.c_str()) && !ut_file->mkdir(empty.c_str()));
  EXPECT_FALSE(ut_file->mkdir(Path("a/b").c_str()) || ut_file->rmdir(Path("dir").c_str()));
  EXPECT_FALSE(Remove("dir/sub") || Remove("missing"));
  EXPECT_TRUE(Remove("to_dir") && Remove("dangling") && !Exists("to_dir") && Exists("dir/file"));

  std::vector<std::string> expected = {".hidden", "file", "sub"}, names;
  Write("dir/.hidden", "");
  for (int i = 100; i < 400; ++i)
    fs::create_symlink("nothing", Path("dir/" + expected.emplace_back("x" + std::to_string(i))));
  EXPECT_EQ(Names("dir", "x1[0-9]?").size(), 100U);
  UT_DIR listing(Path("dir").c_str(), 1);
  while (const char* name = listing.getnextfile(nullptr)) {
    names.emplace_back(name);
    Remove(("dir/" + names.back()).c_str());  // Takes none of the names behind it away.
  }
  EXPECT_EQ(names, expected);
  EXPECT_EQ(Names("dir"), std::vector<std::string>{"sub"});
  EXPECT_TRUE(ut_file->rmdir(empty.c_str()) && Names("dir").empty() && Names("missing").empty());
}

TEST_F(Files, RewritingKeepsModeAndLinkAndLeavesNothingBeside) {
  const std::string link = Path("to_file");
  fs::permissions(link, fs::perms(0642));
  const struct stat old = Status("file");
  const std::vector<std::string> names = Names("");
  EXPECT_EQ(ut_rewrite_file(link.c_str(), "old text\n"), ut_rewrite_result::done);
  EXPECT_TRUE(Status("file").st_ino == old.st_ino && Status("file").st_ctim.tv_nsec == old.st_ctim.tv_nsec);
  EXPECT_EQ(ut_rewrite_file(link.c_str(), "new\0"s), ut_rewrite_result::done);
  EXPECT_EQ(Read("file"), "new\0"s);
  EXPECT_EQ(Read("same"), "old text\n") << "the new text went over the old one, not beside it";
  EXPECT_EQ(Status("file").st_mode, old.st_mode);
  EXPECT_TRUE(fs::is_symlink(link));
  EXPECT_EQ(Names(""), names);
  EXPECT_EQ(ut_rewrite_file(Path("missing").c_str(), "x"), ut_rewrite_result::cannot_open);
  EXPECT_EQ(ut_rewrite_file(Path("dir").c_str(), "x"), ut_rewrite_result::cannot_open);
}

// A name that leaves no room for the suffix of a file beside it is rewritten in place.
TEST_F(Files, RewritingSurvivesAFullDiskBesideAndInPlace) {
  for (const std::string& name : {"short"s, std::string(255, 'n')}) {
    const std::string path = Write(name, "old text\n");
    fs::remove(Path("same"));
    fs::create_hard_link(path, Path("same"));
    const std::vector<std::string> names = Names("");
    {
      const LimitedDisk limit(20);
      EXPECT_EQ(ut_rewrite_file(path.c_str(), std::string(40, 'x')), ut_rewrite_result::cannot_write);
    }
    EXPECT_EQ(Read(name), "old text\n");
    for (const char* text : {"longer than the old text\n", "shorter\n", "SHORTER\n"}) {
      EXPECT_EQ(ut_rewrite_file(path.c_str(), text), ut_rewrite_result::done);
      EXPECT_EQ(Read(name), text);
    }
    EXPECT_EQ(Read("same"), name == "short" ? "old text\n" : "SHORTER\n");
    EXPECT_EQ(Names(""), names);
  }
}
