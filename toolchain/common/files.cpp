#include "common/files.h"

#include <QFile>
#include <QSaveFile>
#include <filesystem>

#include "common/failure.h"
#include "common/text.h"

namespace toolchain {
namespace {

namespace fs = std::filesystem;

fs::path EngineFolder() {
  if (const char* const folder = std::getenv("VOSTRAND_ENGINE"); folder && *folder) return folder;
  return fs::read_symlink("/proc/self/exe").parent_path() / "engine";
}

}  // namespace

std::string ReadFile(const std::string& path, const char* what) {
  QFile file(QString::fromStdString(path));
  std::error_code ignored;
  const bool is_folder = fs::is_directory(path, ignored);
  if (is_folder || !file.open(QIODevice::ReadOnly))
    throw Failure(ExitCode::input,
                  Format("cannot read %s \"%s\": %s", what, path.c_str(),
                         is_folder ? "it is a folder" : file.errorString().toStdString().c_str()));
  return file.readAll().toStdString();
}

void WriteFile(const std::string& path, std::string_view text) {
  QSaveFile file(QString::fromStdString(path));
  const bool written = file.open(QIODevice::WriteOnly) &&
                       file.write(text.data(), static_cast<qint64>(text.size())) >= 0 &&
                       file.flush() &&  // A full disk shows here; committing does not look.
                       file.commit();
  if (!written)
    throw Failure(ExitCode::output,
                  Format("cannot write \"%s\": %s", path.c_str(), file.errorString().toStdString().c_str()));
}

void RemoveFile(const std::string& path) {
  std::error_code error;
  const fs::file_status status = fs::symlink_status(path, error);
  if (fs::exists(status) && !fs::is_regular_file(status) && !fs::is_symlink(status))
    throw Failure(ExitCode::output, Format("cannot replace \"%s\": it is no regular file", path.c_str()));
  error.clear();
  fs::remove(path, error);
  if (error)
    throw Failure(ExitCode::output,
                  Format("cannot remove the old \"%s\": %s", path.c_str(), error.message().c_str()));
}

void RequireApart(const std::vector<std::string>& inputs, const std::vector<std::string>& outputs) {
  for (const std::string& input : inputs)
    for (const std::string& output : outputs) {
      std::error_code different;
      if (fs::equivalent(input, output, different))
        throw Failure(ExitCode::usage, Format("the output \"%s\" would replace the input \"%s\"",
                                              output.c_str(), input.c_str()));
    }
}

std::string EngineFile(const std::string& name) {
  const fs::path path = EngineFolder() / name;
  if (!fs::exists(path))
    throw Failure(
        ExitCode::missing,
        Format("the engine's file \"%s\" is missing; VOSTRAND_ENGINE can name its folder", path.c_str()));
  return path;
}

}  // namespace toolchain
