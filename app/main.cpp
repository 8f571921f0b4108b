// The program vostrand: a host for libvostrandlib. Reads its own options, leaves the rest to the library.
#include <fcntl.h>
#include <unistd.h>

#include <QCoreApplication>
#include <clocale>
#include <csignal>
#include <iostream>

#include "observe/harmless.h"
#include "options/host_options.h"
#include "plan/command_words.h"
#include "plan/dry_run.h"
#include "plan/library_run.h"
#include "sweep/run_sweep.h"

namespace {

constexpr int wrong_options = 2;
constexpr int cannot_begin = 2;
constexpr int result_not_written = 6;

int Refuse(const std::string& why) {
  std::cerr << "vostrand: " << vostrand::Harmless(why) << "\n";
  return wrong_options;
}

int ShowHelp() {
  std::cout << vostrand::HelpText() << std::flush;
  vostrand::LibraryRun library("", false);
  library.Plan({});  // Without arguments the library has its usage to say.
  std::cout << library.Logger().Status();
  return 0;
}

// The library's planned commands do not quote names, so one that needs quotes would come apart.
std::string WhyRefused(const std::vector<std::string>& tool_arguments) {
  for (const std::string& argument : tool_arguments)
    if (!vostrand::FitsCommandLine(argument))
      return "the tool argument <" + vostrand::HarmlessLine(argument) +
             "> holds white space, quotes or control characters, which planned commands cannot carry";
  return {};
}

// Descriptors that the caller closed would be given to the first files opened, which messages would then end
// up in.
void FillStandardDescriptors() {
  for (;;) {
    const int file = open("/dev/null", O_RDWR);
    if (file < 0) return;
    if (file > STDERR_FILENO) {
      close(file);
      return;
    }
  }
}

int Perform(const vostrand::CommandLine& line) {
  if (!line.error.empty()) return Refuse(line.error);
  if (line.host.show_help) return ShowHelp();
  if (line.host.show_version) {
    std::cout << "vostrand " << VOSTRAND_VERSION << "\n";
    return 0;
  }
  const std::string refusal = WhyRefused(line.tool);
  if (!refusal.empty()) return Refuse(refusal);
  std::signal(SIGPIPE, SIG_IGN);  // Whoever reads the progress may leave; the sweep goes on.
  if (line.host.dry_run) return vostrand::DryRun(line.tool, line.host.work_dir);
  return vostrand::RunSweep(line.host, line.tool, QCoreApplication::applicationDirPath().toStdString());
}

}  // namespace

int main(int argc, char** argv) {
  FillStandardDescriptors();
  std::signal(SIGXFSZ, SIG_IGN);  // A file that may not grow further is written in vain, as on a full disk.
  const std::vector<std::string> arguments(argv + std::min(argc, 1), argv + argc);
  const QCoreApplication app(argc, argv);
  std::setlocale(LC_NUMERIC, "C");  // Qt has set the user's; numbers are the same everywhere.
  int code = cannot_begin;
  try {
    code = Perform(vostrand::ReadCommandLine(arguments));
  } catch (const std::exception& error) {  // Such as a working directory that was removed.
    std::cerr << "vostrand: " << vostrand::Harmless(error.what()) << "\n";
  }
  if (std::cout.flush()) return code;
  std::cerr << "vostrand: cannot write to standard output\n";
  return code == 0 ? result_not_written : code;
}
