#include "launch/slurm/slurm_commands.h"

#include <sys/prctl.h>

#include <QProcess>
#include <QTimer>
#include <chrono>
#include <csignal>
#include <memory>
#include <utility>

namespace vostrand {
namespace {

constexpr auto patience = std::chrono::seconds(60);  // They give up on a controller by themselves before.

bool IsUnwanted(const QString& variable) {
  if (variable == "SLURM_CONF" || variable == "SLURM_JWT") return false;
  for (const char* const prefix :
       {"SLURM_", "SQUEUE_", "SCANCEL_", "SBATCH_ARRAY", "SBATCH_WAIT", "SBATCH_CLUSTERS"})
    if (variable.startsWith(prefix)) return true;
  return false;
}

QProcessEnvironment Environment() {
  QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
  for (const QString& variable : environment.keys())
    if (IsUnwanted(variable)) environment.remove(variable);
  environment.insert("LC_ALL", "C");
  return environment;
}

void Prepare(QProcess& process, const std::vector<std::string>& words) {
  QStringList arguments;
  for (std::size_t i = 1; i < words.size(); ++i) arguments << QString::fromStdString(words[i]);
  process.setProgram(QString::fromStdString(words[0]));
  process.setArguments(arguments);
  static const QProcessEnvironment environment = Environment();
  process.setProcessEnvironment(environment);
  process.setChildProcessModifier([] {
    // A submission that outlives this program would be one that nobody knows of.
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    // A group of its own: a terminal's Ctrl-C is the host's to hear.
    setpgid(0, 0);
  });
}

CommandResult ResultOf(QProcess& process) {
  CommandResult result;
  result.started = process.state() != QProcess::NotRunning || process.error() != QProcess::FailedToStart;
  if (!result.started)
    result.err = (process.program() + ": " + process.errorString()).toStdString();
  else if (process.exitStatus() == QProcess::NormalExit && process.state() == QProcess::NotRunning)
    result.exit_code = process.exitCode();
  result.out = process.readAllStandardOutput().toStdString();
  result.err += process.readAllStandardError().toStdString();
  return result;
}

}  // namespace

bool CommandResult::IsUnanswered() const {
  if (Succeeded()) return false;
  for (const char* const text : {"Unable to contact", "timed out", "Connection refused", "Zero Bytes",
                                 "connect failure", "Transport endpoint", "retrying"})
    if (err.find(text) != std::string::npos) return true;
  return exit_code < 0 && started;  // Ended half way: nobody knows how far it came.
}

std::string CommandResult::Why() const {
  const std::size_t end = err.find_last_not_of(" \n");
  if (end == std::string::npos) return "no answer";
  const std::size_t line = err.find_last_of('\n', end);
  return err.substr(line + 1, end - line);
}

SlurmCommands::~SlurmCommands() {
  for (QProcess* const process : children_.findChildren<QProcess*>()) {
    process->disconnect();
    process->kill();
    process->waitForFinished();
  }
}

void SlurmCommands::Run(const std::vector<std::string>& words, const std::string& input,
                        std::function<void(const CommandResult& result)> then) {
  auto* const process = new QProcess(&children_);  // NOLINT: its parent owns it.
  Prepare(*process, words);
  const auto ended = [process, then = std::move(then)] {
    process->disconnect();
    process->deleteLater();
    then(ResultOf(*process));
  };
  QObject::connect(process, &QProcess::finished, process, ended);
  QObject::connect(process, &QProcess::errorOccurred, process, [ended](QProcess::ProcessError error) {
    if (error == QProcess::FailedToStart) ended();
  });
  QTimer::singleShot(patience, process, [process] { process->kill(); });
  process->start();
  process->write(input.data(), static_cast<qint64>(input.size()));
  process->closeWriteChannel();
}

CommandResult SlurmCommands::RunAndWait(const std::vector<std::string>& words, const std::string& input) {
  QProcess process;
  Prepare(process, words);
  process.start();
  process.write(input.data(), static_cast<qint64>(input.size()));
  process.closeWriteChannel();
  if (!process.waitForFinished(static_cast<int>(std::chrono::milliseconds(patience).count()))) {
    process.kill();
    process.waitForFinished();
  }
  return ResultOf(process);
}

}  // namespace vostrand
