#include "common/child_process.h"

#include <signal.h>
#include <sys/prctl.h>
#include <unistd.h>

#include <QProcess>
#include <csignal>

#include "common/failure.h"
#include "common/text.h"

namespace toolchain {
namespace {

volatile std::sig_atomic_t caught_signal = 0;

void Catch(int number) {
  caught_signal = number;
}

QProcessEnvironment ChildEnvironment(const std::map<std::string, std::string>& additional) {
  QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
  for (const QString& name : environment.keys())
    // The engine embeds Python: a PYTHONHOME made for another one would crash it.
    if (name.startsWith("PYTHON") || name.startsWith("LC_") || name == "LANG") environment.remove(name);
  environment.insert("PYTHONDONTWRITEBYTECODE", "1");
  environment.insert("PYTHONNOUSERSITE", "1");
  environment.insert("PYTHONHASHSEED", "0");
  for (const auto& [name, value] : additional)
    environment.insert(QString::fromStdString(name), QString::fromStdString(value));
  return environment;
}

void Prepare(QProcess& process, const Command& command) {
  process.setProgram(QString::fromStdString(command.program));
  QStringList arguments;
  for (const std::string& argument : command.arguments) arguments << QString::fromStdString(argument);
  process.setArguments(arguments);
  process.setProcessEnvironment(ChildEnvironment(command.environment));
  process.setProcessChannelMode(QProcess::MergedChannels);
  process.setStandardInputFile(QProcess::nullDevice());
  process.setChildProcessModifier([parent = ::getpid()] {
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (::getppid() != parent) ::_exit(1);  // We ended before the line above could see it.
  });
}

}  // namespace

void CatchSignals() {
  struct sigaction action = {};
  action.sa_handler = Catch;
  for (const int number : {SIGINT, SIGTERM, SIGHUP}) {
    struct sigaction present = {};
    ::sigaction(number, nullptr, &present);
    if (present.sa_handler != SIG_IGN) ::sigaction(number, &action, nullptr);  // Ignored under nohup.
  }
}

void CheckSignals() {
  if (caught_signal) throw Failure(128 + caught_signal, Format("ended by signal %d", int{caught_signal}));
}

Outcome Run(const Command& command) {
  constexpr int poll_ms = 20;
  using Clock = std::chrono::steady_clock;
  CheckSignals();
  QProcess process;
  process.setWorkingDirectory(QString::fromStdString(command.folder));
  Prepare(process, command);
  const Clock::time_point deadline = Clock::now() + command.time_limit;
  process.start();
  if (!process.waitForStarted())
    throw Failure(ExitCode::missing, Format("cannot start %s (is it installed?): %s", command.program.c_str(),
                                            process.errorString().toStdString().c_str()));
  Outcome outcome;
  while (process.state() != QProcess::NotRunning && !process.waitForFinished(poll_ms)) {
    outcome.timed_out = Clock::now() >= deadline;
    if (!outcome.timed_out && !caught_signal) continue;
    process.kill();
    process.waitForFinished(-1);
  }
  CheckSignals();  // A signal from the terminal may have ended both of us.
  if (process.exitStatus() == QProcess::CrashExit)
    outcome.signal = process.exitCode();
  else
    outcome.exit_code = process.exitCode();
  outcome.output = process.readAll().toStdString();
  return outcome;
}

}  // namespace toolchain
