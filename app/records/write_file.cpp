#include "records/write_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QFile>
#include <QSaveFile>
#include <cerrno>
#include <cstring>
#include <iostream>

namespace vostrand {
namespace {

constexpr std::size_t longest_name_beside = 240;

std::string Problem(const std::string& path, const std::string& why) {
  return "cannot write " + path + ": " + why;
}

// Something there that is to be written to, not replaced. A name that is not UTF-8 is not for QSaveFile, nor
// one so long that a file beside it could not have a longer one.
bool IsDirect(const std::string& path) {
  struct stat status = {};
  for (const char* own : {"/dev/std", "/dev/fd/", "/proc/"})
    if (path.starts_with(own)) return true;
  if (stat(path.c_str(), &status) == 0 && !S_ISREG(status.st_mode)) return true;
  if (path.size() - (path.rfind('/') + 1) > longest_name_beside) return true;
  return QString::fromStdString(path).toStdString() != path;
}

// The program's own output when it goes to a regular file: opened anew, each would write over the other.
int SharedRegularFile(const std::string& path) {
  const int file = path == "/dev/stdout" ? STDOUT_FILENO : path == "/dev/stderr" ? STDERR_FILENO : -1;
  struct stat status = {};
  if (file < 0 || fstat(file, &status) != 0 || !S_ISREG(status.st_mode)) return -1;
  std::cout.flush();
  return fcntl(file, F_DUPFD_CLOEXEC, 0);
}

std::string WriteDirectly(const std::string& path, const QByteArray& data) {
  std::string why;
  const int file = OpenStream(path, why);
  if (file < 0) return why;
  fcntl(file, F_SETFL, fcntl(file, F_GETFL) & ~O_NONBLOCK);
  for (qsizetype done = 0; done < data.size() && why.empty();) {
    const ssize_t count = write(file, data.data() + done, static_cast<std::size_t>(data.size() - done));
    if (count >= 0)
      done += count;
    else if (errno != EINTR)
      why = Problem(path, std::strerror(errno));
  }
  if (close(file) != 0 && why.empty()) why = Problem(path, std::strerror(errno));
  return why;
}

}  // namespace

std::string WriteFile(const std::string& path, const QByteArray& data) {
  if (IsDirect(path)) return WriteDirectly(path, data);
  QSaveFile file(QString::fromStdString(path));
  // Flushed first: commit does not tell whether its own flushing succeeded.
  if (file.open(QIODevice::WriteOnly) && file.write(data) == data.size() && file.flush() && file.commit())
    return {};
  return Problem(path, file.errorString().toStdString());
}

int OpenStream(const std::string& path, std::string& why) {
  const int shared = SharedRegularFile(path);
  if (shared >= 0) return shared;
  const int file = open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_NONBLOCK | O_NOCTTY | O_CLOEXEC, 0666);
  if (file >= 0) return file;
  const int error = errno;
  struct stat status = {};
  const bool unread = error == ENXIO && stat(path.c_str(), &status) == 0 && S_ISFIFO(status.st_mode);
  why = Problem(path, unread ? "nobody reads this pipe" : std::strerror(error));
  return -1;
}

}  // namespace vostrand
