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
                       file.write(text.data(), static_cast<qint64>(text.size())) >= 0 && file.commit();
  if (!written)
    throw Failure(ExitCode::output,
                  Format("cannot write \"%s\": %s", path.c_str(), file.errorString().toStdString().c_str()));
}

void RemoveFile(const std::string& path) {
  std::error_code error;
  fs::remove(path, error);
  if (error)
    throw Failure(ExitCode::output,
                  Format("cannot remove the old \"%s\": %s", path.c_str(), error.message().c_str()));
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
