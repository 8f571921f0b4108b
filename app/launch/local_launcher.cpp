#include "launch/local_launcher.h"

#include <unistd.h>

#include <QTimer>
#include <csignal>
#include <utility>

namespace vostrand {
namespace {

constexpr int cannot_start = 127;

// A supervisor that wrote no outcome was killed itself, and its program with it.
step::Outcome OutcomeOf(const QProcess& process, const std::string& file) {
  step::Outcome outcome;
  if (step::ReadOutcome(file, outcome)) return outcome;
  const bool killed = process.exitStatus() == QProcess::CrashExit;
  outcome.signal = killed ? SIGKILL : 0;
  outcome.exit_code = killed ? 128 + SIGKILL : process.exitCode();
  return outcome;
}

}  // namespace

LocalLauncher::LocalLauncher(std::string supervisor, std::string work_dir, ToolFinder tools)
    : supervisor_(std::move(supervisor)), work_dir_(std::move(work_dir)), tools_(std::move(tools)) {}

LocalLauncher::~LocalLauncher() = default;

void LocalLauncher::Fail(std::string message, Done done) {
  StepResult result;
  result.outcome.exit_code = cannot_start;
  result.message = std::move(message);
  QTimer::singleShot(0, &queue_, [result, done = std::move(done)] { done(result); });
}

void LocalLauncher::Start(const StepRequest& request, Done done) {
  const std::string& name = request.words.front();
  const std::string program = tools_.Find(name);
  if (program.empty()) {
    Fail("there is no program " + name + " in " + tools_.Places(), std::move(done));
    return;
  }
  const int id = next_id_++;
  Running& started = running_[id];
  started.done = std::move(done);
  started.outcome_file = outcomes_.filePath(QString::number(id)).toStdString();
  QStringList arguments = {"--outcome", QString::fromStdString(started.outcome_file),
                           "--output",  QString::fromStdString(request.output_file),
                           "--parent",  QString::number(getpid()),
                           "--",        QString::fromStdString(program)};
  for (auto word = request.words.begin() + 1; word != request.words.end(); ++word)
    arguments << QString::fromLocal8Bit(word->c_str());

  started.process = std::make_unique<QProcess>();
  started.process->setWorkingDirectory(QString::fromStdString(work_dir_));
  started.process->setProcessChannelMode(QProcess::ForwardedChannels);
  started.process->setStandardInputFile(QProcess::nullDevice());
  QObject::connect(started.process.get(), &QProcess::finished, &queue_, [this, id] { Ended(id); });
  QObject::connect(
      started.process.get(), &QProcess::errorOccurred, &queue_,
      [this, id](QProcess::ProcessError error) {
        if (error == QProcess::FailedToStart) Ended(id);
      },
      Qt::QueuedConnection);
  started.process->start(QString::fromStdString(supervisor_), arguments);
}

void LocalLauncher::Ended(int id) {
  Running ended = std::move(running_.extract(id).mapped());
  StepResult result;
  if (ended.process->error() == QProcess::FailedToStart) {
    result.outcome.exit_code = cannot_start;
    result.message = "cannot start " + supervisor_ + ": " + ended.process->errorString().toStdString();
  } else {
    result.outcome = OutcomeOf(*ended.process, ended.outcome_file);
  }
  ended.process.release()->deleteLater();  // It is the sender of what is being handled.
  ended.done(result);
}

void LocalLauncher::CancelAll() {
  // The supervisor takes a second SIGTERM as the end of its patience.
  for (const auto& [id, running] : running_) running.process->terminate();
}

}  // namespace vostrand
