#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <cstring>
#include <future>
#include <vector>

#include "common/scratch.h"
#include "common/unprivileged.h"
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
    fs::create_hard_link(Path("file"), Path("same"));
    ::mkfifo(Path("fifo").c_str(), 0666);
  }
  std::vector<std::string> Names(const std::string& directory, const char* pattern = nullptr) const {
    std::vector<std::string> names;
    UT_DIR listing(Path(directory).c_str(), 1);
    while (const char* name = listing.getnextfile(pattern)) names.emplace_back(name);
    return names;
  }
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
      {"\n\r\n\n", {"", "", ""}, {"", "", ""}},
      {"a\r\nb\r", {"a", "b\r"}, {"a", "b\r"}},  // Without a "\n", "\r" is text.
      {a(253) + "\nx\n", {a(253), "x"}, {a(253), "x"}},
      {a(253) + "\r\nx", {a(253) + "\r", "", "x"}, {a(253), "x"}},
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
    EXPECT_EQ(in->readkey(buffer, 4, "\n;"), static_cast<int>(std::strlen(expected)));
    EXPECT_STREQ(reinterpret_cast<const char*>(buffer), expected);
  }
  EXPECT_TRUE(in->eof && !in->failed());
  for (const std::string& wrong : {Root(), Path("no/file"), Path("fifo")})  // Nobody writes to the last.
    EXPECT_FALSE(ut_open_stream(wrong.c_str(), UT_ACCESS_READ)) << wrong;

  UT_STREAM* out = ut_file->add_ofile(path.c_str(), UT_ACCESS_WRITE, nullptr, 1);
  const std::string much(100000, 'm');
  (*out << "100%s " << much.c_str() << nullptr).write("\0|"s).writeline("end");
  EXPECT_NE(ut_file->rm_ofile(out), 0);
  EXPECT_EQ(Read("stream"), "100%s " + much + "\0|end\n"s);
  out = ut_file->add_ofile("/dev/full", UT_ACCESS_WRITE, nullptr, 1);
  out->writeline("lost");
  EXPECT_EQ(ut_file->rm_ofile(out), 0) << "a write that fails as late as here";
}

TEST_F(Files, APipeIsWrittenWhileSomebodyReads) {
  const std::string path = Path("fifo");
  EXPECT_FALSE(ut_open_stream(path.c_str(), UT_ACCESS_WRITE)) << "and would wait for a reader";
  EXPECT_FALSE(ut_file->copy(Path("file").c_str(), path.c_str()));
  const int end = ::open(path.c_str(), O_RDONLY | O_NONBLOCK);
  UT_STREAM* const out = ut_file->add_ofile(path.c_str(), UT_ACCESS_WRITE, nullptr, 1);
  ::fcntl(end, F_SETFL, 0);
  std::future<std::size_t> heard = std::async(std::launch::async, [end] {
    std::size_t n = 0;
    char piece[4096];
    for (ssize_t got = 1; got > 0; n += static_cast<std::size_t>(got)) got = ::read(end, piece, sizeof piece);
    return n;
  });
  out->write(std::string(1000000, 'm'));  // More than a pipe holds.
  EXPECT_NE(ut_file->rm_ofile(out), 0);
  EXPECT_EQ(heard.get(), 1000000U);
  ::close(end);
}

TEST_F(Files, CopyAndAppend) {
  const auto copy = [&](const char* from, const char* to) {
    return ut_file->copy(Path(from).c_str(), Path(to).c_str()) != 0;
  };
  const auto append = [&](const char* from, const char* to) {
    return ut_file->append(Path(from).c_str(), Path(to).c_str()) != 0;
  };
  for (const char* unreadable : {"missing", "dir", "fifo"}) {
    EXPECT_FALSE(copy(unreadable, "file") || append(unreadable, "file")) << unreadable;
    EXPECT_FALSE(copy(unreadable, "new") || append(unreadable, "new") || Exists("new")) << unreadable;
  }
  EXPECT_TRUE(copy("file", "same") && append("to_file", "same"));
  EXPECT_EQ(Read("file"), "old text\nold text\n");

  const std::string big = std::string(300000, 'b') + "\0end"s;
  fs::permissions(Write("big", big), fs::perms(0700));
  EXPECT_TRUE(copy("big", "new") && copy("dir/file", "to_file") && append("big", "file"));
  EXPECT_TRUE(append("big", "made") && Read("made") == big && Read("new") == big);
  EXPECT_EQ(fs::status(Path("new")).permissions(), fs::perms(0700));
  EXPECT_EQ(Read("same"), "x" + big);
  const LimitedDisk limit(1000);
  EXPECT_FALSE(copy("big", "cut_off") || append("big", "cut_off"));
}

TEST_F(Files, DirectoriesAreListedAndOnlyFilesRemoved) {
  Write("dir/.hidden", "");
  EXPECT_TRUE(ut_file->mkdir(Path("dir/sub").c_str()));
  std::vector<std::string> expected = {".hidden", "file", "sub"}, names;
  for (int i = 100; i < 400; ++i)
    fs::create_symlink("nothing", Path("dir/" + expected.emplace_back("x" + std::to_string(i))));
  EXPECT_EQ(Names("dir", "x1[0-9]?").size(), 100U);
  UT_DIR listing(Path("dir").c_str(), 1);
  while (const char* name = listing.getnextfile(nullptr)) {
    EXPECT_EQ(ut_file->remove(Path("dir/"s + name).c_str()),
              name != "sub"s);  // Takes none of the names behind it away.
    names.emplace_back(name);
  }
  EXPECT_EQ(names, expected);
  EXPECT_TRUE(Names("dir") == std::vector<std::string>{"sub"} && !ut_file->rmdir(Path("dir").c_str()));
  EXPECT_TRUE(ut_file->rmdir(Path("dir/sub").c_str()) && Names("dir").empty() && Names("missing").empty());
}

TEST_F(Files, RewritingKeepsModeAndLinkAndLeavesNothingBeside) {
  const std::string link = Path("to_file");
  fs::permissions(link, fs::perms(0642));
  const std::vector<std::string> names = Names("");
  EXPECT_EQ(ut_rewrite_file(link.c_str(), "old text\n"), ut_rewrite_result::done);
  EXPECT_TRUE(fs::equivalent(Path("file"), Path("same"))) << "nothing to change";
  EXPECT_EQ(ut_rewrite_file(link.c_str(), "new\0"s), ut_rewrite_result::done);
  EXPECT_EQ(Read("file"), "new\0"s);
  EXPECT_EQ(Read("same"), "old text\n") << "the new text went over the old one, not beside it";
  EXPECT_TRUE(fs::status(link).permissions() == fs::perms(0642) && fs::is_symlink(link));
  EXPECT_EQ(Names(""), names);
}

// A name that leaves no room for the suffix of a file beside it is rewritten in place.
TEST_F(Files, RewritingSurvivesAFullDiskBesideAndInPlace) {
  for (const std::string& name : {"short"s, std::string(255, 'n')}) {
    const std::string path = Write(name, "old text\n");
    const std::vector<std::string> names = Names("");
    {
      const LimitedDisk limit(20);
      EXPECT_EQ(ut_rewrite_file(path.c_str(), std::string(40, 'x')), ut_rewrite_result::cannot_write);
    }
    EXPECT_EQ(Read(name), "old text\n");
    for (const char* text : {"longer than the old text\n", "shorter\n"}) {
      EXPECT_EQ(ut_rewrite_file(path.c_str(), text), ut_rewrite_result::done);
      EXPECT_EQ(Read(name), text);
    }
    EXPECT_EQ(Names(""), names);
  }
}

// What a run leaves is often read-only: the next run's copy makes room for itself where it may.
TEST_F(Files, CopiesReplaceWhatMayNotBeWrittenAndRewritingLeavesItAlone) {
  for (const char* const folder : {"", "dir"}) fs::permissions(Path(folder), fs::perms(0777));
  const std::string kept = Write("kept/file", "old text\n");
  for (const std::string& read_only : {Write("dir/target", "before"), kept})
    fs::permissions(read_only, fs::perms(0444));
  const Unprivileged user;
  EXPECT_EQ(ut_file->copy(Path("file").c_str(), kept.c_str()), 0);
  EXPECT_EQ(ut_rewrite_file(kept.c_str(), "new"), ut_rewrite_result::cannot_open);
  EXPECT_EQ(Read("kept/file"), "old text\n");
  EXPECT_NE(ut_file->copy(Path("file").c_str(), Path("dir/target").c_str()), 0);
  EXPECT_EQ(Read("dir/target"), "old text\n");
}
