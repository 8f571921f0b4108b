#include "work.h"

#include <fcntl.h>
#include <linux/fs.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <string>

namespace bench {
namespace {

char buffer[1 << 16];

template <typename Result>
Result Done(Result result) {
  if (result < 0) std::abort();
  return result;
}

int Open(const std::string& path, int flags) {
  return Done(::open(path.c_str(), flags | O_CLOEXEC, 0644));
}

// "Can it be read?", as it is asked before a file is used.
void Probe(const std::string& path) {
  struct stat status;
  ::stat(path.c_str(), &status);
  ::close(Open(path, O_RDONLY | O_NONBLOCK));
}

std::size_t ReadAll(const std::string& path) {
  const int file = Open(path, O_RDONLY | O_NONBLOCK);
  struct stat status;
  ::fstat(file, &status);
  const auto size = static_cast<std::size_t>(Done(::read(file, buffer, sizeof buffer)));
  Done(::read(file, buffer + size, sizeof buffer - size));
  ::close(file);
  return size;
}

void Copy(const std::string& from, const std::string& to) {
  const int source = Open(from, O_RDONLY | O_NONBLOCK);
  struct stat status, old;
  ::fstat(source, &status);
  ::stat(to.c_str(), &old);
  const int target = Open(to, O_WRONLY | O_CREAT | O_TRUNC);
  const auto size = static_cast<std::size_t>(status.st_size);
  if (::ioctl(target, FICLONE, source) != 0)
    Done(::copy_file_range(source, nullptr, target, nullptr, size, 0));
  ::close(target);
  ::close(source);
}

}  // namespace

void PlanningCalls(const std::string& folder, int runs) {
  constexpr int write_only = O_WRONLY | O_CREAT | O_TRUNC;
  const std::string options = folder + "/top.p2t";
  const int log = Open(folder + "/top.log", write_only);
  Probe(folder + "/top_map.ncd");
  Probe(options);
  ReadAll(options);
  ReadAll(options);
  ::mkdir((folder + "/top.dir").c_str(), 0777);
  for (int n = 0; n < runs; ++n) {
    const std::string own = options + ".tmp" + std::to_string(n);
    Copy(options, own);
    Probe(own);
    const std::size_t size = ReadAll(own);
    const int file = Open(own, write_only);
    Done(::write(file, buffer, size));
    ::close(file);
  }
  ::close(log);
}

}  // namespace bench
